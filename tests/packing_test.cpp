#include <ByteOrder.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>

TEST(ByteOrder, WordsArePackedMostSignificantByteFirst)
{
    std::array<unsigned char, 9> bytes{};
    SetDWORD(bytes.data() + 1, 0x11223344UL);
    EXPECT_EQ((std::array<unsigned char, 9>{0, 0x11, 0x22, 0x33, 0x44}), bytes);
    SetWORD(bytes.data() + 1, 0xA1B2);
    EXPECT_EQ((std::array<unsigned char, 9>{0, 0xA1, 0xB2, 0x33, 0x44}), bytes);
}

TEST(ByteOrder, ReadingTakesAllBitsAndNeedsNoAlignment)
{
    unsigned char bytes[] = {0x7F, 0xFF, 0x80, 0x03, 0x04, 0x05, 0x06, 0x07, 0xF8};
    unsigned short word = 0;
    unsigned long doubleWord = ~0UL;
    unsigned long long quad = 0;
    GetWORD(word, bytes + 1);
    GetDWORD(doubleWord, bytes + 1);
    GetLLONG(quad, bytes + 1);
    EXPECT_EQ(0xFF80, word);
    EXPECT_EQ(0xFF800304UL, doubleWord);
    EXPECT_EQ(0xFF800304050607F8ULL, quad);
}

TEST(ByteOrder, OnlyTheLow32BitsOfALongCount)
{
    const auto wide = static_cast<unsigned long>(0xAABBCCDD11223344ULL);
    unsigned char bytes[4];
    SetDWORD(bytes, wide);
    unsigned long back = 0;
    GetDWORD(back, bytes);
    EXPECT_EQ(0x11223344UL, back);
    EXPECT_EQ(0x11223344UL, NTOHL(HTONL(wide)));
}

TEST(ByteOrder, HostToNetworkSwapsOnLittleEndianHostsOnly)
{
    constexpr bool little = std::endian::native == std::endian::little;
    EXPECT_EQ(little ? 0xDDCCBBAAUL : 0xAABBCCDDUL, HTONL(0xAABBCCDDUL));
    EXPECT_EQ(little ? 0xBBAA : 0xAABB, HTONS(0xAABB));
    EXPECT_EQ(0x8001, NTOHS(HTONS(0x8001)));
}
