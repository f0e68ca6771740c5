// Typed items over any device: every item goes through the one virtual Write() or Read() with its
// bytes as they lie in memory, and what the device answers decides the result.

#include "Model.h"

#include <CQSString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <ISerializable.h>
#include <StreamBufferSize.h>

#include <functional>
#include <memory>
#include <utility>

using namespace OrvoStream;

namespace
{

/// Answers as it likes, or buffers.
struct Sink : COStream {
    explicit Sink(ByteSource& script) : m_script(script), m_buffers(script.Flag()) {}
    void Close() override { ++ended; }
    void Flush() override { COStream::Flush(), ++ended; }
    int Write(char const* data, int len) override
    {
        bytes.append(data, data + len);
        answer = m_buffers ? COStream::Write(data, len) : m_script.Between(-1, 5);
        hasRefused |= m_buffers ? len > StreamBufferSize : len > 0 && answer <= 0;
        return answer;
    }
    std::string bytes; // all that was handed over
    int answer = 0, ended = 0;
    bool hasRefused = false;

private:
    ByteSource& m_script;
    const bool m_buffers;
};

struct Writer : DataOutputStream {
    using DataOutputStream::DataOutputStream;
    using DataOutputStream::Write;
    int Write(char const* data, int len) override
    {
        bytes.append(data, data + len);
        return DataOutputStream::Write(data, len);
    }
    std::string bytes;
};

struct Point final : ISerializable {
    void Serialize(DataOutputStream& out) const override { out << short{1} << 'y'; }
};

template <typename T>
std::string BytesOf(T value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

// Writes one item and returns its bytes. The named writes must return what the device answers.
std::string WriteOne(Writer& out, const Sink& sink, ByteSource& source)
{
    const auto written = [&](auto value) {
        const int result = out.Write(value);
        MODEL_CHECK(result == sink.answer);
        return BytesOf(value);
    };
    const auto streamed = [&](auto value, std::size_t size = sizeof value) {
        MODEL_CHECK(&(out << value) == &out);
        return BytesOf(value).substr(0, size);
    };
    const std::uint32_t word = source.Word();
    std::string text = source.Text(200, "ab");
    const std::function<std::string()> items[] = {
        [&] { return written(static_cast<int>(word)); },
        [&] { return written(static_cast<short>(word)); },
        [&] { return written(static_cast<char>(word)); },
        [&] { return streamed(static_cast<int>(word)); },
        [&] { return streamed(word); },
        [&] { return streamed(~0UL << 31 << 1 | word, 4); },
        [&] { return streamed(static_cast<short>(word)); },
        [&] { return streamed(static_cast<unsigned short>(word)); },
        [&] { return streamed(static_cast<char>(word)); },
        [&] { return streamed(static_cast<unsigned char>(word)); },
        [&] { return out << static_cast<char*>(nullptr) << text.c_str(), text; },
        [&] {
            text.resize(text.size() * 150); // zero bytes too, and more than a buffer takes at once
            CQSString string;
            string.AppendData(reinterpret_cast<unsigned char*>(text.data()),
                              static_cast<int>(text.size()));
            return out.Write(string), text;
        },
        [&] { return out << Point(), std::string("\1\0y", 3); }};
    return items[source.Between(0, 12)]();
}

void DriveOutput(ByteSource& source)
{
    Sink sink(source);
    {
        Writer out(sink);
        for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
            const std::string expected = WriteOne(out, sink, source);
            MODEL_CHECK(std::exchange(out.bytes, {}) == expected);
            MODEL_CHECK(std::exchange(sink.bytes, {}) == expected);
            MODEL_CHECK(out.HasFailed() == sink.hasRefused);
        }
        sink.ended = 0;
    }
    MODEL_CHECK(sink.ended == 0); // neither flushed nor closed
}

/// Gives bytes of its own and claims any count.
struct Source : CIStream {
    explicit Source(ByteSource& script) : m_script(script) {}
    int Available() override { return 77; }
    void Close() override { ++closed; }
    int Read(char* dest, int len) override
    {
        bytes = m_script.Bytes(len);
        bytes.copy(dest, bytes.size());
        bytes.resize(static_cast<std::size_t>(len));
        answer = m_script.Byte() < 250 ? len : m_script.Between(-1, 5);
        hasFailed |= answer != len;
        return answer;
    }
    std::string bytes; // of the last read
    int answer = 0, closed = 0;
    bool hasFailed = false;

private:
    ByteSource& m_script;
};

struct Reader : DataInputStream {
    using DataInputStream::DataInputStream;
    int Read(char* dest, int len) override
    {
        std::fill_n(dest, asked = len, '\0'); // so that incomplete items are known too
        return DataInputStream::Read(dest, len);
    }
    int asked = 0;
};

template <typename T>
void CheckItem(Reader& in, T (DataInputStream::*read)(), const Source& device)
{
    bool hasThrown = false;
    try {
        const T value = (in.*read)();
        MODEL_CHECK(BytesOf(value) == device.bytes);
    } catch (int thrown) {
        MODEL_CHECK(thrown == -1);
        hasThrown = true;
    }
    MODEL_CHECK(in.asked == sizeof(T));
    MODEL_CHECK(hasThrown == (device.answer != sizeof(T)));
}

void CheckBytes(Reader& in, int len, const Source& device)
{
    int result = len;
    const std::unique_ptr<char[]> array(in.ReadBytes(result));
    MODEL_CHECK((array == nullptr) == (len < 1));
    MODEL_CHECK(result == (len < 1 ? len : device.answer));
    MODEL_CHECK(len < 1 || device.bytes == std::string(array.get(), device.bytes.size()));
}

void DriveInput(ByteSource& source)
{
    Source device(source);
    {
        Reader in(device);
        for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
            const std::function<void()> reads[] = {
                [&] { CheckItem(in, &DataInputStream::ReadInt, device); },
                [&] { CheckItem(in, &DataInputStream::ReadShort, device); },
                [&] { CheckItem(in, &DataInputStream::ReadChar, device); },
                [&] { CheckBytes(in, source.Between(-5, 200), device); }};
            reads[source.Between(0, 3)]();
            MODEL_CHECK(in.HasFailed() == device.hasFailed);
        }
        MODEL_CHECK(in.Available() == 77);
        MODEL_CHECK(device.closed == 0);
    }
    MODEL_CHECK(device.closed == 1); // unlike what a data output stream wraps
}

} // namespace

void DriveModel(ByteSource& source)
{
    source.Flag() ? DriveOutput(source) : DriveInput(source);
}
