#include "AssertRecorder.h"
#include "TempDir.h"
#include "TestPrelude.h"

#include <CQFile.h>
#include <CQFileUtils.h>
#include <CQWString.h>

#include <QTime>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

enum Mode : unsigned int { Read, Write, ReadWrite, Append };

std::string ReadAll(CQFile& file)
{
    char bytes[200];
    const int count = file.Read(bytes, sizeof bytes);
    return count < 0 ? "refused" : std::string(bytes, static_cast<std::size_t>(count));
}

int Put(CQFile& file, const std::string& text)
{
    return file.Write(text.data(), static_cast<unsigned int>(text.size()));
}

using F = CQFile;
using U = CQFileUtils;

const wchar_t* const Null = nullptr;

std::wstring Content(const CQWString& text)
{
    return text.IsEmpty() ? L"" : text.GetDataPtr();
}

std::wstring Listing(const char* dir, const char* ext, bool withDirs)
{
    CQWString path = QString(dir), extension = QString(ext);
    CQWString* names = &path;
    const int count = F::GetDirFileList(path, extension, withDirs, &names);
    const std::unique_ptr<CQWString[]> owner(names);
    std::wstring result = names ? L"" : L"null";
    for (int i = 0; i < count; ++i) {
        result += Content(names[i]) + L' ';
    }
    return result;
}

} // namespace

TEST(File, ModesDecideWhatExistsAndWhatIsAllowed)
{
    const struct {
        Mode mode;
        int refusal;
        const char *read, *after;
    } rows[] = {{Read, -1, "old", "\xC3\xA4=old "}, // U+00E4
                {Write, 0, "refused", "a/ a/b/ a/b/c= \xC3\xA4=new "},
                {ReadWrite, 0, "old", "a/ a/b/ a/b/c= \xC3\xA4=oldnew "},
                {Append, 0, "", "a/ a/b/ a/b/c= \xC3\xA4=oldnew "}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        const TempDir dir;
        dir.Put(QChar(0xE4), "old");
        CQFile file;
        EXPECT_EQ(row.mode != Read, file.Open(CQWString(dir.Absolute("a\\b\\c")), row.mode));
        file.Close();
        CQSString utf8;
        EXPECT_EQ(0, file.Open(utf8, row.mode));
        utf8.SetData(".\\\xC3\xA4");
        EXPECT_EQ(1, file.Open(utf8, row.mode));
        EXPECT_STREQ(".\\\xC3\xA4", utf8) << "unchanged";
        EXPECT_EQ(row.read, ReadAll(file));
        EXPECT_EQ(row.mode == Read ? -1 : 3, Put(file, "new"));
        EXPECT_EQ(row.refusal, file.Write("x", 0));
        EXPECT_EQ(static_cast<unsigned int>(row.refusal), file.WriteData(nullptr, 1));
        EXPECT_TRUE(file.Read(nullptr, 1) == -1 && file.Read(&file, 0) == -1);
        EXPECT_EQ(row.after, dir.All());
    }
}

TEST(File, RefusedOpensLeaveTheObjectClosed)
{
    const TempDir dir;
    CQFile file;
    QString path("a\\b");
    EXPECT_FALSE(file.Open(path, 4) || file.Open(Null, Write) || file.Open(L"", Read) ||
                 file.OpenWithWriteCache(Null, Write, 10));
    EXPECT_EQ("a/b", path) << "slashed in place all the same";
    EXPECT_EQ("", dir.All());
    EXPECT_TRUE(ReadAll(file) == "refused" && Put(file, "x") == -1 && file.GetLength() == 0);
    EXPECT_FALSE(file.Seek(0, 0) || file.SeekToBegin() || file.SeekToEnd() || file.SetSize(0));
    file.Close();
}

TEST(File, AFileThatCannotBeOpenedIsReplaced)
{
    // A socket exists and can be removed, but nobody can open it, whatever rights they have.
    const sockaddr_un address{AF_UNIX, "socket"};
    for (const Mode mode : {Read, Write, ReadWrite, Append}) {
        SCOPED_TRACE(mode);
        const TempDir dir{"d/"};
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
        close(descriptor);
        EXPECT_EQ(mode != Read, CQFile().Open(L"socket", mode));
        EXPECT_EQ(0, CQFile().Open(L"d", mode)) << "directories stay";
        EXPECT_EQ(mode == Read ? "d/ " : "d/ socket= ", dir.All());
    }
}

TEST(File, PositionsAre32Bit)
{
    const TempDir dir;
    dir.Put("file", QByteArray(90, 'a') + "0123456789");
    CQFile file;
    ASSERT_EQ(1, file.Open(L"file", ReadWrite));
    const struct {
        int offset;
        unsigned int origin;
        const char* rest; // behind the position; empty: refused, at the end already
    } rows[] = {{-10, 2, "0123456789"}, {-3, 1, "789"},  {98, 0, "89"}, {0, 3, ""},
                {-101, 2, ""},          {INT_MAX, 2, ""}}; // wraps below zero
    for (const auto& row : rows) {
        EXPECT_EQ(*row.rest != 0, file.Seek(row.offset, row.origin)) << row.offset;
        EXPECT_EQ(row.rest, ReadAll(file));
    }
    EXPECT_TRUE(file.SeekToBegin() == 1 && file.GetLength() == 100);
    EXPECT_EQ(100U, ReadAll(file).size());
    EXPECT_TRUE(file.SetSize(3) && file.SeekToEnd() && Put(file, "!"));
    EXPECT_EQ("aaa!", dir.Get("file"));
    EXPECT_EQ(0, file.SetSize(-1));
    // Beyond 4 GiB only the low 32 bits of the length count, so this is position 2.
    ASSERT_TRUE(QFile::resize("file", 0x100000005LL));
    EXPECT_TRUE(file.GetLength() == 5 && file.Seek(-3, 2) == 1);
    EXPECT_EQ("!", ReadAll(file).substr(1, 1));
}

TEST(File, TheCacheGathersWritesUntilTheyWouldFillIt)
{
    const TempDir dir;
    CQFile file;
    ASSERT_EQ(1, file.OpenWithWriteCache(L"file", Write, 100));
    // What just fits the rest is not merged with it, but a block as large as the cache is kept.
    std::string all;
    for (const auto& [length, written] :
         {std::pair(30, 0), {30, 0}, {30, 0}, {10, 90}, {150, 250}, {100, 250}}) {
        const std::string block(static_cast<std::size_t>(length),
                                static_cast<char>('a' + all.size() % 26));
        all += block;
        EXPECT_EQ(length, Put(file, block));
        EXPECT_EQ(written, file.GetLength());
        EXPECT_EQ(all.substr(0, static_cast<std::size_t>(written)), dir.Get("file"));
    }
    file.Close();
    EXPECT_EQ(all, dir.Get("file"));
}

TEST(File, CachesAreLostUnlessTheFileIsClosed)
{
    const TempDir dir;
    auto lost = std::make_unique<CQFile>();
    EXPECT_TRUE(lost->OpenWithWriteCache(L"lost", Write, 100) && Put(*lost, "abc"));
    lost.reset();
    CQFile file;
    EXPECT_TRUE(file.OpenWithWriteCache(L"first", Write, 100) && Put(file, "abc"));
    EXPECT_TRUE(file.OpenWithWriteCache(L"second", Append, 0) && Put(file, "def"));
    EXPECT_TRUE(file.OpenWithWriteCache(L"third", ReadWrite, 100) && Put(file, "ghi"));
    file.Close();
    EXPECT_EQ("first= lost= second=def third=ghi ", dir.All());
}

TEST(File, AFullDiskShowsInLargeWritesOnly)
{
    const TempDir dir;
    ASSERT_TRUE(QFile::link("/dev/full", "full"));
    CQFile file;
    ASSERT_EQ(1, file.Open(L"full", Append));
    const std::string large(20480, 'x');
    EXPECT_EQ(UINT_MAX, file.WriteData(large.data(), 20480));
    EXPECT_EQ(-1, Put(file, large));
    EXPECT_EQ(3U, file.WriteData("abc", 3));
}

TEST(FileSystem, EveryWideUnitOfAPathCounts)
{
    const TempDir dir{"\xEF\xBF\xBD", "\xF0\x9F\x98\x80"}; // in UTF-8
    dir.Put(QStringLiteral("\uFEFFmark"));
    const wchar_t noCodePoint[] = {static_cast<wchar_t>(0xFFFFFFFFU), 0}; // stands for U+FFFD
    EXPECT_TRUE(F::IsFileExist(L"\uFEFFmark") && F::IsFileExist(L".\\\U0001F600") &&
                F::IsFileExist(noCodePoint));
    EXPECT_FALSE(F::IsFileExist(L"") || F::IsFileExist(Null));
}

TEST(FileSystem, PathsAreTakenApart)
{
    EXPECT_TRUE(F::IsLocalPath("c:/x") && F::IsLocalPath("Z:/") && F::IsLocalPath("C:/") &&
                F::IsLocalPath("z:/"));
    for (const char* path : {"b:/", "B:/", "c:\\x", "c:", "cc/", "", "[:/", "{:/",
                             static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(0, F::IsLocalPath(path));
    }
    CQWString name = QString("old"), none;
    for (const CQWString* path : {&none, static_cast<CQWString*>(nullptr)}) {
        EXPECT_FALSE(F::GetFileName(path, name) || F::GetFileNameWithoutExtension(path, name));
    }
    EXPECT_EQ(L"old", Content(name));
    const struct {
        const char* path;
        const wchar_t *name, *upToLastDot; // null: refused, and emptied
        const char *upToFirstDot, *ext;    // null: none
    } names[] = {{"dir\\file.txt", L"file.txt", L"file", "dir\\file", "txt"},
                 {"dir/", Null, Null, "", nullptr},
                 {"/x/a.tar.gz", L"a.tar.gz", L"a.tar", "a", "tar.gz"},
                 {"file", L"file", L"file", "file", nullptr},
                 {"a.d/file", L"file", Null, "file", nullptr},
                 {"a\\.profile", L".profile", L"", "a\\", "profile"},
                 {"/.end.", L".end.", L".end", "", "end."}};
    for (const auto& row : names) {
        SCOPED_TRACE(row.path);
        CQWString path = QString(row.path);
        EXPECT_EQ(row.name != nullptr, F::GetFileName(&path, name));
        EXPECT_EQ(row.name ? row.name : L"", Content(name));
        EXPECT_EQ(row.upToLastDot != nullptr, F::GetFileNameWithoutExtension(&path, path));
        EXPECT_EQ(row.upToLastDot ? row.upToLastDot : L"", Content(path));
        const std::unique_ptr<QString> ext(U::Ext(row.path));
        const std::unique_ptr<QString> stem(U::FileNameWithoutExt(row.path));
        EXPECT_EQ(row.upToFirstDot, *stem);
        EXPECT_TRUE(ext ? *ext == row.ext : !row.ext);
    }
    EXPECT_EQ(4, U::ParseNextDir("c:\\a\\b", -9));
    EXPECT_EQ(3, U::ParseNextDir("/a/b", 0)) << "no separator: the last index";
    EXPECT_TRUE(U::ParseNextDir("c:/a/b", 5) == 5 && U::ParseNextDir("c:/a/b", 6) == 6);
    EXPECT_EQ(2, U::ParseNextDir("ab", 0));
}

TEST(FileSystem, LengthsAre32BitAndTakeBackslashesAsTheyAre)
{
    const TempDir dir;
    dir.Put("sub/file", "12345");
    dir.Put("back\\slash", "");
    const CQWString file = QString("sub/file");
    EXPECT_TRUE(F::GetFileLenght(file) == 5 && F::GetFileLenght(L"sub/", L"file") == 5);
    EXPECT_TRUE(F::GetFileLenght(L"back\\slash") == 0 && F::GetFileLenght(L"sub\\file") == -1 &&
                F::GetFileLenght(Null) == -1 && F::GetFileLenght(Null, file) == -1);
    ASSERT_TRUE(QFile::resize("back\\slash", 0x80000005LL));
    EXPECT_EQ(-0x7FFFFFFB, F::GetFileLenght(L"back\\slash"));
}

TEST(FileSystem, FilesAreCopiedRenamedAndDeleted)
{
    const TempDir dir{"a"};
    dir.Put("b", "other");
    EXPECT_FALSE(F::CopyFile(L"a", L"b") || F::RenameFile(L"a", L"b"));
    EXPECT_EQ(1, F::CopyFile(L".\\", L"a", L"n\\e\\w\\", L"d"));
    EXPECT_TRUE(F::CopyFile(L".\\a", L".\\c") && F::RenameFile(L".\\c", L"n\\e\\e"));
    EXPECT_EQ("a=x b=other n/ n/e/ n/e/e=x n/e/w/ n/e/w/d=x ", dir.All());
    EXPECT_TRUE(F::DeleteFile(L"n\\e\\", L"e") && F::DeleteFile(L".\\b"));
    EXPECT_EQ(-1, F::CopyFile(L"", L"a", Null, L"d"));
    EXPECT_FALSE(F::DeleteFile(L"b") || F::DeleteFile(Null, L"a") || F::CopyFile(L"", L"c") ||
                 F::CopyFile(L"a", Null) || F::RenameFile(Null, L"c") || F::RenameFile(L"a", L""));
    EXPECT_EQ("a=x n/ n/e/ n/e/w/ n/e/w/d=x ", dir.All());
}

TEST(FileSystem, DirectoriesAreMadeRenamedAndRemoved)
{
    const TempDir dir;
    EXPECT_TRUE(F::CreateDirectory(L"a\\b") && F::CreateDirectory(L"a\\b"));
    EXPECT_FALSE(F::DelDir(L"a")) << "not empty";
    EXPECT_TRUE(F::DelDir(L"a\\b") && F::RenameDir(L".\\a", L".\\z", 7));
    EXPECT_FALSE(F::DelDir(L"a") || F::RenameDir(L"a", L"b", 0) || F::RenameDir(L"z", Null, 0));
    EXPECT_EQ(1, F::MakeDir(dir.Absolute("c\\d/e/")));
    // Parts of a relative path are looked up and made inside that path.
    EXPECT_TRUE(F::MakeDir("new") == 0 && F::MakeDir("c/d") == 1);
    EXPECT_EQ("c/ c/d/ c/d/c/ c/d/c/d/ c/d/e/ z/ ", dir.All());
}

TEST(FileSystem, RecursiveDeleteNeverLeavesItsDirectory)
{
    // Links stay, and the walk stops where one keeps its directory: at B, between a and c.
    const TempDir dir{"keep", "w/sub/.hidden", "w/..\\keep/file", "w/empty/", "v/a", "v/B/file",
                      "v/c"};
    ASSERT_TRUE(QFile::link(dir.Absolute("."), "v/B/link"));
    EXPECT_EQ(1, F::RecursiveDelDir(L".\\w"));
    for (const wchar_t* path : {L"v", L"w", L"keep", L"", Null}) {
        EXPECT_EQ(0, F::RecursiveDelDir(path));
    }
    EXPECT_EQ("keep=x v/ v/B/ v/B/link@ v/c=x ", dir.All());
}

TEST(FileSystem, ListingsAreSortedByNameIgnoringCase)
{
    const TempDir dir{"b.png", "A.png", "C.PNG", "png", ".hidden.png", "d.png/in"};
    EXPECT_EQ(L"null", Listing("d.png/in", "", true));
    dir.Put(QStringLiteral("\U0001F600.txt"));
    EXPECT_EQ(L"A.png b.png C.PNG png \U0001F600.txt ", Listing(".\\d.png\\..", "", false));
    EXPECT_EQ(L"A.png b.png C.PNG d.png ", Listing("", "png", true));
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
    const TempDir dir{"file"};
    dir.Put("other", "old");
    EXPECT_EQ(-12, U::MkDir("abc"));
    EXPECT_EQ(-12, U::MkDir("file/sub")) << "only the path itself is repaired";
    EXPECT_EQ("file=x other=old ", dir.All());
    ExpectAll(1, {U::MkDir("abcd"), U::MkDir("abcd"), U::MkDir("file")});
    EXPECT_TRUE(U::EnsurePathExists("abcd\\b") == 1 && U::EnsurePathExists("other") == 1);
    EXPECT_EQ("old", dir.Get("other")) << "the last component is not repaired";
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
    EXPECT_FALSE(CQFile().GetModifiedTime(time) || F::IsValidName(L"a") ||
                 F::IsValidFileName(L"a") || F::GetFileUID(L"a", uid) ||
                 F::IsFileExist(L"a", L"b"));
    EXPECT_EQ(QTime(1, 2, 3), time);
    const char* const source = "src/CQFile";
    EXPECT_EQ((AssertReports{{"0", source, 710},
                             {"0", source, 1579},
                             {"0", source, 1541},
                             {"0", source, 1493},
                             {"0", source, 1394}}),
              recorder.Take());
}
