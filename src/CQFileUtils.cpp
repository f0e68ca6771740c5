#include "CQFileUtils.h"

#include "PathText.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <algorithm>

namespace
{

constexpr int Success = 1;
constexpr int NotFound = -1;
constexpr int AlreadyExists = -11;
constexpr int PathNotFound = -12;
constexpr int AccessDenied = -21;

// Shorter paths are a drive prefix at most.
constexpr int ShortestPath = 4;
constexpr int DrivePrefix = 3;

bool CanBeRepaired(int code)
{
    return code == AlreadyExists || code == AccessDenied;
}

QString WithoutTrailingSlash(const QString& path)
{
    return path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

bool LiesInRoot(const QString& path)
{
    const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    return QFileInfo(clean).dir().isRoot();
}

void OpenReadWrite(QFile& file, const QString& path, QFile::Permissions permissions)
{
    file.setFileName(path);
    file.setPermissions(permissions);
    static_cast<void>(file.open(QIODevice::ReadWrite)); // callers ask the file
}

} // namespace

bool CQFileUtils::IsDir(const QString& path)
{
    return QFileInfo(path).isDir();
}

int CQFileUtils::RmFile(const QString& path)
{
    const QString slashed = PathText::Slashed(path);
    if (QFile::remove(slashed)) {
        return Success;
    }
    return QFile::exists(slashed) ? AccessDenied : NotFound;
}

int CQFileUtils::RmDir(const QString& path)
{
    const QString slashed = PathText::Slashed(path);
    if (QDir().rmdir(slashed)) {
        return Success;
    }
    return IsDir(slashed) || LiesInRoot(slashed) ? AccessDenied : NotFound;
}

bool CQFileUtils::FileErrors(int& code, const QString& path)
{
    if (!CanBeRepaired(code)) {
        return false;
    }
    const QString slashed = PathText::Slashed(path);
    code = IsDir(slashed) ? RmDir(slashed) : RmFile(slashed);
    return code == Success;
}

bool CQFileUtils::DirErrors(int& code, const QString& path)
{
    if (!CanBeRepaired(code)) {
        return false;
    }
    const QString slashed = PathText::Slashed(path);
    const bool isDir = IsDir(slashed); // not of the target, which is empty for "/"
    if (code == AlreadyExists && isDir) {
        return false;
    }
    const QString target = WithoutTrailingSlash(slashed);
    if (isDir || LiesInRoot(target)) {
        // MkDir() reports this as success without a second attempt, and its callers go on.
        code = Success;
        return false;
    }
    code = RmFile(target);
    return code == Success;
}

int CQFileUtils::ParseNextDir(const QString& path, int from)
{
    const int length = static_cast<int>(path.size());
    const int start = std::max(from, DrivePrefix);
    if (start >= length) {
        return length;
    }
    const auto slash = PathText::Slashed(path).indexOf(QLatin1Char('/'), start);
    return slash < 0 ? length - 1 : static_cast<int>(slash);
}

int CQFileUtils::MkDir(const QString& path)
{
    if (path.size() < ShortestPath) {
        return PathNotFound;
    }
    const QString slashed = PathText::Slashed(path);
    if (QDir().mkpath(slashed)) {
        return Success;
    }
    // Without the slash: the system finds nothing at "file/", and a file in the way of the
    // prefixes that EnsurePathExists() makes would never be repaired.
    int code = QFile::exists(WithoutTrailingSlash(slashed)) ? AlreadyExists : PathNotFound;
    if (DirErrors(code, slashed)) {
        code = QDir().mkpath(slashed) ? Success : NotFound;
    }
    return code;
}

int CQFileUtils::EnsurePathExists(const QString& path)
{
    const QString slashed = PathText::Slashed(path);
    if (QDir().mkpath(slashed)) {
        return Success;
    }
    const int length = static_cast<int>(slashed.size());
    int made = 0;
    do {
        const int slash = ParseNextDir(slashed, made);
        if (slash >= length || slashed.at(slash) != QLatin1Char('/')) {
            break; // what is left is the file's own name
        }
        made = slash + 1;
        const int result = MkDir(slashed.left(made));
        if (result != Success) {
            return result;
        }
    } while (made < length);
    return Success;
}

int CQFileUtils::MkFile(QFile& file, const QString& path, QFile::Permissions permissions)
{
    const QString slashed = PathText::Slashed(path);
    const int result = EnsurePathExists(slashed);
    if (result != Success) {
        return result;
    }
    OpenReadWrite(file, slashed, permissions);
    const QFileInfo info(slashed);
    int code = info.exists() && !info.isFile() ? AlreadyExists : 0;
    if (FileErrors(code, slashed)) {
        OpenReadWrite(file, slashed, permissions);
    }
    return result;
}

QString* CQFileUtils::Ext(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    const auto dot = name.indexOf(QLatin1Char('.'));
    return dot < 0 ? nullptr : new QString(name.mid(dot + 1));
}

QString* CQFileUtils::FileNameWithoutExt(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    return new QString(name.left(name.indexOf(QLatin1Char('.'))));
}
