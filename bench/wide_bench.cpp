// The wide string beside std::wstring, which has its units, and QString, which has half of them.

#include "Row.h"

#include <CQWString.h>

#include <QString>

#include <string>

namespace
{

CQWString Make(const std::wstring& text)
{
    CQWString s;
    s.SetData(text.c_str());
    return s;
}

std::wstring Repeated(const std::wstring& words, std::size_t size)
{
    std::wstring text;
    while (text.size() < size) {
        text += words;
    }
    return text.substr(0, size);
}

void AddCopies(std::size_t size)
{
    const std::wstring text(size, L'x');
    const std::string units = std::to_string(size) + " units";
    Row("wide copy, " + units)
        .Library([s = Make(text)] { return CQWString(s).GetLength(); })
        .Peer("std::wstring", 0.9, [text] { return std::wstring(text).size(); });
    Row("wide assign, " + units)
        .Library([s = Make(text), t = CQWString()]() mutable { return (t = s).GetLength(); })
        .Peer("std::wstring", 0.9,
              [text, t = std::wstring()]() mutable { return (t = text).size(); });
    Row("wide equal, " + units)
        .Library([s = Make(text), t = Make(text)] { return s == t; })
        .Peer("std::wstring", 1, [text, t = text] { return text == t; });
}

// Beyond 512 units the growth rule makes a new buffer every 512 units, where QString doubles.
void AddAppends(std::size_t size, int times)
{
    const std::wstring piece(size, L'x');
    const QString qt = QString::fromStdWString(piece);
    Row("wide append, " + std::to_string(size) + " units x " + std::to_string(times))
        .Library([piece, times] {
            CQWString s;
            for (int i = 0; i < times; ++i) {
                s.AppendData(piece.c_str());
            }
            return s.GetLength();
        })
        .Peer("QString", 1, [qt, times] {
            QString s;
            for (int i = 0; i < times; ++i) {
                s += qt;
            }
            return s.size();
        });
}

void AddSearch(const std::string& name, const std::wstring& text, const std::wstring& sub)
{
    const QString qtText = QString::fromStdWString(text), qtSub = QString::fromStdWString(sub);
    Row("wide find, " + name)
        .Library([s = Make(text), sub] { return s.Find(sub.c_str()); })
        .Peer("QString", 1, [qtText, qtSub] { return qtText.indexOf(qtSub); })
        .Peer("std::wstring", 1, [text, sub] { return text.find(sub); });
}

void AddReplace(const std::wstring& text, const std::wstring& from, const std::wstring& to)
{
    const QString qtText = QString::fromStdWString(text), qtFrom = QString::fromStdWString(from),
                  qtTo = QString::fromStdWString(to);
    Row("wide replace word, " + std::to_string(text.size() / 1024) + " Ki units")
        .Library([source = Make(text), from, to] {
            CQWString s(source);
            return s.Replace(from.c_str(), to.c_str());
        })
        .Peer("QString", 1,
              [qtText, qtFrom, qtTo] { return QString(qtText).replace(qtFrom, qtTo).size(); })
        .Peer("std::wstring", 1, [text, from, to] {
            std::wstring out;
            std::size_t done = 0;
            for (std::size_t at = text.find(from); at != text.npos; at = text.find(from, done)) {
                out.append(text, done, at - done).append(to);
                done = at + from.size();
            }
            return out.append(text, done).size();
        });
}

void AddCaseMapping(const std::string& name, const std::wstring& words, std::size_t size,
                    double target)
{
    const std::wstring text = Repeated(words, size);
    Row("wide upper case, " + std::to_string(size) + " units, " + name)
        .Library([source = Make(text), s = CQWString()]() mutable {
            s = source;
            s.MakeUpper();
            return s.GetLength();
        })
        .Peer("QString", target, [qt = QString::fromStdWString(text)] { return qt.toUpper(); });
}

const bool rows = [] {
    for (const std::size_t size : {16, 1024}) {
        AddCopies(size);
    }
    AddAppends(1, 1000);
    AddAppends(64, 100);
    const std::wstring words = Repeated(L"some words and a few more of them, ", 65536);
    AddSearch("absent word, 64 Ki units", words, L"absent");
    AddSearch("a^64 b in 64 Ki a", std::wstring(65536, L'a'), std::wstring(64, L'a') + L'b');
    AddReplace(words, L"words", L"texts");
    for (const std::size_t size : {16, 4096}) {
        AddCaseMapping("ASCII", L"Plain words, ", size, 2);
        AddCaseMapping("Cyrillic", L"\u041F\u0440\u0438\u0432\u0435\u0442, ", size, 1);
        AddCaseMapping("Chinese", L"\u7B80\u5355\u7684\u6587\u5B57", size, 1);
    }
    return true;
}();

} // namespace
