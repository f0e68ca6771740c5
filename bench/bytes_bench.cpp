// The byte string beside what a client would use instead. Its buffers are exact and never shared,
// so its peers are made to allocate for every copy as well.

#include "Row.h"

#include <CQSString.h>

#include <QByteArray>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <strings.h>

namespace
{

// Words of different lengths, so that first letters and blanks come back as in a message.
std::string MakeText(std::size_t size)
{
    static const char words[] = "the quick brown fox jumps over a lazy dog and then tells it to "
                                "all of its friends, who have heard that tale before; ";
    std::string text;
    while (text.size() < size) {
        text += words;
    }
    text.resize(size);
    return text;
}

CQSString MakeString(const std::string& text)
{
    CQSString s;
    s.SetData(text.c_str());
    return s;
}

// Beyond the small buffer within std::string, whatever the size.
std::string OnHeap(const std::string& text)
{
    std::string s;
    s.reserve(std::max<std::size_t>(text.size(), 16));
    return s += text;
}

QByteArray Deep(const QByteArray& bytes)
{
    return QByteArray(bytes.constData(), bytes.size());
}

std::string Sized(const char* work, std::size_t size)
{
    const std::string count =
        size < 1024 ? std::to_string(size) + " B" : std::to_string(size / 1024) + " KiB";
    return "bytes: " + std::string(work) + ' ' + count;
}

void AddCopies(std::size_t size)
{
    const std::string text = MakeText(size);
    const QByteArray bytes = QByteArray::fromStdString(text);
    const auto s = new CQSString(MakeString(text));
    const double target = size > 64 ? 1 : 0.85;
    Row(Sized("construct", size))
        .Library([text] {
            CQSString made;
            made.SetData(text.c_str());
            return made.GetLength();
        })
        .Peer("std::string on the heap", target, [text] { return OnHeap(text.c_str()).size(); })
        .Peer("QByteArray", target, [text] { return QByteArray(text.c_str()).size(); });
    Row(Sized("copy", size))
        .Library([s] { return CQSString(*s).GetLength(); })
        .Peer("floor: new (std::nothrow) char[]", 0,
              [text] {
                  char* const p = new (std::nothrow) char[text.size() + 1];
                  std::memcpy(p, text.c_str(), text.size() + 1);
                  benchmark::DoNotOptimize(p);
                  delete[] p;
                  return text.size();
              })
        .Peer("std::string on the heap", target, [text] { return OnHeap(text).size(); })
        .Peer("QByteArray, deep", target, [bytes] { return Deep(bytes).size(); });
    Row(Sized("assign", size))
        .Library([s, to = new CQSString] {
            *to = *s;
            return to->GetLength();
        })
        .Peer("QByteArray, deep", target, [bytes, to = QByteArray()]() mutable {
            to = Deep(bytes);
            return to.size();
        });
}

void AddComparisons(std::size_t size)
{
    const std::string text = MakeText(size),
                      upper = QByteArray(text.c_str()).toUpper().toStdString();
    const auto a = new CQSString(MakeString(text));
    const auto b = new CQSString(MakeString(text));
    const QByteArray x(text.c_str()), y(text.c_str());
    Row(Sized("equal", size))
        .Library([a, b] { return *a == *b; })
        .Peer("QByteArray", 1, [x, y] { return x == y; })
        .Peer("std::string", 0, [text, other = text + ""] { return text == other; });
    Row(Sized("equal but for case", size))
        .Library([a, upper] { return a->CompareNoCase(upper.c_str()); })
        .Peer("strcasecmp", size < 1024 ? 0 : 0.3,
              [text, upper] { return strcasecmp(text.c_str(), upper.c_str()); });
}

void AddFind(const std::string& work, const std::string& text, const std::string& sub)
{
    const auto s = new CQSString(MakeString(text));
    Row("bytes: find " + work)
        .Library([s, sub] { return s->Find(sub.c_str()); })
        .Peer("memmem", 1,
              [text, sub] { return memmem(text.data(), text.size(), sub.c_str(), sub.size()); })
        .Peer("QByteArray", 1, [bytes = QByteArray::fromStdString(text), sub] {
            return bytes.indexOf(sub.c_str());
        });
}

void AddReplace(const std::string& work, const std::string& text, const char* from, const char* to)
{
    const auto s = new CQSString(MakeString(text));
    Row("bytes: replace " + work)
        .Library([s, from, to] {
            CQSString changed(*s);
            return changed.Replace(from, to);
        })
        .Peer("QByteArray", 1, [bytes = QByteArray::fromStdString(text), from, to] {
            return Deep(bytes).replace(from, to).size();
        });
}

std::uint32_t PlainFnv(const std::string& text)
{
    std::uint32_t h = 0x811C9DC5U;
    for (const char c : text) {
        h = (h ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    h += h << 13;
    h ^= h >> 7;
    h += h << 3;
    h ^= h >> 17;
    return h + (h << 5);
}

void AddHash(std::size_t size)
{
    const std::string text = MakeText(size);
    Row(Sized("hash", size))
        .Library([s = new CQSString(MakeString(text))] { return CQSString::GetHashCode(*s); })
        .Peer("plain FNV loop", 1, [text] { return PlainFnv(text); });
}

bool AddRows()
{
    for (const std::size_t size : {8, 64, 1024}) {
        AddCopies(size);
        AddComparisons(size);
    }
    const std::string runs(65536, 'a'), text = MakeText(65536);
    AddFind("a word in 32 B", MakeText(32), "jumps");
    AddFind("a word in 1 KiB", MakeText(1024) + "zebra", "zebra");
    AddFind("a text in 64 KiB", text + "the quick brown cat", "the quick brown cat");
    AddFind("a^1024 b in 64 KiB of a", runs, std::string(1024, 'a') + 'b');
    AddFind("b a^1024 in 64 KiB of a", runs, 'b' + std::string(1024, 'a'));
    AddReplace("a word by a longer one, 64 KiB", text, "friends", "acquaintances");
    AddReplace("a word by a shorter one, 64 KiB", text, "friends", "pals");
    AddReplace("a blank, 64 KiB", text, " ", "_");
    for (const std::size_t size : {16, 1024}) {
        AddHash(size);
    }
    return true;
}

const bool rows = AddRows();

} // namespace
