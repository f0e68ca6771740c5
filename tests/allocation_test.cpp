// How often operations of the strings ask for memory: once for a change of length, and no more
// often than listed otherwise. What they do without memory, out_of_memory.cpp tells.

#include "FailingAllocator.h"
#include "StringContent.h"
#include "TestPrelude.h"

namespace
{

template <class String, class Text>
void ExpectAllocations(int expected, Text original,
                       const std::vector<std::function<void(String&)>>& operations)
{
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations.data());
        String s;
        s.SetData(original);
        currentFault = {INT_MAX, false, true, false};
        operation(s);
        currentFault.isOn = false;
        EXPECT_EQ(expected, INT_MAX - currentFault.untilFailure);
    }
}

} // namespace

TEST(Allocations, OfByteStrings)
{
    const auto other = Make<CQSString>("other text");
    const CQWString wide = Wide(L"wide");
    const auto count = [](int expected, const std::vector<std::function<void(CQSString&)>>& of) {
        ExpectAllocations<CQSString>(expected, " a1 a ", of);
    };
    count(1, {[](auto& s) { s.AllocBuffer(2); }, [&](auto& s) { other.AllocCopy(s, 2, 1); },
              [](auto& s) { s.SetData("abc"); }, [&](auto& s) { s.SetData(&wide); },
              [&](auto& s) { s = other; }, [&](auto& s) { s = wide; },
              [](auto& s) { s.AppendChar('c'); }, [](auto& s) { s.AppendData(s.GetDataPtr()); },
              [](auto& s) { s.TrimLeft(); }, [](auto& s) { s.TrimRight(); },
              [](auto& s) { s.TrimRightAndLeft(); }, [](auto& s) { s.Replace("a", "bc"); },
              [](auto& s) { s.ToString(-7); }, [&](auto&) { CQSString copy(other); },
              [&](auto&) { CQSString copy(wide); }});
    count(0, {[](auto& s) { s.Find("a"), s.IsEndWith("a"); },
              // Needs one byte more than a 32-bit count tells.
              [](auto&) { EXPECT_EQ(0, CQSString(INT_MAX).GetLength()); }});
    ExpectAllocations<CQSString>(1, "255", {[](auto& s) { s.ToHexString(); }});
    ExpectAllocations<CQSString>(1, "abc", {[](auto& s) { s.ToHexString(); }});
}

TEST(Allocations, OfWideStrings)
{
    const CQWString other = Wide(L"a text too long for the buffer");
    const auto utf8 = Make<CQSString>("bytes of a length beyond the buffer");
    const unsigned char text[] = "longer than it by far";
    const auto count = [](int expected, const std::vector<std::function<void(CQWString&)>>& of) {
        ExpectAllocations<CQWString>(expected, L" a1 a ", of);
    };
    count(0, {[](auto& s) { s.SetData(L"short"); }, [](auto& s) { s.MakeUpper(), s.MakeLower(); },
              [](auto& s) { s.TrimRightAndLeft(); },
              // Their buffers would pass what a 32-bit count tells.
              [](auto&) { EXPECT_EQ(nullptr, CQWString(0x1FFFFFFF).GetDataPtr()); },
              [](auto& s) { EXPECT_EQ(0, s.PrepareBufferToWrite(INT_MAX)); }});
    count(1,
          {[](auto& s) { s.AllocBuffer(2); }, [](auto& s) { s.PrepareBufferToWrite(9); },
           [](auto& s) { s.SetData(L"longer than it"); }, [&](auto& s) { s = other; },
           [](auto& s) { s.AppendChar(L'b'); }, [](auto& s) { s.WCharToUtf16(); },
           [](auto& s) { s.Replace(L"a", L"bc"); }, [&](auto&) { CQWString copy(other); },
           [](auto& s) { CQWString::EncryptStrToInt(s); }, [&](auto&) { CQWString copy(utf8); }});
    count(2, {[&](auto& s) { s = utf8; }, [&](auto& s) { s.SetUTF8Data(text, 21); },
              [&](auto& s) { s.SetUTF16Data(text, 10); }});
    count(3, {[&](auto& s) { s.SeASCIIData(text, 21); }});
}
