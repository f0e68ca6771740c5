// Paths and names taken apart and put together, and stored names deciphered. Nothing here
// touches the disk.

#include "Model.h"

#include <CCrypt.h>
#include <CQFile.h>
#include <CQFileNameUtil.h>
#include <CQFileUtils.h>
#include <CQSString.h>
#include <CQWString.h>
#include <Orvo/CQPath.h>

#include <algorithm>
#include <memory>

namespace
{

CQWString Wide(const std::wstring& text)
{
    CQWString s;
    s.SetData(text.c_str());
    return s;
}

std::wstring Content(const CQWString& s)
{
    return {s.GetDataPtr(), s.GetDataPtr() + s.GetLength()};
}

std::string Content(const CQSString& s)
{
    return {s.GetDataPtr(), s.GetDataPtr() + s.GetLength()};
}

template <class Text>
Text Slashed(Text text)
{
    std::replace(text.begin(), text.end(), Text(1, '\\')[0], Text(1, '/')[0]);
    return text;
}

// The name behind the last slash, from its first dot on or up to it.
void CheckImageNames(const std::wstring& path)
{
    const std::wstring name = path.substr(path.rfind(L'/') + 1);
    const auto dot = std::min(name.find(L'.'), name.size());
    CQWString shortName = Wide(L"old"), extension = Wide(path);
    CQFileNameUtil::FindShortName(Wide(path), shortName);
    MODEL_CHECK(Content(shortName) == name.substr(0, dot));
    CQFileNameUtil::FindFileExtName(extension, extension);
    MODEL_CHECK(Content(extension) == (dot < name.size() ? name.substr(dot + 1) : L""));
}

void CheckParts(const std::string& path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const auto dot = std::min(name.find('.'), name.size());
    const std::unique_ptr<QString> ext(CQFileUtils::Ext(QString::fromStdString(path)));
    const std::unique_ptr<QString> stem(
        CQFileUtils::FileNameWithoutExt(QString::fromStdString(path)));
    MODEL_CHECK(stem->toStdString() == name.substr(0, dot));
    MODEL_CHECK((ext != nullptr) == (dot < name.size()));
    MODEL_CHECK(!ext || ext->toStdString() == name.substr(dot + 1));
}

// The name behind the last slash of either kind, without what stands behind the last dot of the
// whole path; a dot in front of the name gives none.
void CheckFileNames(const std::wstring& path)
{
    const std::wstring text = Slashed(path);
    const auto start = text.rfind(L'/') + 1;
    const auto dot = std::min(text.rfind(L'.'), text.size());
    const CQWString whole = Wide(path);
    CQWString name = Wide(L"old"), stem = Wide(L"old");
    MODEL_CHECK(CQFile::GetFileName(&whole, name) == (start < text.size()));
    MODEL_CHECK(Content(name) == (text.empty() ? L"old" : text.substr(start)));
    const bool hasStem = start < text.size() && dot >= start;
    MODEL_CHECK(CQFile::GetFileNameWithoutExtension(&whole, stem) == hasStem);
    MODEL_CHECK(Content(stem) == (text.empty() ? L"old"
                                  : hasStem    ? text.substr(start, dot - start)
                                               : L""));
}

std::string Number(const char* format, int number)
{
    char text[40];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

template <class... Parameters, class... Arguments>
void CheckPath(const std::string& expected, void (*member)(CQSString&, Parameters...),
               Arguments... arguments)
{
    CQSString out;
    out.SetData("old");
    member(out, arguments...);
    MODEL_CHECK(Content(out) == Slashed(expected));
}

void CheckLayout(const std::string& root, std::uint32_t account, std::uint32_t number)
{
    const char* const dir = root.c_str();
    const std::string user = Number("%u", static_cast<int>(account));
    const std::string ten = Number("%010d", static_cast<int>(number));
    const std::string picture = user + "_" + ten + ".png";
    CheckPath(picture, CQPath::GetCFFileName, account, number);
    CheckPath(root + user + "/" + picture, CQPath::GetCFFilePath, dir, account, number);
    CheckPath(root + "/" + user + "/msg.info", CQPath::GetMsgFilePath, dir, account);
    CheckPath(root + user + "/loginInfo.info", CQPath::GetLoginInfoFilePath, dir, account);
    CheckPath(root + user + "/" + Number("%d", static_cast<int>(number)) + ".fmsg",
              CQPath::GetFileTransInfoFilePath, dir, account, static_cast<int>(number));
    CheckPath(root + "/groupmem" + user + ".info", CQPath::GetGroupMemberFilePath, dir, account);
    CheckPath(root + "/buddylist.info", CQPath::GetBuddylistFilePath, dir);
    CheckPath("/tmp/orvoappdownload/Audio/Orvo" + ten + ".amr", CQPath::GetRecordAudioName,
              (1ULL << (account & 63)) * 0x100000000 + number);
}

// Enveloped by the cipher itself under the program's key; altered or cut now and then.
void CheckStoredName(std::string name, std::uint32_t altered)
{
    unsigned char key[] = {0x8E, 0xA7, 0xC8, 0x31, 0x22, 0xDB, 0x9C, 0xA5,
                           0x36, 0x8F, 0xF0, 0x99, 0xCA, 0xC3, 0xC4, 0x0D};
    const CCrypt cipher(key, 0, 0);
    std::string envelope(name.size() + 24, '\0');
    int length = 0;
    cipher.Encrypt(reinterpret_cast<const unsigned char*>(name.data()),
                   static_cast<int>(name.size()), reinterpret_cast<unsigned char*>(envelope.data()),
                   length);
    envelope.resize(static_cast<std::size_t>(length));
    if (altered % 4 == 0) {
        envelope.back() = static_cast<char>(envelope.back() ^ 0x40);
    } else if (altered % 4 == 1) {
        envelope.erase(0, 8 + altered);
    }
    CQSString stored;
    stored.SetData(reinterpret_cast<unsigned char*>(envelope.data()),
                   static_cast<int>(envelope.size()));
    const bool isRead = altered % 4 > 1 && name.size() <= 256;
    MODEL_CHECK(CQPath::DecodeFileName(stored) == isRead);
    MODEL_CHECK(Content(stored) == (isRead ? name : envelope));
}

} // namespace

void DriveModel(ByteSource& source)
{
    while (!source.IsEmpty()) {
        std::string text = source.Text(12, "ab./\\:");
        CheckParts(text);
        std::wstring wide(text.begin(), text.end());
        wide += source.Flag() ? L"\xFEFF\x1F600" : L"";
        CheckFileNames(wide);
        std::replace(wide.begin(), wide.end(), L':', L'\\');
        CheckImageNames(wide);
        const std::string foreign[] = {"", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80"};
        CheckLayout(text + foreign[source.Between(0, 2)] + "x", source.Word(), source.Word());
        CheckStoredName(std::string(source.Flag() ? 250 : 0, 'x') + source.Bytes(8), source.Byte());
    }
}
