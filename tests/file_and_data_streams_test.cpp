#include "StringContent.h"
#include "TempDir.h"
#include "TestPrelude.h"

#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <ISerializable.h>

using namespace OrvoStream;
using namespace std::string_literals;

namespace
{

const CQWString path(QStringLiteral("file"));

struct Point final : ISerializable {
    void Serialize(DataOutputStream& out) const override { out << short{1} << short{-1}; }
};

struct Recording : DataOutputStream {
    using DataOutputStream::DataOutputStream;
    int Write(char const* data, int len) override
    {
        all.append(data, data + len);
        return DataOutputStream::Write(data, len);
    }
    std::string all;
};

struct Input : FileInputStream {
    using FileInputStream::FileInputStream;
    int Available() override { return 77; }
    void Close() override { ++closed; }
    int closed = 0;
};

} // namespace

TEST(FileStreams, OutputIsWhatWasFlushedAndNoMore)
{
    const TempDir dir;
    dir.Put("file", "before");
    FileOutputStream(path).Write("lost", 4);
    FileOutputStream out(path);
    out.SaveBuffer(nullptr, 4);
    out.SaveBuffer("x", 0);
    out.SaveBuffer("x", -1);
    EXPECT_EQ("before", dir.Get("file")) << "nothing was flushed";
    out.Write("flushed", 7);
    out.Flush();
    out.Write("kept", 4);
    out.Close();
    EXPECT_EQ("flushed", dir.Get("file"));
    out.Flush();
    EXPECT_EQ("kept", dir.Get("file")) << "still buffered, and written anew";
}

TEST(FileStreams, OnlyInputIsOpenedAgainWhereThatFailed)
{
    const TempDir dir{"file/"};
    FileInputStream in(path);
    char bytes[3] = {};
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    FileOutputStream out(path);
    out.SaveBuffer("a", 1);
    ASSERT_TRUE(QDir().rmdir("file"));
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    out.SaveBuffer("b", 1);
    EXPECT_EQ("", dir.All());
    out.Close();
    out.SaveBuffer("cde", 3);
    EXPECT_EQ(2, in.LoadBuffer(bytes, 2));
    EXPECT_EQ(0, in.Available()) << "whatever is left";
    EXPECT_EQ(1, in.LoadBuffer(bytes, 2));
    EXPECT_STREQ("ed", bytes);
    in.Close();
    EXPECT_EQ(3, in.Read(bytes, 3)) << "from its first byte";
    EXPECT_EQ('c', bytes[0]);
    EXPECT_EQ(-1, in.LoadBuffer(bytes, -1));
    EXPECT_EQ(0, FileInputStream(CQWString()).LoadBuffer(bytes, 1));
}

// The expected bytes are those of a little-endian host.
TEST(DataStreams, ItemsAreTheirBytesInMemoryAndAllGoThroughOneWrite)
{
    const TempDir dir;
    const auto text = Make<CQSString>("a\0b"s);
    FileOutputStream file(path);
    Recording recording(file);
    DataOutputStream& out = recording;
    const std::vector positions = {out.Write(text), out.Write(CQSString()), out.Write(short{7}),
                                   out.Write('c'), out.Write(5)};
    EXPECT_EQ((std::vector{0, 3, 3, 5, 6}), positions) << "not counts";
    out << text << 0x01020304 << 0xFFFFFFFEU << static_cast<unsigned long>(0x1122334455667788ULL)
        << short{0x0102} << static_cast<unsigned short>(0xFFFF) << 'A' << '\xE4'
        << static_cast<unsigned char>(255) << "text" << static_cast<char*>(nullptr) << Point();
    out.Flush();
    EXPECT_EQ("a\0b\7\0c\5\0\0\0a\4\3\2\1\xFE\xFF\xFF\xFF\x88\x77\x66\x55\2\1\xFF\xFF"
              "A\xE4\xFFtext\1\0\xFF\xFF"s,
              dir.Get("file"));
    EXPECT_EQ(recording.all, dir.Get("file"));
}

TEST(DataStreams, ItemsReadBackOrThrowMinusOne)
{
    const TempDir dir;
    dir.Put("file", QByteArray::fromStdString("\4\3\2\1\xFF\xFF\xE4hello??"s));
    FileInputStream file(path);
    DataInputStream in(file);
    EXPECT_EQ(0x01020304, in.ReadInt());
    EXPECT_EQ(-1, in.ReadShort());
    EXPECT_EQ(0xE4, static_cast<unsigned char>(in.ReadChar()));
    int length = -5;
    EXPECT_EQ(nullptr, in.ReadBytes(length));
    EXPECT_EQ(-5, length);
    const std::unique_ptr<char[]> hello(in.ReadBytes(length = 5));
    EXPECT_EQ("hello", std::string(hello.get(), 5));
    const auto thrown = [&in](auto read) {
        try {
            return int{(in.*read)()};
        } catch (int value) {
            return value;
        }
    };
    EXPECT_EQ(-1, thrown(&DataInputStream::ReadInt)) << "two bytes are left, and given up";
    EXPECT_EQ(-1, thrown(&DataInputStream::ReadShort));
    EXPECT_EQ(-1, thrown(&DataInputStream::ReadChar));
    const std::unique_ptr<char[]> refused(in.ReadBytes(length));
    ASSERT_TRUE(refused && length == 0);
    EXPECT_EQ(std::string(5, '\0'), std::string(refused.get(), 5));
}

TEST(DataStreams, OnlyTheInputClosesWhatItWraps)
{
    Input input(path);
    EXPECT_EQ(77, DataInputStream(input).Available());
    EXPECT_EQ(1, input.closed);
    DataInputStream(input).Close();
    EXPECT_EQ(3, input.closed);
    const TempDir dir;
    FileOutputStream output(path);
    output.SaveBuffer("a", 1);
    DataOutputStream(output) << 'x';
    EXPECT_EQ("a", dir.Get("file")) << "not flushed";
    output.Flush();
    EXPECT_EQ("ax", dir.Get("file")) << "nor closed";
    DataOutputStream(output).Close();
    output.SaveBuffer("c", 1);
    EXPECT_EQ("c", dir.Get("file"));
}
