// Paths and names taken apart and put together, and stored names deciphered. Nothing here
// touches the disk.

#include "Model.h"
#include "Texts.h"

#include <CCrypt.h>
#include <CQFile.h>
#include <CQFileNameUtil.h>
#include <CQFileUtils.h>
#include <CQSString.h>
#include <CQWString.h>
#include <Orvo/CQPath.h>

#include <memory>

using namespace std::string_literals;

namespace
{

template <class Text>
Text Slashed(Text text)
{
    std::replace(text.begin(), text.end(), Text(1, '\\')[0], Text(1, '/')[0]);
    return text;
}

// The name behind the last slash, and what stands before and behind its first dot.
void CheckParts(const std::wstring& path)
{
    const std::wstring name = path.substr(path.rfind(L'/') + 1);
    const auto dot = std::min(name.find(L'.'), name.size());
    const auto stem = name.substr(0, dot), rest = name.substr(std::min(dot + 1, name.size()));
    const QString text = QString::fromStdWString(L"d/" + path); // U+FEFF never first
    const std::unique_ptr<QString> ext(CQFileUtils::Ext(text));
    MODEL_CHECK((ext != nullptr) == (dot < name.size()));
    MODEL_CHECK(!ext || ext->toStdWString() == rest);
    const std::unique_ptr<QString> withoutExt(CQFileUtils::FileNameWithoutExt(text));
    MODEL_CHECK(withoutExt->toStdWString() == stem);
    auto shortName = Holding<CQWString>(L"old"s), extension = Holding<CQWString>(path);
    CQFileNameUtil::FindShortName(extension, shortName);
    MODEL_CHECK(Content(shortName) == stem);
    CQFileNameUtil::FindFileExtName(extension, extension);
    MODEL_CHECK(Content(extension) == rest);
}

// The name behind the last slash of either kind, without what stands behind the last dot of the
// whole path; a dot in front of the name gives none.
void CheckFileNames(const std::wstring& path)
{
    const std::wstring text = Slashed(path);
    const auto start = text.rfind(L'/') + 1;
    const auto dot = std::min(text.rfind(L'.'), text.size());
    const bool hasName = start < text.size(), hasStem = hasName && dot >= start;
    auto whole = Holding<CQWString>(path), stem = Holding<CQWString>(L"old"s);
    CQWString name = path.empty() ? stem : whole;
    MODEL_CHECK(CQFile::GetFileName(path.empty() ? &whole : &name, name) == hasName);
    MODEL_CHECK(CQFile::GetFileNameWithoutExtension(&whole, stem) == hasStem);
    MODEL_CHECK(Content(name) == (text.empty() ? L"old" : text.substr(start)));
    const std::wstring upToDot = hasStem ? text.substr(start, dot - start) : L"";
    MODEL_CHECK(Content(stem) == (text.empty() ? L"old" : upToDot));
}

void CheckNextDir(const std::string& path, int from)
{
    const auto length = static_cast<int>(path.size());
    const int start = std::max(from, 3); // behind a drive
    const auto slash = Slashed(path).find('/', std::size_t(start));
    const int next = slash == std::string::npos ? length - 1 : static_cast<int>(slash);
    MODEL_CHECK(CQFileUtils::ParseNextDir(QString::fromStdString(path), from) ==
                (start >= length ? length : next));
}

// Enveloped by the cipher itself under the program's key, and by the counterpart.
void CheckStoredName(const std::string& name, bool isAltered)
{
    unsigned char key[] = {0x8E, 0xA7, 0xC8, 0x31, 0x22, 0xDB, 0x9C, 0xA5,
                           0x36, 0x8F, 0xF0, 0x99, 0xCA, 0xC3, 0xC4, 0x0D};
    std::string envelope = name + std::string(24, '\0');
    auto* const bytes = Unsigned(envelope);
    int length = 0;
    CCrypt(key, 0, 0).Encrypt(bytes, static_cast<int>(name.size()), bytes, length);
    envelope.resize(static_cast<std::size_t>(length));
    envelope.back() ^= isAltered ? '@' : '\0';
    auto stored = Holding<CQSString>(envelope), made = Holding<CQSString>(name);
    const bool isRead = !isAltered && name.size() <= 256;
    MODEL_CHECK(CQPath::DecodeFileName(stored) == isRead);
    MODEL_CHECK(Content(stored) == (isRead ? name : envelope));
    const bool isMade = !name.empty() && name.size() <= 256;
    MODEL_CHECK(CQPath::EncodeFileName(made) == isMade);
    MODEL_CHECK((Content(made) != name) == isMade);
    MODEL_CHECK(CQPath::DecodeFileName(made) == isMade);
    MODEL_CHECK(Content(made) == name);
}

} // namespace

void DriveModel(ByteSource& source)
{
    while (!source.IsEmpty()) {
        const std::string text = source.Text(12, "ab./\\:");
        std::wstring wide(text.begin(), text.end());
        wide += source.Flag() ? L"\xFEFF\x1F600" : L"";
        CheckFileNames(wide);
        CheckNextDir(text, source.Between(-1, 13));
        std::replace(wide.begin(), wide.end(), L':', L'\\'); // which begins no name of a file
        CheckParts(wide);
        CheckStoredName(std::string(source.Flag() ? 250 : 0, 'x') + source.Bytes(8), source.Flag());
    }
}
