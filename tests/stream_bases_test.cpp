#include "FailingAllocator.h"
#include "TestPrelude.h"

#include <CIStream.h>
#include <COStream.h>

namespace
{

constexpr int BufferSize = 20480;

using Sizes = std::vector<int>;

std::size_t Size(int n)
{
    return static_cast<std::size_t>(n);
}

// What reached the device, seen also when the stream is gone.
std::vector<std::string> saved;

struct Sink : OrvoStream::COStream {
    Sink() { saved.clear(); }
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        saved.push_back(data == nullptr ? "null" : std::string(data, Size(len)));
    }
};

// Bytes \a from up to \a to of the endless text that sources give, which holds no zero.
std::string Given(int from, int to)
{
    std::string bytes;
    for (int i = from; i < to; ++i) {
        bytes += static_cast<char>(1 + i % 251);
    }
    return bytes;
}

// Gives so many bytes, at most so many a load, and may lie about their number.
struct Source : OrvoStream::CIStream {
    Source(int size, int most, int lie = 0) : left(size), mostALoad(most), claim(lie) {}
    int Available() override { return left; }
    void Close() override {}
    int LoadBuffer(char* dest, int len) override
    {
        asked.push_back(len);
        const int count = std::min({len, left, mostALoad});
        Given(given, given + count).copy(dest, Size(count));
        given += count;
        left -= count;
        return claim != 0 ? claim : count;
    }
    std::string ReadText(int len)
    {
        std::string text(Size(len), '#');
        return Read(text.data(), len) == len ? text : "refused " + text.substr(0, 1);
    }
    int left, mostALoad, claim, given = 0;
    Sizes asked;
};

} // namespace

TEST(OutputBase, WriteReturnsThePositionAndAnExactFillFlushesFirst)
{
    const struct {
        int len, position, flushed; // -1: nothing
    } rows[] = {{0, 0, -1},         {10240, 0, -1},    {10240, 0, 10240}, {100, 10240, -1},
                {10139, 10340, -1}, {0, 20479, -1},    {1, 0, 20479},     {20480, 0, 1},
                {0, 0, 20480},      {3, 0, -1},        {20481, 0, 3},     {20480, 0, -1},
                {1, 0, 20480},      {2147483647, 0, 1}};
    Sink out;
    std::string waiting;
    for (const auto& row : rows) {
        const std::string data(row.len > BufferSize ? 0 : Size(row.len),
                               "0123456789abcd"[&row - rows]);
        EXPECT_EQ(row.position, out.Write(data.data(), row.len)) << &row - rows;
        ASSERT_EQ(row.flushed >= 0 ? 1U : 0U, saved.size()) << &row - rows;
        if (row.flushed >= 0) {
            EXPECT_EQ(Size(row.flushed), saved[0].size());
            EXPECT_TRUE(std::exchange(waiting, {}) == saved[0]);
        }
        saved.clear();
        waiting += data;
    }
}

TEST(OutputBase, FlushAlwaysReachesTheDeviceRefusalsAndDestructionNever)
{
    auto out = std::make_unique<Sink>();
    out->Flush();
    {
        const FailingAllocator noMemory(1);
        EXPECT_EQ(0, out->Write("abc", 3));
    }
    EXPECT_EQ(0, out->Write("first", 5));
    EXPECT_EQ(0, out->Write("abc", -1) + out->Write(nullptr, 1));
    EXPECT_EQ(5, out->Write(nullptr, 0));
    out->Flush();
    out->Flush();
    out->Write("gone", 4);
    out.reset();
    EXPECT_EQ((std::vector<std::string>{"null", "first", ""}), saved);
}

TEST(InputBase, ReadsWhatTheFirstLoadBrings)
{
    Source in(BufferSize, BufferSize);
    EXPECT_EQ("refused #", in.ReadText(BufferSize + 1));
    Source pieces(100, BufferSize);
    EXPECT_EQ(Given(0, 60), pieces.ReadText(60));
    EXPECT_EQ(Given(60, 100), pieces.ReadText(40));
    EXPECT_EQ("", pieces.ReadText(0));
    EXPECT_EQ("refused #", pieces.ReadText(1));
    EXPECT_EQ((Sizes{20480, 100}), pieces.asked);
    // A refusal moves the unread bytes away from the position, which loses them.
    Source lost(100, BufferSize);
    EXPECT_EQ(Given(0, 60), lost.ReadText(60));
    ExpectAll<std::string>("refused #", {lost.ReadText(41), lost.ReadText(40)});
    EXPECT_EQ((Sizes{20480, 60, 40}), lost.asked);
}

// What is asked of the device, and reads that go on at the old position in the moved bytes.
TEST(InputBase, RefillKeepsThePositionAndAsksForWhatHadBeenRead)
{
    const auto zeros = [](int count) { return std::string(Size(count), '\0'); };
    Source in(100000, BufferSize);
    EXPECT_TRUE(Given(0, 20000) == in.ReadText(20000));
    // Bytes 20000 to 40480 stand in the buffer now, and nothing behind it.
    EXPECT_TRUE(Given(40000, 40480) + zeros(520) == in.ReadText(1000));
    EXPECT_TRUE(zeros(BufferSize) == in.ReadText(BufferSize));
    EXPECT_EQ((Sizes{20480, 20000, 20480}), in.asked);
    Source slow(100000, 300);
    EXPECT_EQ(Given(0, 100), slow.ReadText(100));
    EXPECT_EQ(Given(200, 400) + zeros(1), slow.ReadText(201));
    EXPECT_EQ(zeros(300), slow.ReadText(300));
    EXPECT_EQ("refused #", slow.ReadText(301));
    EXPECT_EQ((Sizes{20480, 100, 300, 300}), slow.asked);
}

TEST(InputBase, BoundsArgumentsDevicesAndThePosition)
{
    Source nothing(0, BufferSize, -5);
    {
        const FailingAllocator noMemory(1);
        EXPECT_EQ(0, nothing.PrepareBuffer(0));
    }
    EXPECT_TRUE(nothing.PrepareBuffer(0) == 1 && nothing.PrepareBuffer(1) == 0);
    Source endless(0, BufferSize, 2147483647);
    EXPECT_EQ(0, endless.PrepareBuffer(BufferSize + 1));
    std::string block(BufferSize, '#');
    EXPECT_EQ(0, endless.Read(block.data(), -1) + endless.Read(nullptr, 1));
    for (qint64 total = 0; total < qint64{2200000000}; total += BufferSize) {
        ASSERT_EQ(BufferSize, endless.Read(block.data(), BufferSize));
    }
    EXPECT_EQ(std::string(BufferSize, '\0'), block);
}
