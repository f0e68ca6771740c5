// Typed items over any device: every item goes through the one virtual Write() or Read() with its
// bytes as they lie in memory, and what the device answers decides the result.

#include "Model.h"
#include "Texts.h"

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

/// Takes what is written and gives bytes of its own; answers as it likes, or buffers what it takes.
struct Device : COStream, CIStream {
    explicit Device(ByteSource& source) : script(source), buffers(source.Flag()) {}
    int Available() override { return 77; }
    void Close() override { ++ended; }
    void Flush() override { COStream::Flush(), ++ended; }
    int Write(char const* data, int len) override
    {
        bytes.append(data, data + len);
        answer = buffers ? COStream::Write(data, len) : script.Between(-1, 5);
        hasRefused |= buffers ? len > StreamBufferSize : len > 0 && answer <= 0;
        return answer;
    }
    int Read(char* dest, int len) override
    {
        bytes = script.Bytes(len);
        bytes.resize(static_cast<std::size_t>(len));
        bytes.copy(dest, bytes.size());
        answer = script.Byte() < 250 ? len : script.Between(-1, 5);
        hasMissed |= answer != len;
        return answer;
    }
    ByteSource& script;
    const bool buffers;
    std::string bytes; // that were handed over
    int answer = 0, ended = 0;
    bool hasRefused = false, hasMissed = false;
};

struct Writer : DataOutputStream {
    using DataOutputStream::DataOutputStream;
    using DataOutputStream::Write;
    int Write(char const* data, int len) override
    {
        bytes.append(data, data + len);
        return DataOutputStream::Write(data, len);
    }
    int Write(int v) override { return DataOutputStream::Write((typed = sizeof v, v)); }
    int Write(short v) override { return DataOutputStream::Write((typed = sizeof v, v)); }
    int Write(char v) override { return DataOutputStream::Write((typed = sizeof v, v)); }
    std::string bytes;
    std::size_t typed = 0; // size of the last integer
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
std::string WriteOne(Writer& out, const Device& device, ByteSource& source)
{
    const std::uint32_t word = source.Word();
    const bool isNamed = source.Flag();
    std::string text = source.Text(200, "ab");
    const auto streamed = [&](auto value, std::size_t size = sizeof value) {
        MODEL_CHECK(&(out << value) == &out);
        MODEL_CHECK(std::exchange(out.typed, 0) == size);
        return BytesOf(value).substr(0, size);
    };
    const auto written = [&](auto value) {
        MODEL_CHECK(!isNamed || out.Write(value) == device.answer);
        return isNamed ? BytesOf(value) : streamed(value);
    };
    const std::function<std::string()> items[] = {
        [&] { return written(static_cast<int>(word)); },
        [&] { return written(static_cast<short>(word)); },
        [&] { return written(static_cast<char>(word)); },
        [&] { return streamed(word); },
        [&] { return streamed(~0UL << 31 << 1 | word, 4); },
        [&] { return streamed(static_cast<unsigned short>(word)); },
        [&] { return streamed(static_cast<unsigned char>(word)); },
        [&] { return out << static_cast<char*>(nullptr) << text.c_str(), text; },
        [&] { return out << Point(), std::string("\1\0y", 3); },
        [&] {
            text.resize(text.size() * 150); // zero bytes too, and more than a buffer takes at once
            return out.Write(Holding<CQSString>(text)), text;
        }};
    return items[source.Between(0, 9)]();
}

struct Reader : DataInputStream {
    explicit Reader(Device& source) : DataInputStream(source), device(source) {}
    int Read(char* dest, int len) override { return device.Read(dest, asked = len); }
    Device& device;
    int asked = 0;
};

template <typename T>
void CheckItem(Reader& in, T (DataInputStream::*read)(), const Device& device)
{
    int thrown = 0;
    try {
        MODEL_CHECK(BytesOf((in.*read)()) == device.bytes);
    } catch (int error) {
        thrown = error;
    }
    MODEL_CHECK(in.asked == sizeof(T));
    MODEL_CHECK(thrown == (device.answer == sizeof(T) ? 0 : -1));
}

void CheckBytes(Reader& in, int len, const Device& device)
{
    int result = len;
    const std::unique_ptr<char[]> array(in.ReadBytes(result));
    MODEL_CHECK((array == nullptr) == (len < 1));
    MODEL_CHECK(result == (len < 1 ? len : device.answer));
    MODEL_CHECK(len < 1 || in.asked == len);
    MODEL_CHECK(len < 1 || device.bytes == std::string(array.get(), device.bytes.size()));
}

void ReadOne(Reader& in, const Device& device, ByteSource& source)
{
    const std::function<void()> items[] = {
        [&] { CheckItem(in, &DataInputStream::ReadInt, device); },
        [&] { CheckItem(in, &DataInputStream::ReadShort, device); },
        [&] { CheckItem(in, &DataInputStream::ReadChar, device); },
        [&] { CheckBytes(in, source.Between(-5, 200), device); },
        [&] {
            char bytes[9];
            MODEL_CHECK(in.DataInputStream::Read(bytes, 9) == device.answer);
            MODEL_CHECK(std::string(bytes, 9) == device.bytes);
        }};
    items[source.Between(0, 4)]();
}

} // namespace

void DriveModel(ByteSource& source)
{
    Device device(source);
    auto out = std::make_unique<Writer>(device);
    auto in = std::make_unique<Reader>(device);
    for (int i = 0; i < 100 && !source.IsEmpty(); ++i) {
        device.bytes.clear();
        if (source.Flag()) {
            const std::string expected = WriteOne(*out, device, source);
            MODEL_CHECK(std::exchange(out->bytes, {}) == expected);
            MODEL_CHECK(device.bytes == expected);
        } else {
            ReadOne(*in, device, source);
        }
        MODEL_CHECK(out->HasFailed() == device.hasRefused);
        MODEL_CHECK(in->HasFailed() == device.hasMissed);
    }
    MODEL_CHECK(in->Available() == 77);
    device.ended = 0;
    out.reset();
    MODEL_CHECK(device.ended == 0); // neither flushed nor closed
    in.reset();
    MODEL_CHECK(device.ended == 1); // closed
}
