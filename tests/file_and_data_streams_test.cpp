#include "TempDir.h"

#include <CQSString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <ISerializable.h>

#include <gtest/gtest.h>

#include <bit>
#include <memory>

using OrvoStream::DataInputStream;
using OrvoStream::FileInputStream;
using OrvoStream::FileOutputStream;
using namespace std::string_literals;

namespace
{

const CQWString path(QStringLiteral("file"));

// The bytes of one or more items. The expected ones below are those of a little-endian host.
template <typename... Items>
std::string Bytes(const Items&... items)
{
    const TempDir dir;
    FileOutputStream file(path);
    DataOutputStream out(file);
    (out << ... << items);
    out.Flush();
    return dir.Get("file");
}

struct Point final : ISerializable {
    void Serialize(DataOutputStream& out) const override { out << short{1} << short{-1}; }
};

// What reading an item throws where there are only so many bytes; 0 for nothing.
template <typename Item>
int Thrown(int available, Item (DataInputStream::*read)())
{
    const TempDir dir;
    dir.Put("file", QByteArray(available, 'a'));
    FileInputStream file(path);
    try {
        (DataInputStream(file).*read)();
    } catch (int value) {
        return value;
    }
    return 0;
}

} // namespace

static_assert(std::endian::native == std::endian::little);

TEST(FileStreams, OutputIsWhatWasFlushedAndNoMore)
{
    const TempDir dir;
    dir.Put("file", "what was there before");
    {
        FileOutputStream out(path);
        out.Write("lost", 4);
        out.Close();
        out.SaveBuffer(nullptr, 4);
        out.SaveBuffer("x", 0);
        out.SaveBuffer("x", -1);
    }
    EXPECT_EQ("what was there before", dir.Get("file")) << "nothing was flushed";
    FileOutputStream out(path);
    out.Write("flushed", 7);
    out.Flush();
    out.Write("kept", 4);
    out.Close();
    EXPECT_EQ("flushed", dir.Get("file"));
    out.Flush();
    EXPECT_EQ("kept", dir.Get("file")) << "still buffered, and written anew";
}

TEST(FileStreams, AnOutputThatDoesNotOpenIsNotTriedAgainBeforeClose)
{
    const TempDir dir;
    dir.Put("file/");
    FileOutputStream out(path);
    out.SaveBuffer("a", 1);
    ASSERT_TRUE(QDir().rmdir("file"));
    out.SaveBuffer("b", 1);
    EXPECT_EQ("", dir.All());
    out.Close();
    out.SaveBuffer("c", 1);
    EXPECT_EQ("file=c ", dir.All());
}

TEST(FileStreams, InputIsOpenedWhenItIsLoadedAndTriedAgain)
{
    const TempDir dir;
    FileInputStream in(path);
    char bytes[3] = {};
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    EXPECT_EQ("", dir.All());
    dir.Put("file", "abc");
    EXPECT_EQ(2, in.LoadBuffer(bytes, 2));
    EXPECT_EQ(0, in.Available()) << "whatever is left";
    EXPECT_EQ(1, in.LoadBuffer(bytes, 2));
    EXPECT_STREQ("cb", bytes);
    in.Close();
    EXPECT_EQ(3, in.Read(bytes, 3)) << "from its first byte";
    EXPECT_EQ('a', bytes[0]);
    EXPECT_EQ(0, in.Read(bytes, 1));
    EXPECT_EQ(-1, in.LoadBuffer(bytes, -1));
    EXPECT_EQ(0, FileInputStream(CQWString()).Read(bytes, 1));
}

TEST(DataStreams, ItemsAreTheirBytesInMemory)
{
    EXPECT_EQ("\4\3\2\1\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, Bytes(0x01020304, -2, 0xFFFFFFFFU));
    EXPECT_EQ("\x88\x77\x66\x55"s, Bytes(static_cast<unsigned long>(0x1122334455667788ULL)));
    EXPECT_EQ("\2\1\xFF\xFF"s, Bytes(short{0x0102}, static_cast<unsigned short>(0xFFFF)));
    EXPECT_EQ("A\xFF"s, Bytes('A', static_cast<unsigned char>(255)));
    EXPECT_EQ("abc"s, Bytes("abc", static_cast<const char*>(nullptr), ""));
    EXPECT_EQ("\1\0\xFF\xFF!"s, Bytes(Point(), '!'));
}

TEST(DataStreams, EveryWriteGoesThroughOneAndGivesThePosition)
{
    struct Recording : DataOutputStream {
        using DataOutputStream::DataOutputStream;
        int Write(char const* data, int len) override
        {
            all.append(data, data + len);
            return DataOutputStream::Write(data, len);
        }
        std::string all;
    };
    const TempDir dir;
    CQSString text;
    text.SetData(reinterpret_cast<unsigned char*>("a\0b"s.data()), 3);
    FileOutputStream file(path);
    Recording recording(file);
    DataOutputStream& out = recording;
    EXPECT_EQ(0, out.Write(text));
    EXPECT_EQ(3, out.Write(CQSString()));
    EXPECT_EQ(3, out.Write(short{7}));
    EXPECT_EQ(5, out.Write('c'));
    EXPECT_EQ(6, out.Write(5));
    out << text << 2U << 3UL << Point();
    out.Flush();
    EXPECT_EQ("a\0b\7\0c\5\0\0\0a\2\0\0\0\3\0\0\0\1\0\xFF\xFF"s, recording.all);
    EXPECT_EQ(recording.all, dir.Get("file"));
}

TEST(DataStreams, ItemsReadBackOrThrowMinusOne)
{
    EXPECT_EQ(-1, Thrown(3, &DataInputStream::ReadInt));
    EXPECT_EQ(-1, Thrown(1, &DataInputStream::ReadShort));
    EXPECT_EQ(-1, Thrown(0, &DataInputStream::ReadChar));
    EXPECT_EQ(0, Thrown(1, &DataInputStream::ReadChar));
    const TempDir dir;
    dir.Put("file", QByteArray::fromStdString("\4\3\2\1\xFF\xFF\xE4hello"s));
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
    const std::unique_ptr<char[]> refused(in.ReadBytes(length));
    EXPECT_EQ(0, length);
    ASSERT_NE(nullptr, refused);
    EXPECT_EQ(std::string(5, '\0'), std::string(refused.get(), 5));
}

TEST(DataStreams, OnlyTheInputClosesWhatItWraps)
{
    struct Input : FileInputStream {
        using FileInputStream::FileInputStream;
        int Available() override { return 77; }
        void Close() override { ++closed; }
        int closed = 0;
    } input(path);
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
