// Every call to the system that touches the disk is made to fail in turn, once and from there on:
// whatever is lost must show in a result or in HasFailed(), and what is to stay must stay.

#include "TempDir.h"
#include "TestPrelude.h"

#include <CQFile.h>
#include <CQFileUtils.h>
#include <CQSaveFile.h>
#include <CQWString.h>
#include <CQZipFile.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>

#include <cerrno>
#include <csignal>

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>
#include <zlib.h>

using namespace std::string_view_literals;

namespace
{

// A write of a part; a read that finds the end or, when it lasts, that fails behind a part.
constexpr int Short = -1;

// What happens to the n-th call, and, when it lasts, to all later ones of the same kind.
struct Fault {
    int n = 0;
    int error = 0;
    bool lasts = false;
    int calls = 0, syncs = 0; // seen
    std::string kind = {};    // of what was struck
    bool hitsWritten = false; // a close of what had been written to
};

Fault* fault = nullptr;                          // while calls are counted
int lastWritten = -1;                            // descriptor, until it is closed or waited for
std::function<void(std::string_view)> interlude; // happens before each call

bool Strikes(std::string_view kind)
{
    if (const auto happens = std::exchange(interlude, nullptr)) {
        happens(kind);
        interlude = happens;
    }
    if (fault == nullptr) {
        return false;
    }
    fault->syncs += kind == "fsync" ? 1 : 0;
    const bool isNth = ++fault->calls == fault->n;
    if (isNth && (fault->error != Short || kind == "write" || kind == "read")) {
        fault->kind = kind;
    }
    errno = fault->error;
    return fault->kind == kind && (isNth || fault->lasts);
}

ssize_t ShortRead(ssize_t part)
{
    errno = EIO;
    return !fault->lasts ? 0 : fault->calls == fault->n ? part : -1;
}

int Settled(int fd)
{
    lastWritten = fd == lastWritten ? -1 : lastWritten;
    return fd;
}

} // namespace

// Takes the place of a function of the C library, for Qt and the library too.
#define INTERPOSE(Result, name, parameters, works, fails)                                          \
    __attribute__((visibility("default"))) Result Faulty_##name parameters __asm__(#name);         \
    Result Faulty_##name parameters                                                                \
    {                                                                                              \
        using Function = Result parameters;                                                        \
        [[maybe_unused]] static auto* const real =                                                 \
            reinterpret_cast<Function*>(dlsym(RTLD_NEXT, #name));                                  \
        return Strikes(#name) ? (fails) : (works);                                                 \
    }

using Path = const char*;
INTERPOSE(int, open64, (Path p, int flags, mode_t mode), real(p, flags, mode), -1)
INTERPOSE(int, openat64, (int at, Path p, int flags, mode_t mode), real(at, p, flags, mode), -1)
INTERPOSE(int, close, (int fd), real(Settled(fd)),
          (fault->hitsWritten |= fd == lastWritten, real(fd), -1))
INTERPOSE(ssize_t, read, (int fd, void* to, size_t n), real(fd, to, n),
          fault->error == Short ? ShortRead(real(fd, to, n / 2)) : -1)
INTERPOSE(ssize_t, write, (int fd, const void* from, size_t n), real(lastWritten = fd, from, n),
          fault->error == Short ? real(fd, from, n / 2) : -1)
INTERPOSE(ssize_t, sendfile, (int to, int from, off_t* at, size_t n), real(to, from, at, n), -1)
INTERPOSE(int, ftruncate64, (int fd, off64_t size), real(fd, size), -1)
INTERPOSE(int, fsync, (int fd), (Settled(fd), 0), -1)
INTERPOSE(int, fchmod, (int fd, mode_t mode), real(fd, mode), -1)
INTERPOSE(int, fdatasync, (int), 0, -1)
INTERPOSE(int, mkdir, (Path p, mode_t mode), real(p, mode), -1)
INTERPOSE(int, rename, (Path from, Path to), real(from, to), -1)
INTERPOSE(int, renameat2, (int f, Path from, int t, Path to, unsigned flags),
          to == "elsewhere"sv ? (errno = EXDEV, -1) : real(f, from, t, to, flags), -1)
INTERPOSE(int, linkat, (int f, Path from, int t, Path to, int flags), real(f, from, t, to, flags),
          -1)
INTERPOSE(int, unlink, (Path p), real(p), -1)
INTERPOSE(int, unlinkat, (int at, Path p, int flags), real(at, p, flags), -1)
INTERPOSE(int, rmdir, (Path p), real(p), -1)
INTERPOSE(int, compress2, (Bytef * to, uLongf* size, const Bytef* from, uLong n, int level),
          real(to, size, from, n, level), Z_MEM_ERROR)

namespace
{

using F = CQFile;
using Files = std::map<std::string, std::string>;

std::string Lines(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += std::to_string(i * i) + '\n';
    }
    return text;
}

const std::string Old = Lines(3000); // more than the platform gathers before it writes
const std::string New = Lines(4000);
const std::string Tail = "tail";
const std::string Pieces = Tail + New + Tail;
const std::string ZippedNew = qCompress(QByteArray::fromStdString(New)).toStdString();
auto* newBytes = reinterpret_cast<unsigned char*>(const_cast<char*>(New.data()));
int newLength = static_cast<int>(New.size());

bool Finish(CQFile& file)
{
    file.Write(Tail.data(), 4);
    file.Close();
    return !file.HasFailed();
}

bool WriteTo(const QString& path, unsigned int mode, int cacheSize)
{
    CQFile file;
    file.OpenWithWriteCache(CQWString(QDir(path).absolutePath()), mode, cacheSize);
    const auto before = QFileInfo(path).size();
    file.Write(Tail.data(), 4);
    const bool synced = file.Sync();
    EXPECT_TRUE(!synced || QFileInfo(path).size() == before + 4);
    file.Write(newBytes, static_cast<unsigned int>(newLength));
    return Finish(file) && synced;
}

bool Save(const char* tail)
{
    CQSaveFile file;
    file.Open(L".\\old");
    file.Write(newBytes, static_cast<unsigned int>(newLength));
    const bool isWritten = file.Write(tail, 4) == 1;
    const bool isCommitted = file.Commit() == 1;
    EXPECT_TRUE(tail == nullptr ? !isWritten : isWritten || !isCommitted);
    return isCommitted;
}

bool ReadStream()
{
    OrvoStream::FileInputStream file(CQWString(QStringLiteral("old")));
    OrvoStream::DataInputStream in(file);
    std::string bytes(20000, '\0');
    in.Read(bytes.data(), 20000);
    EXPECT_TRUE(in.HasFailed() || Old.starts_with(bytes));
    return !in.HasFailed();
}

bool ReadCutWrite()
{
    CQFile file;
    std::string text(Old.size(), '\0');
    const bool opened = file.Open(L"old", 2) == 1;
    const int count = file.Read(text.data(), static_cast<unsigned int>(text.size()));
    const bool isWhole = count == static_cast<int>(Old.size());
    EXPECT_EQ(isWhole && !file.HasFailed(), text == Old);
    EXPECT_TRUE(isWhole || file.HasFailed() || (fault->error == Short && !fault->lasts));
    const bool cut = opened && file.SetSize(4) && file.SeekToEnd();
    return Finish(file) && isWhole && cut;
}

bool ReplaceBlock()
{
    return CQZipFile().Replace(newBytes, newLength, L"zip") == 1;
}

bool WriteBlock()
{
    CQZipFile zip;
    zip.Write(&newBytes, &newLength, L"new");
    const bool synced = zip.Sync();
    EXPECT_TRUE(!synced || QFileInfo("new").size() == static_cast<int>(ZippedNew.size()));
    zip.Write(&newBytes, &newLength, L"new"); // and not waited for
    zip.Close();
    return synced && !zip.HasFailed();
}

bool ReadBlock()
{
    CQZipFile zip;
    QByteArray block;
    const bool read = zip.Read(block, L"zip") == 1;
    EXPECT_EQ(read, block.toStdString() == Old);
    return !zip.HasFailed();
}

bool WriteStream()
{
    OrvoStream::FileOutputStream file(CQWString(QStringLiteral("new")));
    DataOutputStream out(file);
    for (std::size_t at = 0; at < New.size(); at += 9000) {
        out << New.substr(at, 9000).c_str();
    }
    out.Flush();
    out.Close();
    return !out.HasFailed();
}

bool Move(const wchar_t* to)
{
    const auto permissions = QFile::permissions("old");
    const bool moved = F::RenameFile(L"old", to) == 1;
    return moved && QFile::permissions(QString::fromWCharArray(to)) == permissions;
}

bool MakeFile()
{
    QFile file;
    const int made = CQFileUtils::MkFile(file, "made/dir/new", QFile::ReadOwner);
    const bool written = made == 1 && file.isOpen() && file.write("x") == 1;
    file.close();
    return written && file.error() == QFile::NoError;
}

// What holds of the files that differ, whatever happens, besides that every loss is told.
enum Promise { Nothing, Prefix, Atomic };

const struct Script {
    const char* name;
    std::function<bool()> run; // whether it was told of no failure
    Files after;               // what differs then; empty: gone
    Promise promise = Nothing;
    int syncs = 0; // waits for the disk, of files and directories
} scripts[] = {
    {"write", [] { return WriteTo("new", 1, 0); }, {{"new", Pieces}}, Nothing, 2},
    {"append", [] { return WriteTo("old", 3, 0); }, {{"old", Old + Pieces}}, Nothing, 1},
    {"cache", [] { return WriteTo("d/e/new", 1, 40000); }, {{"d/e/new", Pieces}}, Nothing, 4},
    {"read, cut, write", ReadCutWrite, {{"old", "0\n1\n" + Tail}}},
    {"save", [] { return Save(Tail.data()); }, {{"old", New + Tail}}, Atomic, 2},
    {"replace a block", ReplaceBlock, {{"zip", ZippedNew}}, Atomic, 2},
    {"write a block", WriteBlock, {{"new", ZippedNew}}, Nothing, 2},
    {"read a block", ReadBlock, {}},
    {"write a stream", WriteStream, {{"new", New}}, Prefix},
    {"read a stream", ReadStream, {{"old", Old}}}, // which a failed open may remove
    {"rename", [] { return Move(L"moved"); }, {{"old", ""}, {"moved", Old}}, Atomic},
    {"move away", [] { return Move(L"elsewhere"); }, {{"old", ""}, {"elsewhere", Old}}, Atomic, 2},
    {"copy", [] { return F::CopyFile(L"old", L"copy"); }, {{"copy", Old}}, Atomic},
    {"delete", [] { return F::DeleteFile(L"zip"); }, {{"zip", ""}}, Atomic},
    {"delete all", [] { return F::RecursiveDelDir(L"t"); }, {{"t/a/b/f", ""}, {"t/c", ""}}, Atomic},
    {"make a file", MakeFile, {{"made/dir/new", "x"}}},
};

// Every script begins with this.
struct Layout : TempDir {
    Layout()
    {
        Put("old", QByteArray::fromStdString(Old));
        QFile::setPermissions("old", QFile::ReadOwner | QFile::WriteOwner);
        Put("t/a/b/f");
        Put("t/c");
        Put("zip", qCompress(QByteArray::fromStdString(Old)));
    }
    Files GetFiles() const
    {
        Files files = Entries();
        std::erase_if(files, [](const auto& entry) { return entry.second == "/"; });
        return files;
    }
};

// Runs the script with the fault; false when there was no n-th call.
bool RunWith(Fault strike, const Script& script)
{
    const Layout dir;
    Files before = dir.GetFiles(), named = script.after;
    named.insert(before.begin(), before.end());
    fault = &strike;
    const bool toldOfNone = script.run();
    fault = nullptr;
    SCOPED_TRACE(testing::Message() << script.name << ", error " << strike.error << ", call "
                                    << strike.n << ' ' << strike.kind << strike.lasts);
    Files found = dir.GetFiles();
    EXPECT_TRUE(script.promise != Atomic ||
                found.count("old") + found.count("moved") + found.count("elsewhere") > 0);
    for (const auto& [name, after] : named) {
        const bool isPrefix = script.promise == Prefix && after.starts_with(found[name]);
        const bool mayBeAnything = script.promise == Nothing && script.after.count(name) == 1;
        EXPECT_TRUE(found[name] == after ||
                    (!toldOfNone && (mayBeAnything || isPrefix || found[name] == before[name])))
            << name;
    }
    EXPECT_TRUE(!toldOfNone || found.size() == named.size()) << "something else is left";
    EXPECT_FALSE(toldOfNone && (strike.kind == "fsync" || strike.hitsWritten));
    const bool wasCalled = strike.calls >= strike.n;
    EXPECT_TRUE(wasCalled || (toldOfNone && strike.syncs == script.syncs)) << strike.syncs;
    return wasCalled;
}

} // namespace

TEST(DiskFaults, EachLossIsToldAndWhatIsToStayStays)
{
    for (const Script& script : scripts) {
        for (const int error : {EIO, ENOSPC, EMFILE, Short}) {
            for (const bool lasts : {false, true}) {
                for (int n = 1; RunWith({n, error, lasts}, script); ++n) {
                }
            }
        }
    }
}

TEST(DiskFaults, AFileThatVanishesOrIsSwappedLeadsNowhereElse)
{
    const Layout dir;
    dir.Put("keep/file");
    interlude = [](std::string_view kind) { kind == "open64" ? unlink("old") : 0; };
    CQFile file;
    EXPECT_EQ(0, file.Open(L"old", 0));
    EXPECT_TRUE(file.HasFailed());
    // One that had to be made anew has a new name to wait for, too.
    interlude = nullptr;
    Fault noDescriptor{1, EMFILE};
    fault = &noDescriptor;
    EXPECT_TRUE(file.Open(L"zip", 1) == 1 && file.Sync());
    fault = nullptr;
    EXPECT_EQ(2, noDescriptor.syncs);
    // Between the look at the tree and the step into it, a directory becomes a link.
    interlude = [opened = 0](std::string_view kind) mutable {
        if (kind.starts_with("openat") && ++opened == 2) {
            EXPECT_TRUE(QDir().rename("t/a", "a") && QFile::link("../keep", "t/a"));
        }
    };
    EXPECT_EQ(0, F::RecursiveDelDir(L"t"));
    EXPECT_EQ("x", dir.Get("keep/file"));
    // What has gone by itself keeps nothing from being removed.
    interlude = [](std::string_view kind) { kind == "unlinkat" ? unlink("keep/file") : 0; };
    EXPECT_EQ(1, F::RecursiveDelDir(L"keep"));
    interlude = nullptr;
}

TEST(DiskFaults, ARefusedPieceOrALimitKeepsTheOldContent)
{
    const Layout dir;
    EXPECT_FALSE(Save(nullptr));
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{30000, RLIM_INFINITY};
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
    EXPECT_NONE(WriteTo("new", 1, 0), Save(Tail.data()));
    EXPECT_EQ(Old, dir.Get("old"));
}

TEST(DiskFaults, WithoutTheRightsNothingIsLostOrLeft)
{
    const Layout dir;
    const Files before = dir.GetFiles();
    ASSERT_EQ(0, chmod("old", 0444));
    ASSERT_EQ(0, chmod(".", 0555));
    const auto tryAll = [] {
        bool told = geteuid() != 0 || setuid(65534) == 0;
        for (const Script& script : scripts) {
            told = (!script.run() || script.name == "read a stream"sv) && told;
        }
        _exit(told ? 0 : 1);
    };
    EXPECT_EXIT(tryAll(), testing::ExitedWithCode(0), "");
    chmod(".", 0755);
    EXPECT_EQ(before, dir.GetFiles());
}
