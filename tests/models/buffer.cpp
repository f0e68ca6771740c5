// The data buffer against a string that holds the whole storage, and how much of it is used.

#include "Model.h"

#include <MLDataBuf.h>
#include <OrvoAssert.h>

#include <cstring>

namespace
{

int g_assertions = 0;

struct Model {
    std::string storage;
    std::size_t used = 0;

    /// The same bytes to both.
    void CheckAppend(CMLDataBuf& buffer, const std::string& bytes, auto... data)
    {
        const bool fits = bytes.size() <= storage.size() - used;
        const std::size_t appended = fits ? bytes.size() : 0;
        MODEL_CHECK(static_cast<std::size_t>(buffer.Append(data...)) == appended);
        storage.replace(used, appended, bytes, 0, appended);
        used += appended;
    }

    void CheckMove(CMLDataBuf& buffer, int start)
    {
        const bool inside = start >= 0 && start <= static_cast<int>(used);
        const int before = g_assertions;
        buffer.MoveDataToHead(start);
        MODEL_CHECK(g_assertions == before + (inside ? 0 : 1));
        const std::size_t dropped = inside ? static_cast<std::size_t>(start) : 0;
        storage.insert(used, dropped, '\0').erase(0, dropped);
        used -= dropped;
    }

    void Step(CMLDataBuf& buffer, ByteSource& source)
    {
        const int operation = source.Between(0, 7);
        const std::uint32_t word = source.Word();
        const auto half = static_cast<unsigned short>(word);
        const std::string host(reinterpret_cast<const char*>(&word), 4);
        if (operation == 0) {
            CheckAppend(buffer, {static_cast<char>(word)}, static_cast<unsigned char>(word));
        } else if (operation == 1) {
            CheckAppend(buffer, {reinterpret_cast<const char*>(&half), 2}, half);
        } else if (operation == 2) { // bits beyond 32 do not count
            CheckAppend(buffer, host, static_cast<unsigned long>(word * 0x100000001ULL));
        } else if (operation == 3) {
            const std::string bytes = source.Bytes(20);
            CheckAppend(buffer, bytes, reinterpret_cast<const unsigned char*>(bytes.data()),
                        static_cast<unsigned long>(bytes.size()));
        } else if (operation == 4) { // its own bytes
            const std::string bytes = storage.substr(word % storage.size(), word >> 28);
            CheckAppend(buffer, bytes, buffer.GetBuf() + word % storage.size(),
                        static_cast<unsigned long>(bytes.size()));
        } else if (operation == 5) {
            CheckMove(buffer, static_cast<int>(word % (used + 4)) - 2);
        } else if (operation == 6) { // refused, and nothing changes
            const unsigned long beyond = sizeof beyond > 4 ? ~0UL / 2 + 2 : 0;
            unsigned char* const own = buffer.GetBuf();
            MODEL_CHECK(buffer.Create(0) + buffer.Create(beyond) + buffer.Create(nullptr, 10) == 0);
            MODEL_CHECK(buffer.Create(own, 0) + buffer.Create(own, beyond) == 0);
            MODEL_CHECK(buffer.Append(nullptr, 1) + buffer.Append(own, ~0UL) == 0);
            MODEL_CHECK(buffer.Append(own, beyond) == 0);
        } else {
            buffer.Zero();
            *this = {std::string(storage.size(), '\0'), 0};
        }
    }
};

} // namespace

void DriveModel(ByteSource& source)
{
    OrvoSetAssertHandler([](const char*, const char*, int) { ++g_assertions; });
    std::string foreign(static_cast<std::size_t>(source.Between(1, 40)), '\xEE');
    Model model{foreign, 0};
    CMLDataBuf buffer;
    if (source.Flag()) {
        MODEL_CHECK(buffer.Create(foreign.size()) == 1);
        model.storage.assign(foreign.size(), '\0');
    } else {
        auto* const storage = reinterpret_cast<unsigned char*>(foreign.data());
        MODEL_CHECK(buffer.Create(storage, foreign.size()) == 1);
        MODEL_CHECK(buffer.GetBuf() == storage);
    }
    while (!source.IsEmpty()) {
        model.Step(buffer, source);
        MODEL_CHECK(buffer.GetMaxSize() == model.storage.size());
        MODEL_CHECK(buffer.GetUsedSize() == model.used);
        MODEL_CHECK(buffer.GetFreeSize() == model.storage.size() - model.used);
        MODEL_CHECK(std::memcmp(buffer.GetBuf(), model.storage.data(), model.storage.size()) == 0);
    }
}
