#include "AssertRecorder.h"
#include "TestPrelude.h"

#include <ByteOrder.h>
#include <MLDataBuf.h>

using Bytes = std::vector<unsigned char>;

TEST(DataBuf, AssertsThePositionToMoveFrom)
{
    const AssertRecorder recorder;
    CMLDataBuf().MoveDataToHead(0);
    CMLDataBuf().MoveDataToHead(1);
    EXPECT_EQ((AssertReports{
                  {"(nStartPos >= 0) && (nStartPos <= (QINT)m_dwUsedSize)", "src/MLDataBuf", 88}}),
              AssertRecorder::Take());
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
    EXPECT_EQ(std::tuple(0xFF80, 0xFF800304UL, 0xFF800304050607F8ULL),
              std::tuple(word, doubleWord, quad));
}

TEST(ByteOrder, HostToNetworkSwapsOnLittleEndianHostsOnly)
{
    constexpr bool little = std::endian::native == std::endian::little;
    const auto wide = static_cast<unsigned long>(0x11223344AABBCCDDULL);
    EXPECT_EQ(std::tuple(little ? 0xDDCCBBAAUL : 0xAABBCCDDUL, 0xAABBCCDDUL),
              std::tuple(HTONL(wide), NTOHL(HTONL(wide))));
    EXPECT_EQ(std::tuple(little ? 0xBBAA : 0xAABB, 0x8001),
              std::tuple(HTONS(0xAABB), NTOHS(HTONS(0x8001))));
}
