// Every allocation of an operation is made to fail in turn: the operation must take its stated
// way out, allocate no more often than listed, and leak nothing.

#include "FailingAllocator.h"
#include "StringContent.h"
#include "TestPrelude.h"

namespace
{

enum WayOut { Unchanged, NoBuffer };

template <class String>
struct Operation {
    std::function<int(String&)> run;
    std::vector<WayOut> waysOut; // one for each allocation
};

template <class String, class Text>
void FailEachAllocation(const std::vector<Operation<String>>& operations, Text original)
{
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations.data());
        const auto& [run, waysOut] = operation;
        const int liveBefore = FailingAllocator::s_liveArrays;
        for (size_t n = 0; n <= waysOut.size(); ++n) {
            String s;
            s.SetData(original);
            const FailingAllocator allocator(static_cast<int>(n) + 1);
            const int result = run(s);
            ASSERT_EQ(n < waysOut.size(), allocator.HasFailed());
            if (n < waysOut.size()) {
                EXPECT_EQ(0, result);
                EXPECT_EQ(waysOut[n] == NoBuffer, s.GetDataPtr() == nullptr && s.IsEmpty());
                EXPECT_EQ(waysOut[n] == Unchanged, s.GetDataPtr() && s.Compare(original) == 0);
            }
        }
        EXPECT_EQ(liveBefore, FailingAllocator::s_liveArrays);
    }
}

} // namespace

TEST(WithoutMemory, ByteStringIsEmptiedOrLeftAlone)
{
    const CQSString other = Make<CQSString>("other text");
    const CQWString wide = Wide(L"wide");
    FailEachAllocation<CQSString>(
        {
            {[](CQSString& s) { return s.AllocBuffer(2), 0; }, {NoBuffer}},
            {[&](CQSString& s) { return other.AllocCopy(s, 2, 1), 0; }, {NoBuffer}},
            {[](CQSString& s) { return s.SetData("abc"); }, {NoBuffer}},
            {[&](CQSString& s) { return s.SetData(&wide); }, {Unchanged}},
            {[&](CQSString& s) { return s = other, 0; }, {NoBuffer}},
            {[&](CQSString& s) { return s = wide, 0; }, {Unchanged}},
            {[](CQSString& s) { return s.AppendChar('c'); }, {NoBuffer}},
            {[](CQSString& s) { return s.AppendData(s.GetDataPtr()); }, {NoBuffer}},
            {[](CQSString& s) { return s.TrimLeft(), 0; }, {Unchanged}},
            {[](CQSString& s) { return s.TrimRight(), 0; }, {Unchanged}},
            {[](CQSString& s) { return s.TrimRightAndLeft(), 0; }, {Unchanged}},
            {[](CQSString& s) { return s.TrimRightAndLeft(1, 1, s), 0; }, {NoBuffer}},
            {[](CQSString& s) { return s.GetSubString(s, 1, 2), 0; }, {NoBuffer}},
            {[](CQSString& s) { return s.Replace("a", "bc"); }, {Unchanged}},
            {[](CQSString& s) { return s.ToString(-7), 0; }, {NoBuffer}},
            {[&](CQSString&) { return CQSString(other).GetLength(); }, {Unchanged}},
            {[&](CQSString&) { return CQSString(wide).GetLength(); }, {Unchanged}},
            {[](CQSString&) { return CQSString(3).GetLength(); }, {Unchanged}},
            {[](CQSString& s) { return s.Find("a") + s.IsEndWith("a"); }, {}},
        },
        " a1 a ");
    for (const char* const text : {"abc", "255"}) {
        FailEachAllocation<CQSString>({{[](auto& s) { return s.ToHexString(); }, {Unchanged}}},
                                      text);
    }
}

// Their buffers would pass what a 32-bit count tells; no memory is asked for at all.
TEST(WithoutMemory, TheLongestLengthsAreRefused)
{
    CQWString s = Wide(L"abc");
    const FailingAllocator allocator(1);
    EXPECT_EQ(0, CQSString(INT_MAX).GetLength());
    EXPECT_EQ(nullptr, CQWString(0x1FFFFFFF).GetDataPtr());
    EXPECT_EQ(0, s.PrepareBufferToWrite(INT_MAX));
    EXPECT_EQ(nullptr, s.GetDataPtr());
    EXPECT_FALSE(allocator.HasFailed());
}

TEST(WithoutMemory, WideStringLosesItsBufferOrIsLeftAlone)
{
    const CQWString other = Wide(L"a text too long for the buffer");
    const CQSString utf8 = Make<CQSString>("bytes of a length beyond the buffer");
    const unsigned char text[] = "longer than it by far";
    FailEachAllocation<CQWString>(
        {
            {[](CQWString& s) { return s.AllocBuffer(2), 0; }, {NoBuffer}},
            {[](CQWString& s) { return s.PrepareBufferToWrite(9); }, {NoBuffer}},
            {[](CQWString& s) { return s.SetData(L"longer than it"); }, {NoBuffer}},
            {[](CQWString& s) { return s.SetData(L"short"); }, {}},
            {[&](CQWString& s) { return s = other, 0; }, {NoBuffer}},
            {[&](CQWString& s) { return s = utf8, 0; }, {Unchanged, NoBuffer}},
            {[&](CQWString& s) { return s.SeASCIIData(text, 21); },
             {Unchanged, Unchanged, NoBuffer}},
            {[](CQWString& s) { return s.AppendChar(L'b'); }, {NoBuffer}},
            {[](CQWString& s) { return s.WCharToUtf16() != nullptr ? 1 : 0; }, {Unchanged}},
            {[](CQWString& s) { return s.Replace(L"a", L"bc"); }, {Unchanged}},
            {[](CQWString& s) { return CQWString::EncryptStrToInt(s); }, {Unchanged}},
            {[&](CQWString&) { return CQWString(other).GetLength(); }, {Unchanged}},
            {[&](CQWString&) { return CQWString(utf8).GetDataPtr() != nullptr; }, {Unchanged}},
            {[](CQWString&) { return CQWString(3).GetDataPtr() != nullptr; }, {Unchanged}},
            {[&](CQWString& s) { return s.SetUTF8Data(text, 21); }, {Unchanged, NoBuffer}},
            {[&](CQWString& s) { return s.SetUTF16Data(text, 10); }, {Unchanged, NoBuffer}},
            {[](CQWString& s) { return s.MakeUpper(), s.MakeLower(), 0; }, {}},
            {[](CQWString& s) { return s.TrimRightAndLeft(), 0; }, {}},
        },
        L" a1 a ");
}
