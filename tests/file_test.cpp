// What the model of the file object does not reach, and the operations without an open file.

#include "AssertRecorder.h"
#include "TempDir.h"
#include "TestPrelude.h"

#include <CQFile.h>
#include <CQFileUtils.h>
#include <CQWString.h>

#include <QTime>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

enum Mode : unsigned int { Read, Write, ReadWrite, Append };

// A pipe, or a socket, which can be removed but not opened, whatever rights one has.
void MakeSpecial(const char* path, mode_t kind)
{
    ASSERT_EQ(0, mknod(path, kind | 0600, 0));
}

using F = CQFile;
using U = CQFileUtils;

const wchar_t* const Null = nullptr;

std::wstring Listing(const char* dir, const char* ext, bool withDirs)
{
    CQWString path = QString(dir), extension = QString(ext);
    CQWString* names = &path;
    const int count = F::GetDirFileList(path, extension, withDirs, &names);
    const std::unique_ptr<CQWString[]> owner(names);
    std::wstring result = names ? L"" : L"null";
    for (int i = 0; i < count; ++i) {
        (result += names[i].GetDataPtr()) += L' ';
    }
    return result;
}

} // namespace

TEST(File, OpensMakeDirectoriesAndTakePathsOfEveryForm)
{
    for (const Mode mode : {Read, Write, ReadWrite, Append}) {
        SCOPED_TRACE(mode);
        const TempDir dir;
        dir.Put(QChar(0xE4));
        dir.Put("d/");
        MakeSpecial("socket", S_IFSOCK); // is replaced, but a directory is not
        CQFile file;
        EXPECT_EQ(mode != Read, file.Open(L"socket", mode));
        EXPECT_EQ(mode != Write, file.HasFailed()) << "content was to stay";
        file.Close();
        QString path("a\\b");
        CQSString utf8;
        ExpectAll(0, {file.Open(path, 4), file.Open(utf8, mode), file.Open(L"", mode),
                      file.Open(L"d", mode)});
        EXPECT_EQ("a/b", path) << "slashed in place all the same";
        EXPECT_EQ(mode != Read, file.Open(CQWString(dir.Absolute("a\\b\\c")), mode));
        file.Close();
        utf8.SetData(".\\\xC3\xA4");
        EXPECT_EQ(1, file.Open(utf8, mode));
        EXPECT_STREQ(".\\\xC3\xA4", utf8) << "unchanged";
        EXPECT_EQ(mode == Read ? UINT_MAX : 0, file.WriteData(nullptr, 1));
        EXPECT_EQ(-1, file.Read(nullptr, 1));
        char byte = 0;
        EXPECT_EQ(0, file.Open(L"d", mode));
        EXPECT_EQ(mode == Write ? -1 : 0, file.Read(&byte, 1)) << "still counts as open";
        file.Close();
        EXPECT_EQ(std::string(mode == Read ? "d/ " : "a/ a/b/ a/b/c= d/ socket= ") +
                      "\xC3\xA4=" + (mode == Write ? " " : "x "),
                  dir.All());
    }
}

TEST(File, AFullDiskShowsInLargeWritesOnly)
{
    const TempDir dir;
    ASSERT_TRUE(QFile::link("/dev/full", "full"));
    CQFile file;
    EXPECT_FALSE(file.Sync());
    ASSERT_EQ(1, file.Open(L"full", Append));
    EXPECT_EQ(3U, file.WriteData("abc", 3));
    EXPECT_TRUE(file.HasFailed());
    const std::string large(20480, 'x');
    EXPECT_EQ(UINT_MAX, file.WriteData(large.data(), 20480));
    EXPECT_EQ(-1, file.Write(large.data(), 20480));
}

TEST(FileSystem, PathsAreTakenApart)
{
    ExpectAll(1, {F::IsLocalPath("c:/x"), F::IsLocalPath("Z:/"), F::IsLocalPath("C:/"),
                  F::IsLocalPath("z:/")});
    for (const char* path : {"b:/", "B:/", "c:\\x", "c:", "cc/", "", "[:/", "{:/"}) {
        EXPECT_EQ(0, F::IsLocalPath(path));
    }
    CQWString name;
    ExpectAll(0, {F::IsLocalPath(nullptr), F::GetFileName(nullptr, name),
                  F::GetFileNameWithoutExtension(nullptr, name)});
}

TEST(FileSystem, LengthsAre32BitAndTakeBackslashesAsTheyAre)
{
    const TempDir dir{"sub/file", "back\\slash"};
    ASSERT_TRUE(QFile::link("none", "dangling"));
    const CQWString path = QString("sub/file");
    ExpectAll(1, {F::GetFileLenght(path), F::GetFileLenght(L"sub/", L"file"),
                  F::GetFileLenght(L"back\\slash")});
    ExpectAll(-1, {F::GetFileLenght(L"sub\\file"), F::GetFileLenght(L"sub\\", L"file"),
                   F::GetFileLenght(Null), F::GetFileLenght(Null, path),
                   F::GetFileLenght(L"dangling")});
    ASSERT_TRUE(QFile::resize("sub/file", 0x180000005LL));
    CQFile file;
    ASSERT_EQ(1, file.Open(path, Read));
    ExpectAll(-0x7FFFFFFB, {F::GetFileLenght(path), file.GetLength()});
    char first = 0;
    EXPECT_EQ(1, file.Seek(0x7FFFFFFB, 2)) << "to 0: only the low 32 bits of the sum count";
    EXPECT_EQ(1, file.Read(&first, 1));
    EXPECT_EQ('x', first);
    EXPECT_EQ(0, file.Seek(-6, 1)) << "below 0";
    ASSERT_TRUE(QFile::resize("sub/file", 1));
    EXPECT_EQ(0, file.Seek(INT_MAX, 2)) << "wraps below 0";
}

TEST(FileSystem, FilesAreCopiedRenamedAndDeleted)
{
    const TempDir dir{"a", "b"};
    ASSERT_TRUE(QFile::link("none", "link"));
    for (const wchar_t* taken : {L"b", L"link", L"a", L"", Null}) {
        ExpectAll(0, {F::CopyFile(L"a", taken), F::RenameFile(L"a", taken),
                      F::RenameDir(L"a", taken, 0)});
    }
    ExpectAll(1, {F::DeleteFile(L"link"), F::CopyFile(L".\\", L"a", L"n\\e\\w\\", L"d"),
                  F::CopyFile(L".\\a", L".\\c"), F::RenameFile(L".\\c", L"n\\e\\e")});
    EXPECT_EQ("a=x b=x n/ n/e/ n/e/e=x n/e/w/ n/e/w/d=x ", dir.All());
    ExpectAll(1, {F::DeleteFile(L"n\\e\\", L"e"), F::DeleteFile(L".\\b")});
    EXPECT_EQ(-1, F::CopyFile(L"", L"a", Null, L"d"));
    ExpectAll(0, {F::DeleteFile(L"b"), F::DeleteFile(Null, L"a"), F::CopyFile(L"", L"c"),
                  F::RenameFile(Null, L"c")});
    EXPECT_EQ("a=x n/ n/e/ n/e/w/ n/e/w/d=x ", dir.All());
}

TEST(FileSystem, DirectoriesAreMadeRenamedAndRemoved)
{
    const TempDir dir;
    ExpectAll(1, {F::CreateDirectory(L"a\\b"), F::CreateDirectory(L"a\\b")});
    EXPECT_EQ(0, F::DelDir(L"a")) << "not empty";
    ExpectAll(1, {F::DelDir(L"a\\b"), F::RenameDir(L".\\a", L".\\z", 7)});
    ExpectAll(0, {F::DelDir(L"a"), F::RenameDir(L"a", L"b", 0)});
    EXPECT_EQ(1, F::MakeDir(dir.Absolute("c\\d/e/")));
    // Parts of a relative path are looked up and made inside that path.
    EXPECT_EQ(0, F::MakeDir("new"));
    EXPECT_EQ(1, F::MakeDir("c/d"));
    EXPECT_EQ("c/ c/d/ c/d/c/ c/d/c/d/ c/d/e/ z/ ", dir.All());
}

TEST(FileSystem, RecursiveDeleteNeverLeavesItsDirectory)
{
    // Links stay, and the walk stops where one keeps its directory: at B, between a and c.
    const TempDir dir{"keep",     "w/sub/.hidden", "w/..\\keep/file", "w/empty/",  "v/a",
                      "v/B/file", "v/c",           "u/file",          "./:r/file", "to/file"};
    dir.Put("w/" + QString("deep/").repeated(50) + "file");
    MakeSpecial("u/socket", S_IFSOCK);
    ASSERT_TRUE(QFile::link(dir.Absolute("keep"), "v/B/link") && QFile::link("to", "link"));
    rlimit limit;
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limit));
    const rlimit fewer{40, limit.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &fewer));
    EXPECT_EQ(1, F::RecursiveDelDir(L".\\w"));
    setrlimit(RLIMIT_NOFILE, &limit);
    for (const wchar_t* path : {L"u", L"v", L"w", L"keep", L"link", L":r", L"", Null}) {
        EXPECT_EQ(0, F::RecursiveDelDir(path));
    }
    EXPECT_EQ(":r/ :r/file=missing keep=x link@ to/ u/ u/socket=missing v/ v/B/ v/B/link@ v/c=x ",
              dir.All());
    unlink("v/B/link");
    for (const char* const name : {"v/pipe", "v/\xFF"}) {
        MakeSpecial(name, name[2] == 'p' ? S_IFIFO : S_IFREG);
        EXPECT_EQ(0, F::RecursiveDelDir(L"v")) << name;
        EXPECT_EQ(0, unlink(name));
    }
}

TEST(FileSystem, ListingsAreSortedByNameIgnoringCase)
{
    const TempDir dir{"b.png", "A.png", "C.PNG", "png", ".hidden.png", "d.png/in"};
    MakeSpecial("socket.png", S_IFSOCK);
    MakeSpecial("pipe", S_IFIFO);
    ASSERT_TRUE(QFile::link("png", "e.png") && QFile::link("none", "f.png"));
    EXPECT_EQ(L"null", Listing("d.png/in", "", true));
    // Every wide unit counts; what is no code point stands for U+FFFD.
    dir.Put(QStringLiteral("\U0001F600.txt"));
    dir.Put(QStringLiteral("d.png/\uFEFFmark"));
    dir.Put(QStringLiteral("d.png/\uFFFD"));
    const wchar_t noCodePoint[] = {static_cast<wchar_t>(0xFFFFFFFFU), 0};
    QDir::setCurrent("d.png");
    ExpectAll(1, {F::IsFileExist(L"\uFEFFmark"), F::IsFileExist(L"..\\\U0001F600.txt"),
                  F::IsFileExist(noCodePoint)});
    ExpectAll(0, {F::IsFileExist(L""), F::IsFileExist(Null)});
    QDir::setCurrent("..");
    EXPECT_EQ(L"A.png b.png C.PNG e.png png \U0001F600.txt ", Listing(".\\d.png\\..", "", false));
    EXPECT_EQ(L"A.png b.png C.PNG d.png e.png ", Listing("", "png", true));
    CQWString path;
    EXPECT_EQ(0, F::GetDirFileList(path, path, true, nullptr));
}

TEST(FileUtils, RepairsRemoveOnlyWhatBlocksThePath)
{
    const struct {
        const char* path;
        int code, forFile, forDir; // before and after
    } rows[] = {{"file", 1, 1, 1},      {"file", -12, -12, -12}, {"file", -11, 1, 1},
                {"file", -21, 1, 1},    {"file\\", -11, -1, 1},  {"empty", -11, 1, -11},
                {"empty\\", -21, 1, 1}, {"kept", -11, -21, -11}, {"kept", -21, -21, 1},
                {"none", -21, -1, -1},  {"/", -11, -21, -11},    {"/no/", -21, -1, 1}};
    for (const auto& row : rows) {
        for (const bool file : {true, false}) {
            SCOPED_TRACE(std::to_string(row.code) + row.path + (file ? " file" : " directory"));
            const TempDir dir{"file", "empty/", "kept/in"};
            const std::string before = dir.All();
            int code = row.code;
            const bool done = (file ? U::FileErrors : U::DirErrors)(code, row.path);
            EXPECT_EQ(file ? row.forFile : row.forDir, code);
            EXPECT_EQ(code == 1 && row.code != 1 && (file || *row.path == 'f'), done);
            EXPECT_EQ(done, dir.All() != before);
        }
    }
    EXPECT_EQ(-21, U::RmDir("/no-such-directory"));
}

TEST(FileUtils, DirectoriesAreMadeAndBlockingFilesRemoved)
{
    const TempDir dir{"file", "other"};
    EXPECT_EQ(-12, U::MkDir("abc"));
    EXPECT_EQ(-12, U::MkDir("file/sub")) << "only the path itself is repaired";
    EXPECT_EQ("file=x other=x ", dir.All());
    ExpectAll(1, {U::MkDir("abcd"), U::MkDir("abcd"), U::MkDir("file"),
                  U::EnsurePathExists("abcd\\b"), U::EnsurePathExists("other")});
    EXPECT_EQ("x", dir.Get("other")) << "the last component is not repaired";
    EXPECT_EQ(1, U::EnsurePathExists("other/sub/name"));
    EXPECT_EQ("abcd/ abcd/b/ file/ other/ other/sub/ ", dir.All());
    EXPECT_FALSE(U::IsDir(".\\abcd"));
}

TEST(FileUtils, MkFileOpensAFileAndReportsOnlyOnItsDirectories)
{
    const TempDir dir;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    umask(022);
    QFile file;
    for (const bool made : {true, false}) {
        EXPECT_EQ(1, U::MkFile(file, "a\\b\\file.dat", onlyOwner));
        EXPECT_EQ(made ? "" : "new", file.readAll());
        EXPECT_EQ(made, file.permissions().testFlag(QFile::ReadOther)) << "set before the open";
        file.write("new");
        file.close();
    }
    EXPECT_EQ(1, U::MkFile(file, "a/b", onlyOwner));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ("a/ a/b/ a/b/file.dat=newnew ", dir.All());
}

TEST(File, UnsupportedOperationsAssertOnTheirLines)
{
    AssertRecorder recorder;
    CQFileUID uid;
    QTime time(1, 2, 3);
    ExpectAll(0, {CQFile().GetModifiedTime(time), F::IsValidName(L"a"), F::IsValidFileName(L"a"),
                  F::GetFileUID(L"a", uid), F::IsFileExist(L"a", L"b")});
    EXPECT_EQ(QTime(1, 2, 3), time);
    AssertReports expected;
    for (const int line : {710, 1579, 1541, 1493, 1394}) {
        expected.push_back({"0", "src/CQFile", line});
    }
    EXPECT_EQ(expected, recorder.Take());
}
