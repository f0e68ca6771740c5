// Every allocation of an operation is made to fail in turn: the operation must take its stated
// way out, allocate no more often than listed, and leak nothing.

#include "FailingAllocator.h"

#include <CQSString.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace
{

enum WayOut { Unchanged, NoBuffer };

template <class String>
struct Operation {
    const char* name;
    std::function<int(String&)> run;
    std::vector<WayOut> waysOut; // one for each allocation
};

// Runs the operation with its n-th allocation failing; false when it made fewer.
template <class String, class Text>
bool FailsAt(int n, const Operation<String>& operation, Text original)
{
    String s;
    s.SetData(original);
    const FailingAllocator allocator(n);
    const int result = operation.run(s);
    if (!allocator.HasFailed()) {
        return false;
    }
    const WayOut wayOut = operation.waysOut.at(static_cast<size_t>(n) - 1);
    EXPECT_EQ(0, result);
    EXPECT_EQ(wayOut == Unchanged, s.GetDataPtr() != nullptr && s.Compare(original) == 0);
    EXPECT_EQ(wayOut == NoBuffer, s.GetDataPtr() == nullptr && s.IsEmpty());
    return true;
}

template <class String, class Text>
void FailEachAllocation(const Operation<String>& operation, Text original)
{
    SCOPED_TRACE(operation.name);
    const int liveBefore = FailingAllocator::LiveArrays();
    int n = 1;
    while (FailsAt(n, operation, original)) {
        ++n;
    }
    EXPECT_EQ(operation.waysOut.size(), static_cast<size_t>(n) - 1);
    EXPECT_EQ(liveBefore, FailingAllocator::LiveArrays());
}

unsigned char bytes[] = "xyz";

CQSString Text(const char* text)
{
    CQSString s;
    s.SetData(text);
    return s;
}

} // namespace

TEST(WithoutMemory, ByteStringIsEmptiedOrLeftAlone)
{
    const CQSString other = Text("other text");
    const CQWString wide(QStringLiteral("wide"));
    const Operation<CQSString> operations[] = {
        {"AllocBuffer", [](CQSString& s) { return s.AllocBuffer(2), 0; }, {NoBuffer}},
        {"AllocCopy", [&](CQSString& s) { return other.AllocCopy(s, 2, 1), 0; }, {NoBuffer}},
        {"SetData", [](CQSString& s) { return s.SetData("abc"); }, {NoBuffer}},
        {"SetData counted", [](CQSString& s) { return s.SetData(bytes, 2); }, {NoBuffer}},
        {"SetData wide", [&](CQSString& s) { return s.SetData(&wide); }, {Unchanged}},
        {"operator=", [&](CQSString& s) { return s = other, 0; }, {NoBuffer}},
        {"operator= wide", [&](CQSString& s) { return s = wide, 0; }, {Unchanged}},
        {"AppendChar", [](CQSString& s) { return s.AppendChar('c'); }, {NoBuffer}},
        {"AppendData", [](CQSString& s) { return s.AppendData("abc"); }, {NoBuffer}},
        {"AppendData counted", [](CQSString& s) { return s.AppendData(bytes, 2); }, {NoBuffer}},
        {"GetSubString", [&](CQSString& s) { return other.GetSubString(s, 1, 2), 0; }, {NoBuffer}},
        {"TrimLeft", [](CQSString& s) { return s.TrimLeft(), 0; }, {Unchanged}},
        {"TrimRight", [](CQSString& s) { return s.TrimRight(), 0; }, {Unchanged}},
        {"TrimRightAndLeft", [](CQSString& s) { return s.TrimRightAndLeft(), 0; }, {Unchanged}},
        {"Replace", [](CQSString& s) { return s.Replace("a", "bc"); }, {Unchanged}},
        {"ToString", [](CQSString& s) { return s.ToString(-7), 0; }, {NoBuffer}},
        {"Find and the like need none",
         [](CQSString& s) { return s.Find("a") + s.IsEndWith("a") + (s.MakeUpper(), 0); },
         {}},
    };
    for (const auto& operation : operations) {
        FailEachAllocation(operation, " a1 a ");
    }
    const Operation<CQSString> toHex = {
        "ToHexString", [](CQSString& s) { return s.ToHexString(); }, {Unchanged}};
    FailEachAllocation(toHex, "abc");
    FailEachAllocation(toHex, "255");
}

TEST(WithoutMemory, WideStringLosesItsBufferOrIsLeftAlone)
{
    const CQWString other(QStringLiteral("a text too long for the buffer"));
    const CQSString utf8 = Text("bytes of a length beyond the buffer");
    const Operation<CQWString> operations[] = {
        {"AllocBuffer", [](CQWString& s) { return s.AllocBuffer(2), 0; }, {NoBuffer}},
        {"PrepareBufferToWrite",
         [](CQWString& s) { return s.PrepareBufferToWrite(9); },
         {NoBuffer}},
        {"SetData", [](CQWString& s) { return s.SetData(L"longer than it"); }, {NoBuffer}},
        {"SetData within the buffer", [](CQWString& s) { return s.SetData(L"short"); }, {}},
        {"operator=", [&](CQWString& s) { return s = other, 0; }, {NoBuffer}},
        {"operator= bytes", [&](CQWString& s) { return s = utf8, 0; }, {Unchanged, NoBuffer}},
        {"SeASCIIData",
         [](CQWString& s) {
             const unsigned char text[] = "longer than it by far";
             return s.SeASCIIData(text, sizeof text - 1);
         },
         {Unchanged, Unchanged, NoBuffer}},
        {"AppendData", [](CQWString& s) { return s.AppendData(L"b"); }, {NoBuffer}},
        {"AppendChar", [](CQWString& s) { return s.AppendChar(L'b'); }, {NoBuffer}},
        {"AppendNum", [](CQWString& s) { return s.AppendNum(12); }, {NoBuffer}},
        {"WCharToUtf16",
         [](CQWString& s) { return s.WCharToUtf16() == nullptr ? 0 : 1; },
         {Unchanged}},
        {"Replace", [](CQWString& s) { return s.Replace(L"a", L"bc"); }, {Unchanged}},
        {"DeleteSubString", [](CQWString& s) { return s.DeleteSubString(L"a"); }, {Unchanged}},
        {"EncryptStrToInt",
         [](CQWString& s) { return CQWString::EncryptStrToInt(s); },
         {Unchanged}},
    };
    for (const auto& operation : operations) {
        FailEachAllocation(operation, L" a1 a ");
    }
}

TEST(WithoutMemory, ConstructorsMakeEmptyStrings)
{
    const CQSString text = Text("text");
    const CQWString wide(QStringLiteral("wide"));
    const std::function<bool()> constructors[] = {
        [] { return CQSString(3).GetDataPtr() == nullptr; },
        [&] { return CQSString(text).GetDataPtr() == nullptr; },
        [&] { return CQSString(wide).GetDataPtr() == nullptr; },
        [] { return CQWString(3).GetDataPtr() == nullptr; },
        [&] { return CQWString(wide).GetDataPtr() == nullptr; },
        [&] { return CQWString(text).GetDataPtr() == nullptr; },
    };
    for (const auto& construct : constructors) {
        const FailingAllocator allocator(1);
        EXPECT_TRUE(construct());
    }
}
