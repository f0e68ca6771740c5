// Text between UTF-8 and wide units, beside Qt: short, as names are, and long, as messages are.

#include "Row.h"

#include <CQSString.h>
#include <CQWString.h>
#include <CStrConvertor.h>

#include <QString>

#include <memory>
#include <vector>

namespace
{

struct Sample {
    const char* name;
    const char* words; // UTF-8, repeated up to the length
    double encodeTarget, decodeTarget;
};

const Sample Samples[] = {
    {"ASCII", "plain words, and then some more ", 0.5, 0.8},
    {"Chinese", "\u7B80\u5355\u7684\u6587\u5B57\u8FD8\u6709\u66F4\u591A\u7684\u8BCD", 1.6, 2},
    {"mixed", "a\u00E9\u4E2Db\u0439c\u5317\u00FC", 1.05, 1.05},
    {"prose", "Gr\u00FC\u00DFe aus \u5317\u4EAC, \u043F\u0440\u0438\u0432\u0435\u0442! ", 1, 1}};

// `count` characters of the sample, as either side holds them.
struct Texts {
    Texts(const char* words, int count)
        : qt(QString::fromUtf8(words)),
          utf8((qt = qt.repeated(count / static_cast<int>(qt.size()) + 1).left(count)).toUtf8()),
          wide(qt.toStdWString())
    {
    }
    QString qt;
    QByteArray utf8;
    std::wstring wide;
};

struct Sized {
    int count;
    const char* name;
};

void AddRows(const Sample& sample, const Sized& size)
{
    const std::string suffix = std::string(", ") + size.name + " characters, " + sample.name;
    const bool isShort = size.count < 100;
    const auto texts = std::make_shared<const Texts>(sample.words, size.count);
    const auto bytes = std::make_shared<std::vector<char>>(3 * texts->wide.size());
    Row("Unicode2Utf8" + suffix)
        .Library([texts, bytes] {
            int capacity = static_cast<int>(bytes->size());
            return CStrConvertor::Unicode2Utf8(bytes->data(), capacity, texts->wide.data(),
                                               static_cast<int>(texts->wide.size()));
        })
        .Peer("QString::toUtf8", isShort ? 2 : sample.encodeTarget,
              [texts] { return texts->qt.toUtf8(); });

    const auto units = std::make_shared<std::vector<wchar_t>>(texts->utf8.size());
    Row("Utf82Unicode" + suffix)
        .Library([texts, units] {
            const int length = static_cast<int>(texts->utf8.size());
            return CStrConvertor::Utf82Unicode(units->data(), length,
                                               const_cast<char*>(texts->utf8.data()), length);
        })
        .Peer("QString::fromUtf8", isShort ? 2 : sample.decodeTarget,
              [texts] { return QString::fromUtf8(texts->utf8); });

    CQSString source;
    source.SetData(texts->utf8.data());
    Row("CQWString(CQSString const&)" + suffix)
        .Library([source] { return CQWString(source).GetLength(); })
        .Peer("fromUtf8, toWCharArray", 1.2, [source] {
            const QString text = QString::fromUtf8(source.GetDataPtr(), source.GetLength());
            const std::unique_ptr<wchar_t[]> out(
                new wchar_t[static_cast<std::size_t>(text.size()) + 1]);
            return text.toWCharArray(out.get());
        });

    CQWString wide;
    wide.SetData(texts->wide.c_str());
    Row("CQSString(CQWString const&)" + suffix)
        .Library([wide] { return CQSString(wide).GetLength(); })
        .Peer("fromWCharArray, toUtf8", 2, [wide] {
            return QString::fromWCharArray(wide.GetDataPtr(), wide.GetLength()).toUtf8();
        });
}

const bool rows = [] {
    for (const Sample& sample : Samples) {
        for (const Sized& size : {Sized{16, "16"}, Sized{4096, "4096"}}) {
            AddRows(sample, size);
        }
    }
    return true;
}();

} // namespace
