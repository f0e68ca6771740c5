#include "TreeRemoval.h"

#include <QFile>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

struct CloseDir {
    void operator()(DIR* dir) const { closedir(dir); }
};
using OpenDir = std::unique_ptr<DIR, CloseDir>;

struct Entry {
    QByteArray name;
    QString sortKey;
    bool isDir;
};

// A directory on the way from the top of the tree to where the walk stands.
struct Level {
    OpenDir dir; // null while too many deeper ones are open
    struct stat identity;
    std::vector<Entry> entries; // left to remove, the next one last
};

// More levels than this are never open at once, however deep the tree is.
constexpr std::size_t maxOpenLevels = 16;

OpenDir Open(int at, const char* name, int flags, struct stat& identity)
{
    const int descriptor = openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
    if (descriptor < 0) {
        return nullptr;
    }
    OpenDir dir(fdopendir(descriptor));
    if (dir == nullptr) {
        close(descriptor);
        return nullptr;
    }
    return fstat(descriptor, &identity) == 0 ? std::move(dir) : nullptr;
}

// Links, special files and names that the platform cannot decode are no part of a listing.
bool IsListed(DIR* dir, const QByteArray& name, const QString& decoded, struct stat& info)
{
    return name != "." && name != ".." && QFile::encodeName(decoded) == name &&
           fstatat(dirfd(dir), name.constData(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           (S_ISDIR(info.st_mode) || S_ISREG(info.st_mode));
}

std::vector<Entry> EntriesOf(DIR* dir)
{
    std::vector<Entry> entries;
    while (const dirent* raw = readdir(dir)) {
        const QByteArray name(raw->d_name);
        const QString decoded = QFile::decodeName(name);
        struct stat info;
        if (IsListed(dir, name, decoded, info)) {
            entries.push_back({name, decoded.toLower(), S_ISDIR(info.st_mode)});
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.sortKey < b.sortKey; });
    std::reverse(entries.begin(), entries.end());
    return entries;
}

class TreeWalk
{
public:
    bool Enter(int at, const QByteArray& name, int flags)
    {
        Level level;
        level.dir = Open(at, name.constData(), flags, level.identity);
        if (level.dir == nullptr) {
            return false;
        }
        level.entries = EntriesOf(level.dir.get());
        m_levels.push_back(std::move(level));
        if (m_levels.size() > maxOpenLevels) {
            m_levels[m_levels.size() - 1 - maxOpenLevels].dir.reset();
        }
        return true;
    }

    void RemoveEntries()
    {
        while (!m_levels.back().entries.empty() || m_levels.size() > 1) {
            const Level& level = m_levels.back();
            if (level.entries.empty()) {
                if (!Leave()) {
                    return;
                }
                RemoveNext(AT_REMOVEDIR);
            } else if (!level.entries.back().isDir) {
                RemoveNext(0);
            } else if (!Enter(dirfd(level.dir.get()), level.entries.back().name, O_NOFOLLOW)) {
                RemoveNext(AT_REMOVEDIR); // one that cannot be read may be empty
            }
        }
    }

private:
    // The rest of a directory stays when one entry does: what is above it cannot be removed then
    // either, unless the entry has gone by itself.
    void RemoveNext(int flags)
    {
        Level& level = m_levels.back();
        if (unlinkat(dirfd(level.dir.get()), level.entries.back().name.constData(), flags) == 0) {
            level.entries.pop_back();
        } else {
            level.entries.clear();
        }
    }

    // Back to the directory above; false where ".." is another one by now.
    bool Leave()
    {
        const Level left = std::move(m_levels.back());
        m_levels.pop_back();
        Level& above = m_levels.back();
        if (above.dir == nullptr) {
            struct stat found = {};
            above.dir = Open(dirfd(left.dir.get()), "..", 0, found);
            return above.dir != nullptr && found.st_dev == above.identity.st_dev &&
                   found.st_ino == above.identity.st_ino;
        }
        return true;
    }

    std::vector<Level> m_levels;
};

} // namespace

void RemoveContents(const QString& path)
{
    if (path.startsWith(QLatin1Char(':'))) {
        return; // one of the program's resources, not the directory of that name
    }
    TreeWalk walk;
    if (walk.Enter(AT_FDCWD, QFile::encodeName(path), 0)) {
        walk.RemoveEntries();
    }
}
