// The operations of CQFile on the file system that need no open file.

#include "CQFile.h"

#include "CQWString.h"
#include "OrvoAssert.h"
#include "PathText.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace
{

bool IsNullOrEmpty(const wchar_t* text)
{
    return text == nullptr || *text == 0;
}

QString Joined(const wchar_t* dir, const wchar_t* name)
{
    return PathText::FromWide(dir) + PathText::FromWide(name);
}

int Unsupported(int line)
{
    OrvoAssert(false, "0", "src/CQFile", line);
    return 0;
}

int LengthOf(const QString& path)
{
    const QFile file(path);
    return file.exists() ? static_cast<int>(static_cast<quint32>(file.size())) : -1;
}

int CopyTo(const QString& from, const QString& to)
{
    return !from.isEmpty() && !to.isEmpty() && QFile::copy(from, to);
}

bool RemoveTree(const QString& path)
{
    // Flags by name: their numbers differ between generations of Qt, and one that lists ".." too
    // would empty the parent directory.
    constexpr auto filters =
        QDir::Dirs | QDir::Files | QDir::NoSymLinks | QDir::Hidden | QDir::NoDotAndDotDot;
    const QFileInfoList entries = QDir(path).entryInfoList(filters);
    // Entries are removed under the names they have: slashing a backslash in one would lead to
    // another place.
    for (const QFileInfo& entry : entries) {
        const bool removed =
            entry.isDir() ? RemoveTree(entry.absoluteFilePath()) : QFile::remove(entry.filePath());
        if (!removed) {
            break;
        }
    }
    return QDir().rmdir(path);
}

std::wstring SlashedText(const CQWString& path)
{
    std::wstring text(path.GetDataPtr());
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

} // namespace

int CQFile::IsFileExist(const wchar_t* path)
{
    return !IsNullOrEmpty(path) && QFile::exists(PathText::SlashedFromWide(path));
}

int CQFile::IsFileExist(const wchar_t*, const wchar_t*)
{
    return Unsupported(1394);
}

int CQFile::GetFileUID(const wchar_t*, CQFileUID&)
{
    return Unsupported(1493);
}

int CQFile::IsValidFileName(const wchar_t*)
{
    return Unsupported(1541);
}

int CQFile::IsValidName(const wchar_t*)
{
    return Unsupported(1579);
}

int CQFile::IsLocalPath(const char* path)
{
    if (path == nullptr) {
        return 0;
    }
    const char drive = path[0];
    return ((drive >= 'c' && drive <= 'z') || (drive >= 'C' && drive <= 'Z')) && path[1] == ':' &&
           path[2] == '/';
}

int CQFile::GetFileName(const CQWString* path, CQWString& name)
{
    if (path == nullptr || path->IsEmpty()) {
        return 0;
    }
    const std::wstring text = SlashedText(*path);
    // No slash is npos, and npos + 1 the start of the text.
    const auto fileName = std::wstring_view(text).substr(text.rfind(L'/') + 1);
    PathText::Store(name, fileName);
    return !fileName.empty();
}

int CQFile::GetFileNameWithoutExtension(const CQWString* path, CQWString& name)
{
    if (path == nullptr || path->IsEmpty()) {
        return 0;
    }
    const std::wstring text = SlashedText(*path);
    const auto start = text.rfind(L'/') + 1;
    const auto dot = std::min(text.rfind(L'.'), text.size());
    if (start == text.size() || dot < start) {
        name.Empty();
        return 0;
    }
    PathText::Store(name, std::wstring_view(text).substr(start, dot - start));
    return 1;
}

int CQFile::GetFileLenght(const wchar_t* path)
{
    return path == nullptr ? -1 : LengthOf(PathText::FromWide(path));
}

int CQFile::GetFileLenght(const CQWString& path)
{
    return GetFileLenght(path.GetDataPtr());
}

int CQFile::GetFileLenght(const wchar_t* dir, const wchar_t* name)
{
    return dir == nullptr || name == nullptr ? -1 : LengthOf(Joined(dir, name));
}

int CQFile::DeleteFile(const wchar_t* path)
{
    return path != nullptr && QFile::remove(PathText::SlashedFromWide(path));
}

int CQFile::DeleteFile(const wchar_t* dir, const wchar_t* name)
{
    return dir != nullptr && name != nullptr && QFile::remove(PathText::Slashed(Joined(dir, name)));
}

int CQFile::CopyFile(const wchar_t* from, const wchar_t* to)
{
    return CopyTo(PathText::SlashedFromWide(from), PathText::SlashedFromWide(to));
}

int CQFile::CopyFile(const wchar_t* fromDir, const wchar_t* fromName, const wchar_t* toDir,
                     const wchar_t* toName)
{
    if (fromDir == nullptr || fromName == nullptr || toDir == nullptr || toName == nullptr) {
        return -1;
    }
    if (!IsFileExist(toDir)) {
        CreateDirectory(toDir);
    }
    return CopyTo(PathText::Slashed(Joined(fromDir, fromName)),
                  PathText::Slashed(Joined(toDir, toName)));
}

int CQFile::RenameFile(const wchar_t* from, const wchar_t* to)
{
    return !IsNullOrEmpty(from) && !IsNullOrEmpty(to) &&
           QFile::rename(PathText::SlashedFromWide(from), PathText::SlashedFromWide(to));
}

int CQFile::CreateDirectory(const wchar_t* path)
{
    return path != nullptr && QDir().mkpath(PathText::SlashedFromWide(path));
}

int CQFile::MakeDir(QString path)
{
    path = PathText::Slashed(path);
    const QString whole = path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    const QDir dir(whole);
    for (auto slash = whole.indexOf(QLatin1Char('/'), 1); slash >= 0;
         slash = whole.indexOf(QLatin1Char('/'), slash + 1)) {
        const QString prefix = path.left(slash);
        if (!dir.exists(prefix) && !dir.mkdir(prefix)) {
            return 0;
        }
    }
    return 1;
}

int CQFile::DelDir(const wchar_t* path)
{
    return IsFileExist(path) && QDir().rmdir(PathText::SlashedFromWide(path));
}

int CQFile::RecursiveDelDir(const wchar_t* path)
{
    // An empty path would be the current directory.
    return !IsNullOrEmpty(path) && RemoveTree(PathText::SlashedFromWide(path));
}

int CQFile::RenameDir(const wchar_t* from, const wchar_t* to, unsigned int)
{
    return IsFileExist(from) && !IsNullOrEmpty(to) &&
           QDir().rename(PathText::SlashedFromWide(from), PathText::SlashedFromWide(to));
}

int CQFile::GetDirFileList(CQWString& dir, CQWString& ext, bool withDirs, CQWString** list)
{
    if (list == nullptr) {
        return 0;
    }
    *list = nullptr;
    const auto kinds = withDirs ? QDir::Dirs | QDir::Files : QDir::Filters(QDir::Files);
    QStringList nameFilters;
    if (!ext.IsEmpty()) {
        nameFilters << QLatin1String("*.") + PathText::SlashedFromWide(ext.GetDataPtr());
    }
    const QStringList names = QDir(PathText::SlashedFromWide(dir.GetDataPtr()))
                                  .entryList(nameFilters, kinds | QDir::NoDotAndDotDot);
    if (names.isEmpty()) {
        return 0;
    }
    const auto count = static_cast<int>(names.size());
    auto texts = std::make_unique<CQWString[]>(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        PathText::Store(texts[static_cast<std::size_t>(i)], names[i].toStdWString());
    }
    *list = texts.release();
    return count;
}
