#include "FailingNew.h"

#include <CIStream.h>
#include <COStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int BufferSize = 20480;

std::string RandomBytes(std::mt19937& random, int size)
{
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

// Such that exact fills and refusals are frequent.
int RandomLength(std::mt19937& random)
{
    constexpr int Lengths[] = {0, 1, 100, 5120, 10240, BufferSize - 1, BufferSize, BufferSize + 1};
    return random() % 3 == 0 ? static_cast<int>(random() % 8000) : Lengths[random() % 8];
}

struct Sink : OrvoStream::COStream {
    explicit Sink(std::vector<std::string>& saved) : blocks(saved) {}
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        blocks.push_back(data == nullptr ? "null" : std::string(data, data + len));
    }
    std::vector<std::string>& blocks;
};

// A device that gives at most so many bytes a load.
struct Device {
    std::string Load(int len)
    {
        asked.push_back(len);
        const std::string got = data.substr(0, static_cast<std::size_t>(std::min(len, most)));
        data.erase(0, got.size());
        return got;
    }
    std::string data;
    int most = BufferSize;
    std::vector<int> asked = {};
};

struct Source : OrvoStream::CIStream {
    explicit Source(Device from) : device(std::move(from)) {}
    int Available() override { return 0; }
    void Close() override {}
    int LoadBuffer(char* dest, int len) override
    {
        return static_cast<int>(device.Load(len).copy(dest, BufferSize));
    }
    std::string ReadText(int len)
    {
        std::string text(static_cast<std::size_t>(len), '#');
        return Read(text.data(), len) == len ? text : "refused " + text.substr(0, 1);
    }
    Device device;
};

// The rules of reading over memory without an end, zero behind the buffer.
struct SourceModel {
    std::string Read(int len)
    {
        if (memory.empty()) {
            memory.resize(BufferSize);
            valid = Put(0, device.Load(BufferSize));
        }
        if (pos + len > valid) {
            const int rest = std::max(valid - pos, 0);
            Put(0, memory.substr(static_cast<std::size_t>(valid - rest), std::size_t(rest)));
            valid = rest + Put(rest, device.Load(valid - rest));
        }
        if (valid < len) {
            return "refused #";
        }
        const std::string endless = memory + std::string(std::size_t(pos + len), '\0');
        return endless.substr(std::size_t(std::exchange(pos, pos + len)), std::size_t(len));
    }
    int Put(int at, const std::string& bytes)
    {
        memory.replace(std::size_t(at), bytes.size(), bytes);
        return static_cast<int>(bytes.size());
    }
    Device device;
    std::string memory = {};
    int valid = 0;
    int pos = 0;
};

} // namespace

TEST(OutputBase, WriteReturnsThePositionAndAnExactFillFlushesFirst)
{
    std::mt19937 random(7);
    std::vector<std::string> blocks;
    std::vector<std::string> expected;
    Sink out(blocks);
    std::string waiting;
    for (int i = 0; i < 2000; ++i) {
        const std::string data = RandomBytes(random, RandomLength(random));
        if (!waiting.empty() && waiting.size() + data.size() >= BufferSize) {
            expected.push_back(std::exchange(waiting, {}));
        }
        const bool fits = waiting.size() + data.size() <= BufferSize;
        const std::size_t position = fits ? waiting.size() : 0;
        waiting += fits ? data : "";
        const auto len = static_cast<int>(data.size());
        ASSERT_EQ(static_cast<int>(position), out.Write(data.data(), len)) << "write " << i;
    }
    EXPECT_TRUE(expected == blocks);
}

TEST(OutputBase, FlushAlwaysReachesTheDeviceRefusalsAndDestructionNever)
{
    std::vector<std::string> blocks;
    {
        Sink out(blocks);
        out.Flush();
        {
            const FailingNew noMemory;
            EXPECT_EQ(0, out.Write("abc", 3) + out.PrepareBuffer(3));
        }
        EXPECT_EQ(0, out.Write("first", 5));
        EXPECT_EQ(0, out.Write("abc", -1) + out.Write(nullptr, 1));
        EXPECT_EQ(5, out.Write(nullptr, 0));
        out.Flush();
        out.Flush();
        out.Write("kept", 4);
        EXPECT_EQ(0, out.PrepareBuffer(2147483647));
        out.Write("gone", 4);
    }
    EXPECT_EQ((std::vector<std::string>{"null", "first", "", "kept"}), blocks);
}

// Past the first 20480 bytes this pins the unusual refill: what is asked of the device, and
// reads that go on at the old position.
TEST(InputBase, FollowsTheRulesForAnyInputAndReads)
{
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        const int size = static_cast<int>(random() % (round % 5 == 0 ? 3 : 5 * BufferSize));
        const int most = round % 2 == 0 ? BufferSize : 1 + static_cast<int>(random() % BufferSize);
        SourceModel model{{RandomBytes(random, size), most}};
        Source in(model.device);
        for (int i = 0; i < 25; ++i) {
            const int len = RandomLength(random);
            ASSERT_TRUE(model.Read(len) == in.ReadText(len)) << "round " << round;
        }
        ASSERT_EQ(model.device.asked, in.device.asked);
    }
}

TEST(InputBase, BoundsArgumentsDevicesAndThePosition)
{
    struct Liar : Source {
        explicit Liar(int result) : Source(Device{}), claim(result) {}
        int LoadBuffer(char*, int) override { return claim; }
        int claim;
    };
    Liar nothing(-5);
    {
        const FailingNew noMemory;
        EXPECT_EQ(0, nothing.PrepareBuffer(0));
    }
    EXPECT_EQ(1, nothing.PrepareBuffer(0));
    EXPECT_EQ(0, nothing.PrepareBuffer(1));
    Liar endless(2147483647);
    EXPECT_EQ(0, endless.PrepareBuffer(BufferSize + 1));
    std::string block(BufferSize, '#');
    EXPECT_EQ(0, endless.Read(block.data(), -1) + endless.Read(nullptr, 1));
    for (qint64 total = 0; total < qint64{2200000000}; total += BufferSize) {
        ASSERT_EQ(BufferSize, endless.Read(block.data(), BufferSize));
    }
    EXPECT_EQ(std::string(BufferSize, '\0'), block);
}
