// Texts put together, escaped, taken apart and searched, as a client would do it with Qt or the C
// library.

#include "Row.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>
#include <Orvo/CQPath.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QUrl>

#include <cstring>
#include <memory>
#include <string>

namespace
{

std::string Repeat(const std::string& text, std::size_t size)
{
    std::string result;
    while (result.size() < size) {
        result += text;
    }
    result.resize(size);
    return result;
}

CQWString Wide(const std::string& text)
{
    CQWString wide;
    wide.SetData(std::wstring(text.begin(), text.end()).c_str());
    return wide;
}

// Paths of the client begin with what its application tells.
void MakeApplication()
{
    static int count = 1;
    static char name[] = "orvo_bench";
    static char* arguments[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr) {
        new QCoreApplication(count, arguments);
    }
}

const bool formats =
    (Row("FormatString narrow")
         .Library([out = CQSString()]() mutable {
             CBaseUtil::FormatString(out, "%c%s\\%u\\%s", '/', "opt/orvoapp", 10001U, "msg.info");
             return out.GetLength();
         })
         .Peer("QString::asprintf and conversion", 0.95,
               [] {
                   return QString::asprintf("%c%s\\%u\\%s", '/', "opt/orvoapp", 10001U, "msg.info")
                       .toUtf8()
                       .replace('\\', '/');
               }),
     Row("FormatString wide")
         .Library([out = CQWString()]() mutable {
             CBaseUtil::FormatString(out, L"%c%s\\%u\\%s", '/', "opt/orvoapp", 10001U, "msg.info");
             return out.GetLength();
         })
         .Peer("QString::asprintf", 0.95,
               [] {
                   return QString::asprintf("%c%s\\%u\\%s", '/', "opt/orvoapp", 10001U, "msg.info");
               }),
     Row("GetBuddylistFilePath")
         .Library([out = CQSString()]() mutable {
             CQPath::GetBuddylistFilePath(out, "/opt/orvoapp/10001");
             return out.GetLength();
         })
         .Peer("QString::asprintf", 1.5,
               [] { return QString::asprintf("%s/%s", "/opt/orvoapp/10001", "buddylist.info"); }),
     Row("GetGUIDFilePath")
         .Library([out = CQSString()]() mutable {
             MakeApplication();
             CQPath::GetGUIDFilePath(out);
             return out.GetLength();
         })
         .Peer(
             "QString::asprintf", 1.5,
             [] { return QString::asprintf("%c%s/%s", '/', "opt/orvoapp/Browser", "guid.info"); }),
     true);

// A path with a query: some bytes is escaped by the library and by its peer.
void AddEscapeRows(int size)
{
    const std::string text = Repeat("mail/box7 Folder", static_cast<std::size_t>(size));
    const std::string safe = Repeat("mail-box7(Folder)", static_cast<std::size_t>(size));
    const std::string escapes = Repeat("mail%2Fbox7%20Fo", static_cast<std::size_t>(size));
    const std::string bytes = std::to_string(size);
    Row("EscapeString " + bytes)
        .Library(
            [in = Wide(text)]() mutable { return CBaseUtil::EscapeString(in, false).GetLength(); })
        .Peer("QUrl::toPercentEncoding", 1,
              [in = QString::fromStdString(text)] { return QUrl::toPercentEncoding(in); });
    Row("UrlEncode " + bytes)
        .Library([in = QString::fromStdString(safe)] {
            QByteArray* out = nullptr;
            CBaseUtil::UrlEncode(in, &out);
            return std::unique_ptr<QByteArray>(out)->size();
        })
        .Peer("QUrl::toPercentEncoding", 1,
              [in = QString::fromStdString(safe)] { return QUrl::toPercentEncoding(in); });
    Row("UrlDecode " + bytes)
        .Library([in = QByteArray::fromStdString(escapes)] {
            QString* out = nullptr;
            CBaseUtil::UrlDecode(in, &out);
            return std::unique_ptr<QString>(out)->size();
        })
        .Peer("QByteArray::fromPercentEncoding", 1, [in = QByteArray::fromStdString(escapes)] {
            return QByteArray::fromPercentEncoding(in);
        });
}

void AddCgiRow(int size)
{
    const std::string text = Repeat("mail%2Fbox7%20Fo", static_cast<std::size_t>(size));
    Row("DecodeCgi " + std::to_string(size))
        .Library([in = QString::fromStdString(text)] {
            QString out = in;
            CBaseUtil::DecodeCgi(&out);
            return out;
        })
        .Peer("QUrl::fromPercentEncoding", 1, [in = QString::fromStdString(text)] {
            return QUrl::fromPercentEncoding(in.toUtf8());
        });
}

void AddSearchRow(const std::string& work, const std::string& text, const std::string& pattern)
{
    Row(work)
        .Library([text = std::string(text), pattern = std::string(pattern)]() mutable {
            return CBaseUtil::SearchMemNoCase(reinterpret_cast<unsigned char*>(text.data()),
                                              static_cast<int>(text.size()), pattern.data(),
                                              static_cast<int>(pattern.size()));
        })
        .Peer("strcasestr", 1,
              [text, pattern] { return strcasestr(text.c_str(), pattern.c_str()); });
}

const bool others = [] {
    for (const int size : {32, 1024}) {
        AddEscapeRows(size);
    }
    for (const int size : {52, 1700}) {
        AddCgiRow(size);
    }
    const std::string words = Repeat("The quick brown fox jumps over the lazy dog. ", 65536);
    AddSearchRow("SearchMemNoCase 64 KiB", words + "Needle in the hay", "needle in THE hay");
    AddSearchRow("SearchMemNoCase 64 KiB, a^64 b", std::string(65536, 'a') + "b",
                 std::string(64, 'A') + "b");
    return true;
}();

} // namespace
