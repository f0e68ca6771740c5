// The buffered bases over devices that claim any length: every result, every virtual call in its
// order, what is asked of the device, and every byte that reaches it or the reader.

#include "Model.h"

#include <CIStream.h>
#include <COStream.h>

#include <cstring>
#include <vector>

namespace
{

constexpr int BufferSize = 20480;

const std::string block = [] {
    std::string bytes;
    while (bytes.size() < 2 * BufferSize) {
        bytes += static_cast<char>(1 + bytes.size() % 251);
    }
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
    void Flush() override
    {
        calls += "F";
        COStream::Flush();
    }
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

struct PlainSink {
    void Flush()
    {
        (calls += hasBuffer ? "Fs" : "FS") += waiting;
        waiting.clear();
    }
    int Write(char const* data, int len, int claim)
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
    std::string calls, waiting;
    bool hasBuffer = false;
};

void DriveOutput(ByteSource& source)
{
    Sink out;
    PlainSink plain;
    for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
        out.claim = std::max(source.Between(-9, 1), -1);
        const int len = Length(source);
        const char* const data = source.Byte() < 250 ? block.data() + i : nullptr;
        if (source.Byte() < 25) {
            out.Flush();
            plain.Flush();
        } else {
            MODEL_CHECK(out.Write(data, len) == plain.Write(data, len, out.claim));
        }
        MODEL_CHECK(out.calls == plain.calls);
        out.calls.clear();
        plain.calls.clear();
    }
}

struct Delivery {
    int asked, claimed;
    std::string bytes;
};

struct Source : OrvoStream::CIStream {
    explicit Source(ByteSource& script) : m_script(script) {}
    int Available() override { return 0; }
    void Close() override {}
    int LoadBuffer(char* dest, int len) override
    {
        const int count = std::clamp(m_script.Flag() ? len : Length(m_script), 0, len);
        const int claimed = m_script.Byte() < 230 ? count : Length(m_script);
        loads.push_back({len, claimed, block.substr(m_script.Byte(), std::size_t(count))});
        loads.back().bytes.copy(dest, std::size_t(count));
        return claimed;
    }
    std::vector<Delivery> loads;

private:
    ByteSource& m_script;
};

struct PlainSource {
    int LoadAt(int start, int asked)
    {
        MODEL_CHECK(next < loads.size());
        const Delivery& load = loads[next++];
        MODEL_CHECK(load.asked == asked);
        load.bytes.copy(buffer.data() + start, load.bytes.size());
        return std::clamp(load.claimed, 0, asked);
    }
    int Read(char* dest, int len)
    {
        if (len < 0 || (dest == nullptr && len > 0)) {
            return 0;
        }
        if (buffer.empty()) {
            buffer.resize(BufferSize);
            valid = LoadAt(0, BufferSize);
        }
        if (position + len > valid) {
            const int rest = static_cast<int>(std::max<qint64>(valid - position, 0));
            std::memmove(buffer.data(), buffer.data() + (valid - rest), std::size_t(rest));
            valid = rest + LoadAt(rest, valid - rest);
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
    const std::vector<Delivery>& loads;
    std::size_t next = 0;
    std::string buffer{};
    int valid = 0;
    qint64 position = 0; // never set back, not even by a refill
};

void DriveInput(ByteSource& source)
{
    Source in(source);
    PlainSource plain{in.loads};
    std::string bytes(BufferSize, '#');
    std::string expected = bytes;
    for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
        const int len = Length(source);
        const bool isNull = source.Byte() > 250;
        MODEL_CHECK(in.Read(isNull ? nullptr : bytes.data(), len) ==
                    plain.Read(isNull ? nullptr : expected.data(), len));
        MODEL_CHECK(plain.next == in.loads.size());
        MODEL_CHECK(bytes == expected);
    }
}

} // namespace

void DriveModel(ByteSource& source)
{
    source.Flag() ? DriveOutput(source) : DriveInput(source);
}
