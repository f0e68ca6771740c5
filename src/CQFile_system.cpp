// The operations of CQFile on the file system that need no open file.

#include "CQFile.h"

#include "CQWString.h"
#include "FileMove.h"
#include "OrvoAssert.h"
#include "PathText.h"
#include "TreeRemoval.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <new>
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
    const QFileInfo info(path);
    const qint64 size = info.size(); // looks at the file once, for both answers
    return info.exists() ? static_cast<int>(static_cast<quint32>(size)) : -1;
}

int CopyTo(const QString& from, const QString& to)
{
    return !from.isEmpty() && !to.isEmpty() && !QFileInfo(to).isSymLink() && QFile::copy(from, to);
}

// Where the file name in \a path begins.
std::size_t NameStart(std::wstring_view path)
{
    return path.find_last_of(L"/\\") + 1; // npos + 1, without a separator, is the start
}

// Only for an extension with wildcards the platform is asked to choose: where it lacks memory for
// the comparison of a name, it leaves the name out and says nothing.
QStringList NamesEndingIn(const QString& ext, const QDir& dir, QDir::Filters kinds)
{
    const auto isWild = [](QChar c) {
        return c == QLatin1Char('*') || c == QLatin1Char('?') || c == QLatin1Char('[');
    };
    const QString ending = QLatin1Char('.') + ext;
    if (std::any_of(ext.cbegin(), ext.cend(), isWild)) {
        QStringList nameFilters;
        nameFilters << QLatin1Char('*') + ending;
        return dir.entryList(nameFilters, kinds | QDir::NoDotAndDotDot);
    }
    QStringList names = dir.entryList(kinds | QDir::NoDotAndDotDot);
    if (!ext.isEmpty()) {
        names.erase(std::remove_if(names.begin(), names.end(),
                                   [&](const QString& name) {
                                       return !name.endsWith(ending, Qt::CaseInsensitive);
                                   }),
                    names.end());
    }
    return names;
}

bool StoreNames(const QStringList& names, CQWString* texts)
{
    return std::all_of(names.cbegin(), names.cend(), [&texts](const QString& name) {
        return PathText::Store(*texts++, name.toStdWString());
    });
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
    const std::wstring_view text(path->GetDataPtr());
    const auto fileName = text.substr(NameStart(text));
    return PathText::Store(name, fileName) && !name.IsEmpty();
}

int CQFile::GetFileNameWithoutExtension(const CQWString* path, CQWString& name)
{
    if (path == nullptr || path->IsEmpty()) {
        return 0;
    }
    const std::wstring_view text(path->GetDataPtr());
    const auto start = NameStart(text);
    const auto dot = std::min(text.rfind(L'.'), text.size());
    if (start == text.size() || dot < start) {
        name.Empty();
        return 0;
    }
    return PathText::Store(name, text.substr(start, dot - start));
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
           MoveFile(PathText::SlashedFromWide(from), PathText::SlashedFromWide(to));
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
    if (IsNullOrEmpty(path)) {
        return 0; // an empty path would be the current directory
    }
    const QString slashed = PathText::SlashedFromWide(path);
    RemoveContents(slashed);
    return QDir().rmdir(slashed);
}

int CQFile::RenameDir(const wchar_t* from, const wchar_t* to, unsigned int)
{
    return IsFileExist(from) && !IsNullOrEmpty(to) &&
           MoveFile(PathText::SlashedFromWide(from), PathText::SlashedFromWide(to));
}

int CQFile::GetDirFileList(CQWString& dir, CQWString& ext, bool withDirs, CQWString** list)
{
    if (list == nullptr) {
        return 0;
    }
    *list = nullptr;
    const auto kinds = withDirs ? QDir::Dirs | QDir::Files : QDir::Filters(QDir::Files);
    const QStringList names =
        NamesEndingIn(PathText::SlashedFromWide(ext.GetDataPtr()),
                      QDir(PathText::SlashedFromWide(dir.GetDataPtr())), kinds);
    if (names.isEmpty()) {
        return 0;
    }
    std::unique_ptr<CQWString[]> texts(new (std::nothrow)
                                           CQWString[static_cast<std::size_t>(names.size())]);
    if (texts == nullptr || !StoreNames(names, texts.get())) {
        return 0;
    }
    *list = texts.release();
    return static_cast<int>(names.size());
}
