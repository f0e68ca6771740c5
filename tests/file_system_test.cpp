#include "TempDir.h"

#include <CQFile.h>
#include <CQFileUtils.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>

namespace
{

const wchar_t* const Null = nullptr;

std::wstring Content(const CQWString& text)
{
    return text.IsEmpty() ? L"" : text.GetDataPtr();
}

std::wstring Listing(const char* dir, const char* ext, bool withDirs)
{
    CQWString path = QString(dir), extension = QString(ext);
    CQWString* names = &path;
    const int count = CQFile::GetDirFileList(path, extension, withDirs, &names);
    const std::unique_ptr<CQWString[]> owner(names);
    std::wstring result = names == nullptr ? L"null" : L"";
    for (int i = 0; i < count; ++i) {
        result += Content(names[i]) + L' ';
    }
    return result;
}

} // namespace

TEST(FileSystem, EveryWideUnitOfAPathCounts)
{
    const TempDir dir;
    dir.Put(QStringLiteral("\uFEFFmark"));
    dir.Put(QStringLiteral("\uFFFD"));
    dir.Put(QStringLiteral("\U0001F600"));
    const wchar_t noCodePoint[] = {static_cast<wchar_t>(0xFFFFFFFFU), 0}; // stands for U+FFFD
    EXPECT_TRUE(CQFile::IsFileExist(L"\uFEFFmark") && CQFile::IsFileExist(L".\\\U0001F600") &&
                CQFile::IsFileExist(noCodePoint));
    EXPECT_FALSE(CQFile::IsFileExist(L"") || CQFile::IsFileExist(Null));
}

TEST(FileSystem, PathsAreTakenApart)
{
    for (const char* path : {"c:/x", "Z:/", "C:/", "z:/a:/"}) {
        EXPECT_EQ(1, CQFile::IsLocalPath(path)) << path;
    }
    for (const char* path : {"b:/x", "B:/x", "c:\\x", "c:", "c", "", "[:/", "{:/", "\xE4:/"}) {
        EXPECT_EQ(0, CQFile::IsLocalPath(path)) << path;
    }
    EXPECT_EQ(0, CQFile::IsLocalPath(nullptr));

    CQWString name = QString("old"), none;
    for (const CQWString* path : {&none, static_cast<CQWString*>(nullptr)}) {
        EXPECT_FALSE(CQFile::GetFileName(path, name));
        EXPECT_FALSE(CQFile::GetFileNameWithoutExtension(path, name));
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
        EXPECT_EQ(row.name != nullptr, CQFile::GetFileName(&path, name));
        EXPECT_EQ(row.name ? row.name : L"", Content(name));
        EXPECT_EQ(row.upToLastDot != nullptr, CQFile::GetFileNameWithoutExtension(&path, path));
        EXPECT_EQ(row.upToLastDot ? row.upToLastDot : L"", Content(path));
        const std::unique_ptr<QString> ext(CQFileUtils::Ext(row.path));
        const std::unique_ptr<QString> stem(CQFileUtils::FileNameWithoutExt(row.path));
        EXPECT_EQ(row.upToFirstDot, *stem);
        EXPECT_TRUE(ext ? *ext == row.ext : !row.ext);
    }
    const struct {
        const char* path;
        int from, index;
    } separators[] = {{"c:/a/b", 0, 4}, {"c:/a/b", 5, 5}, {"c:/a/b", 6, 6}, {"c:\\a\\b", -9, 4},
                      {"/a/b", 0, 3},   {"/a/b/c", 0, 4}, {"ab", 0, 2}};
    for (const auto& row : separators) {
        EXPECT_EQ(row.index, CQFileUtils::ParseNextDir(row.path, row.from)) << row.path;
    }
}

TEST(FileSystem, LengthsAre32BitAndTakeBackslashesAsTheyAre)
{
    const TempDir dir;
    dir.Put("sub/file", "12345");
    dir.Put("back\\slash", "");
    EXPECT_EQ(5, CQFile::GetFileLenght(CQWString(QString("sub/file"))));
    EXPECT_EQ(5, CQFile::GetFileLenght(L"sub/", L"file"));
    EXPECT_EQ(0, CQFile::GetFileLenght(L"back\\slash"));
    for (const wchar_t* missing : {L"sub\\file", L"subfile", Null}) {
        EXPECT_EQ(-1, CQFile::GetFileLenght(missing));
    }
    EXPECT_EQ(-1, CQFile::GetFileLenght(L"sub", L"file"));
    EXPECT_EQ(-1, CQFile::GetFileLenght(Null, L"sub/file"));
    ASSERT_TRUE(QFile::resize("back\\slash", 0x80000005LL));
    EXPECT_EQ(-0x7FFFFFFB, CQFile::GetFileLenght(L"back\\slash"));
}

TEST(FileSystem, FilesAreCopiedRenamedAndDeleted)
{
    const TempDir dir;
    dir.Put("a");
    dir.Put("b", "other");
    EXPECT_FALSE(CQFile::CopyFile(L"a", L"b") || CQFile::RenameFile(L"a", L"b"));
    EXPECT_EQ(1, CQFile::CopyFile(L".\\", L"a", L"n\\e\\w\\", L"d"));
    EXPECT_EQ(1, CQFile::CopyFile(L".\\a", L".\\c"));
    EXPECT_EQ(1, CQFile::RenameFile(L".\\c", L"n\\e\\e"));
    EXPECT_EQ("a=x b=other n/ n/e/ n/e/e=x n/e/w/ n/e/w/d=x ", dir.All());
    EXPECT_EQ(1, CQFile::DeleteFile(L"n\\e\\", L"e"));
    EXPECT_EQ(1, CQFile::DeleteFile(L".\\b"));
    EXPECT_EQ(-1, CQFile::CopyFile(L"", L"a", Null, L"d"));
    EXPECT_FALSE(CQFile::DeleteFile(L"b") || CQFile::DeleteFile(Null, L"a") ||
                 CQFile::CopyFile(L"", L"c") || CQFile::CopyFile(L"a", Null) ||
                 CQFile::RenameFile(Null, L"c") || CQFile::RenameFile(L"a", L""));
    EXPECT_EQ("a=x n/ n/e/ n/e/w/ n/e/w/d=x ", dir.All());
}

TEST(FileSystem, DirectoriesAreMadeRenamedAndRemoved)
{
    const TempDir dir;
    EXPECT_TRUE(CQFile::CreateDirectory(L"a\\b") && CQFile::CreateDirectory(L"a\\b"));
    EXPECT_EQ(0, CQFile::DelDir(L"a")) << "not empty";
    EXPECT_EQ(1, CQFile::DelDir(L"a\\b"));
    EXPECT_EQ(0, CQFile::DelDir(L"a\\b"));
    EXPECT_EQ(1, CQFile::RenameDir(L".\\a", L".\\z", 7));
    EXPECT_FALSE(CQFile::RenameDir(L"a", L"b", 0) || CQFile::RenameDir(L"z", Null, 0));
    EXPECT_EQ(1, CQFile::MakeDir(dir.Absolute("c\\d/e/")));
    // Parts of a relative path are looked up and made inside that path.
    EXPECT_EQ(0, CQFile::MakeDir("new"));
    EXPECT_EQ(1, CQFile::MakeDir("c/d"));
    EXPECT_EQ("c/ c/d/ c/d/c/ c/d/c/d/ c/d/e/ z/ ", dir.All());
}

TEST(FileSystem, RecursiveDeleteNeverLeavesItsDirectory)
{
    const TempDir dir;
    for (const char* name : {"keep", "v/w/sub/.hidden", "v/w/..\\keep/file", "v/w/empty/"}) {
        dir.Put(name);
    }
    EXPECT_EQ(1, CQFile::RecursiveDelDir(L"v\\w"));
    for (const wchar_t* path : {L"v/w", L"keep", L"", Null}) {
        EXPECT_EQ(0, CQFile::RecursiveDelDir(path));
    }
    EXPECT_EQ("keep=x v/ ", dir.All());
    // Links stay, and the walk stops where one keeps its directory: at B, between a and c.
    for (const char* name : {"out/in", "v/a", "v/B/file", "v/c"}) {
        dir.Put(name);
    }
    ASSERT_TRUE(QFile::link(dir.Absolute("out"), "v/B/link"));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(L"v"));
    EXPECT_EQ("keep=x out/ out/in=x v/ v/B/ v/B/link@ v/c=x ", dir.All());
}

TEST(FileSystem, ListingsAreSortedByNameIgnoringCase)
{
    const TempDir dir;
    EXPECT_EQ(L"null", Listing("", "", true));
    for (const char* name : {"b.png", "A.png", "C.PNG", "png", ".hidden.png", "d.png/in"}) {
        dir.Put(name);
    }
    dir.Put(QStringLiteral("\U0001F600.txt"));
    EXPECT_EQ(L"A.png b.png C.PNG png \U0001F600.txt ", Listing(".\\d.png\\..", "", false));
    EXPECT_EQ(L"A.png b.png C.PNG d.png ", Listing("", "png", true));
    CQWString path;
    EXPECT_EQ(0, CQFile::GetDirFileList(path, path, true, nullptr));
}

TEST(FileUtils, RepairsRemoveOnlyWhatBlocksThePath)
{
    const struct {
        const char* path;
        int code;
        int fileCode, dirCode; // afterwards
        bool forFile, forDir;  // whether it was removed
    } rows[] = {{"file", 1, 1, 1, false, false},       {"file", -12, -12, -12, false, false},
                {"file", -11, 1, 1, true, true},       {"file", -21, 1, 1, true, true},
                {"empty", -11, 1, -11, true, false},   {"empty\\", -21, 1, 1, true, false},
                {"full", -11, -21, -11, false, false}, {"full", -21, -21, 1, false, false},
                {"none", -21, -1, -1, false, false},   {"file\\", -11, -1, 1, false, true},
                {"/", -11, -21, -11, false, false},    {"/no/", -21, -1, 1, false, false}};
    for (const auto& row : rows) {
        for (const bool file : {true, false}) {
            SCOPED_TRACE(std::to_string(row.code) + row.path + (file ? " file" : " directory"));
            const TempDir dir;
            for (const char* name : {"file", "empty/", "full/in"}) {
                dir.Put(name);
            }
            const std::string before = dir.All();
            const auto repair = file ? CQFileUtils::FileErrors : CQFileUtils::DirErrors;
            int code = row.code;
            EXPECT_EQ(file ? row.forFile : row.forDir, repair(code, row.path));
            EXPECT_EQ(file ? row.fileCode : row.dirCode, code);
            EXPECT_EQ(file ? row.forFile : row.forDir, dir.All() != before);
        }
    }
    EXPECT_EQ(-21, CQFileUtils::RmDir("/no-such-directory"));
}

TEST(FileUtils, DirectoriesAreMadeAndBlockingFilesRemoved)
{
    const TempDir dir;
    dir.Put("file");
    dir.Put("other", "old");
    EXPECT_EQ(-12, CQFileUtils::MkDir("abc"));
    EXPECT_EQ(-12, CQFileUtils::MkDir("file/sub")) << "only the path itself is repaired";
    EXPECT_EQ("file=x other=old ", dir.All());
    EXPECT_TRUE(CQFileUtils::MkDir("abcd") == 1 && CQFileUtils::MkDir("abcd") == 1);
    EXPECT_EQ(1, CQFileUtils::MkDir("file"));
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists("abcd\\b"));
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists("other"));
    EXPECT_EQ("abcd/ abcd/b/ file/ other=old ", dir.All());
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists("other/sub/name"));
    EXPECT_EQ("abcd/ abcd/b/ file/ other/ other/sub/ ", dir.All());
    EXPECT_FALSE(CQFileUtils::IsDir(".\\abcd"));
}

TEST(FileUtils, MkFileOpensAFileAndReportsOnlyOnItsDirectories)
{
    const TempDir dir;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    umask(022);
    for (const bool made : {true, false}) {
        QFile file;
        EXPECT_EQ(1, CQFileUtils::MkFile(file, "a\\b\\file.dat", onlyOwner));
        EXPECT_EQ(made ? "" : "new", file.readAll());
        EXPECT_EQ(made, file.permissions().testFlag(QFile::ReadOther)) << "set before the open";
        file.write("new");
    }
    QFile file;
    EXPECT_EQ(1, CQFileUtils::MkFile(file, "a/b", onlyOwner));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ("a/ a/b/ a/b/file.dat=newnew ", dir.All());
}
