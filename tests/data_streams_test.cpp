#include <CQSString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <ISerializable.h>

#include <gtest/gtest.h>

#include <bit>
#include <memory>
#include <string>
#include <utility>

using OrvoStream::DataInputStream;

namespace
{

struct Sink : OrvoStream::COStream {
    void Close() override { ++closed; }
    void SaveBuffer(char const* data, int len) override { saved.append(data, data + len); }
    std::string saved;
    int closed = 0;
};

struct Source : OrvoStream::CIStream {
    explicit Source(std::string bytes) : rest(std::move(bytes)) {}
    int Available() override { return 77; }
    void Close() override { ++closed; }
    int LoadBuffer(char* dest, int) override
    {
        const auto count = rest.copy(dest, rest.size());
        rest.clear();
        return static_cast<int>(count);
    }
    std::string rest;
    int closed = 0;
};

// The bytes of one or more items. The expected bytes below are those of a little-endian host.
template <typename... Items>
std::string Bytes(const Items&... items)
{
    Sink sink;
    DataOutputStream out(sink);
    (out << ... << items);
    out.Flush();
    return sink.saved;
}

struct Point final : ISerializable {
    Point(short x, short y) : m_x(x), m_y(y) {}
    void Serialize(DataOutputStream& out) const override { out << m_x << m_y; }
    short m_x;
    short m_y;
};

using namespace std::string_literals;

} // namespace

static_assert(std::endian::native == std::endian::little);

TEST(DataStreams, ItemsAreTheirBytesInMemory)
{
    EXPECT_EQ("\x04\x03\x02\x01"s, Bytes(0x01020304));
    EXPECT_EQ("\xFE\xFF\xFF\xFF"s, Bytes(-2));
    EXPECT_EQ("\xFF\xFF\xFF\xFF"s, Bytes(0xFFFFFFFFU));
    EXPECT_EQ("\x88\x77\x66\x55"s, Bytes(static_cast<unsigned long>(0x1122334455667788ULL)));
    EXPECT_EQ("\x02\x01\xFF\xFF"s,
              Bytes(static_cast<short>(0x0102), static_cast<unsigned short>(0xFFFF)));
    EXPECT_EQ("A\xFF"s, Bytes('A', static_cast<unsigned char>(255)));
    EXPECT_EQ("abc"s, Bytes("abc", static_cast<const char*>(nullptr), ""));
    EXPECT_EQ("\x01\x00\xFF\xFF!"s, Bytes(Point(1, -1), '!'));
}

TEST(DataStreams, StringsAreWrittenWholeWithoutLength)
{
    CQSString text;
    text.SetData(reinterpret_cast<unsigned char*>("a\0b"s.data()), 3);
    Sink sink;
    DataOutputStream out(sink);
    EXPECT_EQ(0, out.Write(text)) << "the position, not a count";
    EXPECT_EQ(3, out.Write(CQSString()));
    EXPECT_EQ(3, out.Write(static_cast<short>(7)));
    EXPECT_EQ(5, out.Write('c'));
    out << text;
    out.Flush();
    EXPECT_EQ("a\0b\7\0ca"s, sink.saved);
}

TEST(DataStreams, EveryWriteGoesThroughOne)
{
    struct Counting : DataOutputStream {
        using DataOutputStream::DataOutputStream;
        int Write(char const*, int len) override { return bytes += len; }
        int bytes = 0;
    };
    Sink sink;
    Counting out(sink);
    DataOutputStream& typed = out;
    typed << 1 << 2U << 3UL << static_cast<short>(4) << 'c' << "abc" << Point(1, 2);
    EXPECT_EQ(26, typed.Write(5));
}

TEST(DataStreams, WhatWasWrittenReadsBack)
{
    Source source(Bytes(0x01020304, static_cast<unsigned short>(0xFFFF), '\xE4', 5, "hello"));
    DataInputStream in(source);
    EXPECT_EQ(77, in.Available());
    EXPECT_EQ(0x01020304, in.ReadInt());
    EXPECT_EQ(-1, in.ReadShort());
    EXPECT_EQ(0xE4, static_cast<unsigned char>(in.ReadChar()));
    int length = in.ReadInt();
    const std::unique_ptr<char[]> bytes(in.ReadBytes(length));
    ASSERT_EQ(5, length);
    EXPECT_EQ("hello", std::string(bytes.get(), 5));
}

TEST(DataStreams, ShortReadsThrowMinusOneOrReportZero)
{
    const auto throws = [](const char* available, auto read) {
        Source source(available);
        DataInputStream in(source);
        try {
            (in.*read)();
        } catch (int value) {
            return value == -1;
        }
        return false;
    };
    EXPECT_TRUE(throws("ab", &DataInputStream::ReadInt));
    EXPECT_TRUE(throws("a", &DataInputStream::ReadShort));
    EXPECT_TRUE(throws("", &DataInputStream::ReadChar));
    EXPECT_FALSE(throws("a", &DataInputStream::ReadChar));
    Source source("abc");
    DataInputStream in(source);
    int len = -5;
    EXPECT_EQ(nullptr, in.ReadBytes(len));
    EXPECT_EQ(-5, len);
    len = 5;
    const std::unique_ptr<char[]> bytes(in.ReadBytes(len));
    EXPECT_EQ(0, len);
    ASSERT_NE(nullptr, bytes);
    EXPECT_EQ(std::string(5, '\0'), std::string(bytes.get(), 5));
}

TEST(DataStreams, OnlyTheInputClosesWhatItWraps)
{
    Source source("");
    {
        DataInputStream in(source);
        in.Close();
        EXPECT_EQ(1, source.closed);
    }
    EXPECT_EQ(2, source.closed);
    Sink sink;
    {
        DataOutputStream out(sink);
        out << 1;
    }
    EXPECT_EQ("", sink.saved);
    EXPECT_EQ(0, sink.closed);
    DataOutputStream(sink).Close();
    EXPECT_EQ(1, sink.closed);
}
