// The buffered bases over devices that claim any length: every result, every virtual call in its
// order, what is asked of the device, and every byte that reaches it or the reader.

#include "Model.h"

#include <CIStream.h>
#include <COStream.h>

#include <cstring>
#include <utility>
#include <vector>

namespace
{

constexpr int BufferSize = 20480;

const std::string block = [] {
    std::string bytes(2 * BufferSize, '\0');
    std::generate(bytes.begin(), bytes.end(), [i = 0]() mutable { return char(1 + i++ % 251); });
    return bytes;
}();

int Length(ByteSource& source)
{
    const int around[] = {BufferSize, BufferSize / 2, 2, 2, 17, 17, 17};
    const int kind = source.Between(0, 7);
    return kind == 7 ? static_cast<int>(source.Word()) : around[kind] + source.Between(-3, 3);
}

struct Sink : OrvoStream::COStream {
    void Close() override {}
    void Flush() override { calls += "F", COStream::Flush(); }
    void SaveBuffer(char const* data, int len) override
    {
        (calls += data == nullptr ? "S" : "s").append(data, data + len);
    }
    int PrepareBuffer(int len) override
    {
        (calls += "P") += std::to_string(len);
        return claim < 0 ? COStream::PrepareBuffer(len) : claim;
    }
    std::string calls;
    int claim = -1; // what PrepareBuffer() answers instead of the base
};

struct PlainSink : Sink {
    void Flush() override
    {
        (calls += hasBuffer ? "Fs" : "FS") += waiting;
        waiting.clear();
    }
    int Write(char const* data, int len) override
    {
        if (len < 0 || (data == nullptr && len > 0)) {
            return 0;
        }
        (calls += "P") += std::to_string(len);
        if (claim < 0) {
            if (!waiting.empty() && static_cast<qint64>(waiting.size()) + len >= BufferSize) {
                Flush();
            }
            hasBuffer = true;
        }
        const auto position = static_cast<int>(waiting.size());
        if (claim == 0 || !hasBuffer || len > BufferSize - position) {
            return 0;
        }
        waiting.append(data, data + len);
        return position;
    }
    std::string waiting;
    bool hasBuffer = false;
};

struct Source : OrvoStream::CIStream {
    explicit Source(const ByteSource& source) : script(source) {}
    int Available() override { return 0; }
    void Close() override {}
    int LoadBuffer(char* dest, int len) override
    {
        asked.push_back(len);
        const int count = std::clamp(script.Flag() ? len : Length(script), 0, len);
        block.copy(dest, std::size_t(count), script.Byte());
        return script.Byte() < 230 ? count : Length(script);
    }
    ByteSource script;
    std::vector<int> asked;
};

struct PlainSource : Source {
    using Source::Source;
    int Load(int at, int len) { return std::clamp(LoadBuffer(buffer.data() + at, len), 0, len); }
    int Read(char* dest, int len) override
    {
        if (len < 0 || (dest == nullptr && len > 0)) {
            return 0;
        }
        if (buffer.empty()) {
            buffer.resize(BufferSize);
            valid = Load(0, BufferSize);
        }
        if (position + len > valid) {
            const int rest = static_cast<int>(std::max<qint64>(valid - position, 0));
            std::memmove(buffer.data(), buffer.data() + (valid - rest), std::size_t(rest));
            valid = rest + Load(rest, valid - rest);
        }
        if (valid < len) {
            return 0;
        }
        for (int i = 0; i < len; ++i) {
            dest[i] = position + i < BufferSize ? buffer[std::size_t(position + i)] : '\0';
        }
        position += len;
        return len;
    }
    std::string buffer;
    int valid = 0;
    qint64 position = 0; // never set back, not even by a refill
};

void Write(ByteSource& source, Sink& out, PlainSink& plain)
{
    out.claim = plain.claim = std::max(source.Between(-9, 1), -1);
    const int len = Length(source);
    const char* const data = source.Byte() < 250 ? block.data() + source.Byte() : nullptr;
    if (source.Byte() < 25) {
        out.Flush(), plain.Flush();
    } else {
        MODEL_CHECK(out.Write(data, len) == plain.Write(data, len));
    }
    MODEL_CHECK(std::exchange(out.calls, {}) == std::exchange(plain.calls, {}));
}

void Read(ByteSource& source, Source& in, PlainSource& plain)
{
    std::string bytes(BufferSize, '#'), expected = bytes;
    const int len = Length(source);
    const bool isNull = source.Byte() > 250;
    MODEL_CHECK(in.Read(isNull ? nullptr : bytes.data(), len) ==
                plain.Read(isNull ? nullptr : expected.data(), len));
    MODEL_CHECK(in.asked == plain.asked);
    MODEL_CHECK(bytes == expected);
}

} // namespace

void DriveModel(ByteSource& source)
{
    Sink out;
    PlainSink plainOut;
    Source in(source);
    PlainSource plainIn(source);
    const bool writes = source.Flag();
    for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
        writes ? Write(source, out, plainOut) : Read(source, in, plainIn);
    }
}
