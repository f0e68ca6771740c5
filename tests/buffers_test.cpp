#include "AssertRecorder.h"
#include "FailingNew.h"

#include <MLDataBuf.h>

#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

const Bytes Sample{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

Bytes Storage(const CMLDataBuf& buffer)
{
    return Bytes(buffer.GetBuf(), buffer.GetBuf() + buffer.GetMaxSize());
}

} // namespace

TEST(DataBuf, CreateRefusesWhatCannotBeHad)
{
    CMLDataBuf buffer;
    unsigned char byte = 7;
    const auto beyond32Bits = static_cast<unsigned long>(0x100000001ULL);
    EXPECT_EQ(0, buffer.Create(0) + buffer.Create(nullptr, 10) + buffer.Create(&byte, 0));
    if constexpr (sizeof beyond32Bits > 4) {
        EXPECT_EQ(0, buffer.Create(beyond32Bits) + buffer.Create(&byte, beyond32Bits));
    }
    const FailingNew noMemory;
    EXPECT_EQ(0, buffer.Create(10));
    EXPECT_EQ(0, buffer.Append(byte));
    EXPECT_EQ(nullptr, buffer.GetBuf());
    EXPECT_EQ(0UL, buffer.GetMaxSize());
}

TEST(DataBuf, AppendsAreAllOrNothingInHostOrder)
{
    const bool little = std::endian::native == std::endian::little;
    const Bytes words = little ? Bytes{0x88, 0x77, 0x66, 0x55, 0x34, 0x12, 0}
                               : Bytes{0x55, 0x66, 0x77, 0x88, 0x12, 0x34, 0};
    CMLDataBuf buffer;
    ASSERT_EQ(1, buffer.Create(7));
    EXPECT_EQ(4, buffer.Append(static_cast<unsigned long>(0xAA55667788ULL)));
    EXPECT_EQ(0, buffer.Append(0xFFFFFFFFUL));
    EXPECT_EQ(2, buffer.Append(static_cast<unsigned short>(0x1234)));
    EXPECT_EQ(0, buffer.Append(static_cast<unsigned short>(0xFFFF)));
    EXPECT_EQ(0UL, buffer.Append(Sample.data(), 2) + buffer.Append(Sample.data(), ~0UL));
    EXPECT_EQ(0UL, buffer.Append(nullptr, 1) + buffer.Append(Sample.data(), 0));
    EXPECT_EQ(words, Storage(buffer));
    EXPECT_EQ(1, buffer.Append(Sample[0]));
    EXPECT_EQ(0, buffer.Append(Sample[0]));
    buffer.Zero();
    EXPECT_EQ(7UL, buffer.GetFreeSize());
    EXPECT_EQ(Bytes(7, 0), Storage(buffer));
    buffer.Append(Sample.data(), 3);
    EXPECT_EQ(4UL, buffer.Append(buffer.GetBuf(), 4));
    EXPECT_EQ((Bytes{1, 2, 3, 1, 2, 3, 0}), Storage(buffer));
}

TEST(DataBuf, MoveDataToHeadKeepsTheRestAndZeroesWhatItVacates)
{
    AssertRecorder recorder;
    for (int used = 0; used <= 10; ++used) {
        for (int start = -1; start <= used + 1; ++start) {
            Bytes storage = Sample;
            CMLDataBuf buffer;
            ASSERT_EQ(1, buffer.Create(storage.data(), storage.size()));
            buffer.Append(storage.data(), static_cast<unsigned long>(used));
            buffer.MoveDataToHead(start);

            const bool asserts = start < 0 || start > used;
            const int dropped = asserts ? 0 : start;
            Bytes expected = Sample;
            expected.erase(expected.begin(), expected.begin() + dropped);
            expected.insert(expected.begin() + used - dropped, static_cast<size_t>(dropped), 0);
            EXPECT_EQ(expected, storage) << used << " used, from " << start;
            EXPECT_EQ(static_cast<unsigned long>(used - dropped), buffer.GetUsedSize());
            const auto reports = recorder.Take();
            ASSERT_EQ(asserts ? 1U : 0U, reports.size());
            EXPECT_TRUE(!asserts ||
                        reports[0].Is("(nStartPos >= 0) && (nStartPos <= (QINT)m_dwUsedSize)",
                                      "src/MLDataBuf", 88));
        }
    }
}

// The first storage belongs to whoever took it from GetBuf(): freeing it in a second Create()
// would free it twice here.
TEST(DataBuf, SecondCreateKeepsUsedSizeAndStorage)
{
    CMLDataBuf buffer;
    ASSERT_EQ(1, buffer.Create(8));
    buffer.Append(Sample.data(), 6);
    const unsigned char* const first = buffer.GetBuf();
    unsigned char small[] = {9, 9, 9, 9, 9};
    ASSERT_EQ(1, buffer.Create(small, 4));
    EXPECT_EQ(0xFFFFFFFEUL, buffer.GetFreeSize());
    EXPECT_EQ(0, buffer.Append(first[0]));
    buffer.MoveDataToHead(5);
    EXPECT_EQ((Bytes{0, 0, 0, 0, 9}), Bytes(small, small + 5));
    EXPECT_EQ(1UL, buffer.GetUsedSize());
    delete[] first;
}
