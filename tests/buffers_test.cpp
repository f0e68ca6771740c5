#include "AssertRecorder.h"
#include "FailingAllocator.h"
#include "TestPrelude.h"

#include <ByteOrder.h>
#include <MLDataBuf.h>

using Bytes = std::vector<unsigned char>;

TEST(DataBuf, CreateRefusesWhatCannotBeHad)
{
    CMLDataBuf buffer;
    unsigned char byte = 7;
    EXPECT_EQ(0, buffer.Create(0) + buffer.Create(nullptr, 10) + buffer.Create(&byte, 0));
    if constexpr (sizeof(unsigned long) > 4) {
        const auto beyond32Bits = static_cast<unsigned long>(0x100000001ULL);
        EXPECT_EQ(0, buffer.Create(beyond32Bits) + buffer.Create(&byte, beyond32Bits));
    }
    const FailingAllocator noMemory(1);
    EXPECT_EQ(0, buffer.Create(10) + buffer.Append(byte));
    EXPECT_EQ(nullptr, buffer.GetBuf());
    EXPECT_EQ(0UL, buffer.GetMaxSize());
}

TEST(DataBuf, AppendsAreAllOrNothingInHostOrder)
{
    const unsigned char data[] = {1, 2, 3};
    Bytes storage(8, 9);
    CMLDataBuf buffer;
    ASSERT_EQ(1, buffer.Create(storage.data(), 7));
    EXPECT_EQ(4, buffer.Append(static_cast<unsigned long>(0xAA55667788ULL)));
    EXPECT_EQ(0, buffer.Append(0xFFFFFFFFUL));
    using Word = unsigned short;
    EXPECT_TRUE(buffer.Append(Word{0x1234}) == 2 && buffer.Append(Word{0xFFFF}) == 0);
    EXPECT_EQ(0UL, buffer.Append(data, 2) + buffer.Append(data, ~0UL));
    EXPECT_EQ(0UL, buffer.Append(nullptr, 1) + buffer.Append(data, 0));
    EXPECT_EQ(std::endian::native == std::endian::little
                  ? (Bytes{0x88, 0x77, 0x66, 0x55, 0x34, 0x12, 9, 9})
                  : (Bytes{0x55, 0x66, 0x77, 0x88, 0x12, 0x34, 9, 9}),
              storage);
    EXPECT_TRUE(buffer.Append(data[0]) == 1 && buffer.Append(data[0]) == 0);
    buffer.Zero();
    EXPECT_EQ(7UL, buffer.GetFreeSize());
    EXPECT_EQ((Bytes{0, 0, 0, 0, 0, 0, 0, 9}), storage);
    EXPECT_TRUE(buffer.Append(data, 3) == 3 && buffer.Append(buffer.GetBuf(), 4) == 4);
    EXPECT_EQ((Bytes{1, 2, 3, 1, 2, 3, 0, 9}), storage);
}

TEST(DataBuf, MoveDataToHeadKeepsTheRestAndZeroesWhatItVacates)
{
    AssertRecorder recorder;
    for (int start = -1; start <= 11; ++start) {
        const Bytes sample{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0xFF, 0xFF};
        Bytes storage = sample;
        CMLDataBuf buffer;
        ASSERT_EQ(1, buffer.Create(storage.data(), storage.size()));
        buffer.Append(storage.data(), 10);
        buffer.MoveDataToHead(start);
        const int dropped = start <= 10 ? std::max(start, 0) : 0;
        Bytes expected(sample.begin() + dropped, sample.end());
        expected.insert(expected.end() - 2, static_cast<std::size_t>(dropped), 0);
        EXPECT_EQ(expected, storage) << "from " << start;
        EXPECT_EQ(static_cast<unsigned long>(10 - dropped), buffer.GetUsedSize());
    }
    const AssertReport report{"(nStartPos >= 0) && (nStartPos <= (QINT)m_dwUsedSize)",
                              "src/MLDataBuf", 88};
    EXPECT_EQ((AssertReports{report, report}), recorder.Take()) << "from -1 and 11";
}

// The first storage, zeroed, belongs to whoever took it from GetBuf(): freeing it in a second
// Create() would free it twice here.
TEST(DataBuf, SecondCreateKeepsUsedSizeAndStorage)
{
    CMLDataBuf buffer;
    ASSERT_EQ(1, buffer.Create(8));
    const unsigned char* const first = buffer.GetBuf();
    EXPECT_EQ(Bytes(8), Bytes(first, first + 8));
    EXPECT_EQ(6UL, buffer.Append(first, 6));
    unsigned char small[] = {9, 9, 9, 9, 9};
    ASSERT_EQ(1, buffer.Create(small, 4));
    EXPECT_EQ(0xFFFFFFFEUL, buffer.GetFreeSize());
    EXPECT_EQ(0, buffer.Append(first[0]));
    buffer.MoveDataToHead(5);
    EXPECT_EQ((Bytes{0, 0, 0, 0, 9}), Bytes(small, small + 5));
    EXPECT_EQ(1UL, buffer.GetUsedSize());
    delete[] first;
}

// Odd addresses: the arrays need no alignment.
TEST(ByteOrder, PacksTheLow32BitsMostSignificantByteFirst)
{
    Bytes bytes(6);
    SetDWORD(bytes.data() + 1, static_cast<unsigned long>(0xAABBCCDD11223344ULL));
    EXPECT_EQ((Bytes{0, 0x11, 0x22, 0x33, 0x44, 0}), bytes);
    SetWORD(bytes.data() + 1, 0xA1B2);
    EXPECT_EQ((Bytes{0, 0xA1, 0xB2, 0x33, 0x44, 0}), bytes);
    unsigned char packed[] = {0x7F, 0xFF, 0x80, 0x03, 0x04, 0x05, 0x06, 0x07, 0xF8};
    unsigned short word = 0;
    unsigned long doubleWord = ~0UL;
    unsigned long long quad = 0;
    GetWORD(word, packed + 1);
    GetDWORD(doubleWord, packed + 1);
    GetLLONG(quad, packed + 1);
    EXPECT_TRUE(word == 0xFF80 && doubleWord == 0xFF800304 && quad == 0xFF800304050607F8);
}

TEST(ByteOrder, HostToNetworkSwapsOnLittleEndianHostsOnly)
{
    constexpr bool little = std::endian::native == std::endian::little;
    const auto wide = static_cast<unsigned long>(0x11223344AABBCCDDULL);
    EXPECT_EQ(little ? 0xDDCCBBAAUL : 0xAABBCCDDUL, HTONL(wide));
    EXPECT_EQ(0xAABBCCDDUL, NTOHL(HTONL(wide)));
    EXPECT_EQ(little ? 0xBBAA : 0xAABB, HTONS(0xAABB));
    EXPECT_EQ(0x8001, NTOHS(HTONS(0x8001)));
}
