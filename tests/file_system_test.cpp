#include "AssertRecorder.h"
#include "TempDir.h"

#include <CQFile.h>
#include <CQFileUtils.h>
#include <CQWString.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sys/stat.h>

namespace
{

CQWString Text(const std::wstring& text)
{
    CQWString result;
    result.SetData(text.c_str());
    return result;
}

std::wstring Content(const CQWString& text)
{
    return text.IsEmpty() ? L"" : text.GetDataPtr();
}

// A path in the old platform's form.
std::wstring Old(const TempDir& dir, const wchar_t* name = L"")
{
    std::wstring path = dir.Wide() + name;
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

std::wstring Listing(const TempDir& dir, const wchar_t* ext, bool withDirs)
{
    CQWString path = Text(Old(dir));
    CQWString extension = Text(ext);
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
    const wchar_t noCodePoint[] = {static_cast<wchar_t>(0xFFFFFFFFU), 0};
    dir.Put(QChar(0xFEFF) + QString("mark"));
    dir.Put(QChar(0xFFFD));
    dir.Put(QString::fromUtf8("\xF0\x9F\x98\x80")); // U+1F600
    EXPECT_EQ(1, CQFile::IsFileExist(Old(dir, L"\U0001F600").c_str()));
    ASSERT_TRUE(QDir::setCurrent(dir.Path()));
    EXPECT_EQ(1, CQFile::IsFileExist(L"\uFEFFmark"));
    EXPECT_EQ(1, CQFile::IsFileExist(noCodePoint)) << "stands for U+FFFD";
    EXPECT_EQ(0, CQFile::IsFileExist(L""));
    EXPECT_EQ(0, CQFile::IsFileExist(nullptr));
}

TEST(FileSystem, LocalPathsBeginWithADriveButNotAOrB)
{
    for (const char* path : {"c:/x", "Z:/", "C:/", "z:/a:/"}) {
        EXPECT_EQ(1, CQFile::IsLocalPath(path)) << path;
    }
    for (const char* path : {"a:/x", "B:/x", "c:\\x", "c:", "c", "", "[:/", "\xE4:/"}) {
        EXPECT_EQ(0, CQFile::IsLocalPath(path)) << path;
    }
    EXPECT_EQ(0, CQFile::IsLocalPath(nullptr));
}

TEST(FileSystem, NamesAreCutFromPaths)
{
    const struct {
        const wchar_t *path, *name, *stem; // null: refused, and emptied
    } rows[] = {{L"dir\\file.txt", L"file.txt", L"file"}, {L"dir/", nullptr, nullptr},
                {L"/a/b.tar.gz", L"b.tar.gz", L"b.tar"},  {L"file", L"file", L"file"},
                {L"a.d\\file", L"file", nullptr},         {L"a/.profile", L".profile", L""}};
    for (const auto& row : rows) {
        CQWString path = Text(row.path);
        CQWString name = Text(L"old");
        EXPECT_EQ(row.name != nullptr, CQFile::GetFileName(&path, name)) << row.path;
        EXPECT_EQ(row.name ? row.name : L"", Content(name));
        EXPECT_EQ(row.stem != nullptr, CQFile::GetFileNameWithoutExtension(&path, path));
        EXPECT_EQ(row.stem ? row.stem : L"", Content(path));
    }
    CQWString name = Text(L"old");
    const CQWString empty;
    for (const CQWString* path : {&empty, static_cast<const CQWString*>(nullptr)}) {
        EXPECT_EQ(0, CQFile::GetFileName(path, name));
        EXPECT_EQ(0, CQFile::GetFileNameWithoutExtension(path, name));
    }
    EXPECT_EQ(L"old", Content(name));
}

TEST(FileSystem, LengthsAre32BitAndTakeBackslashesAsTheyAre)
{
    const TempDir dir;
    dir.Put("sub/file", "12345");
    dir.Put("back\\slash", "");
    EXPECT_EQ(5, CQFile::GetFileLenght(CQWString(dir.Path("sub/file"))));
    EXPECT_EQ(5, CQFile::GetFileLenght(dir.Wide("sub/").c_str(), L"file"));
    EXPECT_EQ(-1, CQFile::GetFileLenght(dir.Wide("sub").c_str(), L"file"));
    EXPECT_EQ(-1, CQFile::GetFileLenght(dir.Wide("sub\\file").c_str()));
    EXPECT_EQ(0, CQFile::GetFileLenght(dir.Wide("back\\slash").c_str()));
    EXPECT_EQ(-1, CQFile::GetFileLenght(nullptr, L"file"));
    EXPECT_EQ(-1, CQFile::GetFileLenght(CQWString()));
    ASSERT_TRUE(QFile::resize(dir.Path("back\\slash"), 0x80000005LL));
    EXPECT_EQ(-0x7FFFFFFB, CQFile::GetFileLenght(dir.Wide("back\\slash").c_str()));
}

TEST(FileSystem, FilesAreCopiedRenamedAndDeleted)
{
    const TempDir dir;
    dir.Put("a");
    dir.Put("b", "other");
    const std::wstring root = Old(dir), a = Old(dir, L"a"), b = Old(dir, L"b"), c = Old(dir, L"c");
    EXPECT_EQ(0, CQFile::CopyFile(a.c_str(), b.c_str()));
    EXPECT_EQ(0, CQFile::RenameFile(a.c_str(), b.c_str()));
    EXPECT_EQ(1, CQFile::CopyFile(root.c_str(), L"a", (root + L"n\\e\\w\\").c_str(), L"d"));
    EXPECT_EQ(1, CQFile::CopyFile(a.c_str(), c.c_str()));
    EXPECT_EQ(1, CQFile::RenameFile(c.c_str(), Old(dir, L"n\\e\\e").c_str()));
    EXPECT_EQ("a=x b=other n/ n/e/ n/e/e=x n/e/w/ n/e/w/d=x ", dir.All());
    EXPECT_EQ(1, CQFile::DeleteFile(Old(dir, L"n\\e\\").c_str(), L"e"));
    EXPECT_EQ(1, CQFile::DeleteFile(b.c_str()));
    EXPECT_EQ(0, CQFile::DeleteFile(b.c_str()));
    EXPECT_EQ(0, CQFile::CopyFile(L"", a.c_str()));
    EXPECT_EQ(0, CQFile::CopyFile(a.c_str(), nullptr));
    EXPECT_EQ(-1, CQFile::CopyFile(root.c_str(), L"a", nullptr, L"d"));
    EXPECT_EQ(0, CQFile::RenameFile(nullptr, a.c_str()));
    EXPECT_EQ(0, CQFile::RenameFile(a.c_str(), L""));
    ASSERT_TRUE(QDir::setCurrent(dir.Path()));
    EXPECT_EQ(0, CQFile::DeleteFile(nullptr, L"a"));
    EXPECT_EQ("a=x n/ n/e/ n/e/w/ n/e/w/d=x ", dir.All());
}

TEST(FileSystem, DirectoriesAreMadeRenamedAndRemoved)
{
    const TempDir dir;
    const std::wstring a = Old(dir, L"a"), b = Old(dir, L"a\\b"), z = Old(dir, L"z");
    EXPECT_EQ(1, CQFile::CreateDirectory(b.c_str()));
    EXPECT_EQ(1, CQFile::CreateDirectory(b.c_str()));
    EXPECT_EQ(0, CQFile::DelDir(a.c_str())) << "not empty";
    EXPECT_EQ(1, CQFile::DelDir(b.c_str()));
    EXPECT_EQ(0, CQFile::DelDir(b.c_str()));
    EXPECT_EQ(1, CQFile::RenameDir(a.c_str(), z.c_str(), 7));
    EXPECT_EQ(0, CQFile::RenameDir(a.c_str(), b.c_str(), 0));
    EXPECT_EQ(0, CQFile::RenameDir(z.c_str(), nullptr, 0));
    EXPECT_EQ(1, CQFile::MakeDir(dir.Path("c\\d/e/")));
    EXPECT_EQ("c/ c/d/ c/d/e/ z/ ", dir.All());
    // Parts of a relative path are looked up and made inside that path.
    ASSERT_TRUE(QDir::setCurrent(dir.Path()));
    EXPECT_EQ(0, CQFile::MakeDir("new"));
    EXPECT_EQ(1, CQFile::MakeDir("c/d"));
    EXPECT_EQ("c/ c/d/ c/d/c/ c/d/c/d/ c/d/e/ z/ ", dir.All());
}

TEST(FileSystem, RecursiveDeleteNeverLeavesItsDirectory)
{
    const TempDir dir;
    for (const char* name : {"out/keep", "v/sub/.hidden", "v/..\\out/file", "v/empty/"}) {
        dir.Put(name);
    }
    EXPECT_EQ(1, CQFile::RecursiveDelDir(Old(dir, L"v").c_str()));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(Old(dir, L"v").c_str()));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(Old(dir, L"out\\keep").c_str()));
    ASSERT_TRUE(QDir::setCurrent(dir.Path("out")));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(L""));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(nullptr));
    EXPECT_EQ("out/ out/keep=x ", dir.All());
    // Links stay, and the walk stops where one keeps its directory: at B, between a and c.
    for (const char* name : {"v/a", "v/B/file", "v/c"}) {
        dir.Put(name);
    }
    ASSERT_TRUE(QFile::link(dir.Path("out"), dir.Path("v/B/link")));
    EXPECT_EQ(0, CQFile::RecursiveDelDir(Old(dir, L"v").c_str()));
    EXPECT_EQ("out/ out/keep=x v/ v/B/ v/B/link@ v/c=x ", dir.All());
}

TEST(FileSystem, ListingsAreSortedByNameIgnoringCase)
{
    const TempDir dir;
    EXPECT_EQ(L"null", Listing(dir, L"", true));
    for (const char* name : {"b.png", "A.png", "C.PNG", "png", ".hidden.png", "d.png/in"}) {
        dir.Put(name);
    }
    dir.Put(QString::fromUtf8("\xF0\x9F\x98\x80.txt")); // U+1F600
    EXPECT_EQ(L"A.png b.png C.PNG png \U0001F600.txt ", Listing(dir, L"", false));
    EXPECT_EQ(L"A.png b.png C.PNG d.png ", Listing(dir, L"png", true));
    EXPECT_EQ(L"null", Listing(dir, L"none", true));
    CQWString path = Text(Old(dir));
    EXPECT_EQ(0, CQFile::GetDirFileList(path, path, true, nullptr));
}

TEST(FileSystem, UnsupportedOperationsAssertOnTheirLines)
{
    AssertRecorder recorder;
    CQFileUID uid;
    EXPECT_EQ(0, CQFile::IsValidName(L"a"));
    EXPECT_EQ(0, CQFile::IsValidFileName(L"a"));
    EXPECT_EQ(0, CQFile::GetFileUID(L"a", uid));
    EXPECT_EQ(0, CQFile::IsFileExist(L"a", L"b"));
    constexpr int lines[] = {1579, 1541, 1493, 1394};
    const auto reports = recorder.Take();
    ASSERT_EQ(4U, reports.size());
    for (std::size_t i = 0; i < reports.size(); ++i) {
        EXPECT_TRUE(reports[i].Is("0", "src/CQFile", lines[i])) << reports[i];
    }
}

TEST(FileUtils, PathsAreTakenApart)
{
    const struct {
        const char *path, *stem, *ext; // null: none
    } names[] = {{"/x/a.tar.gz", "a", "tar.gz"}, {"/x/readme", "readme", nullptr},
                 {"/.profile", "", "profile"},   {"/x.y/z", "z", nullptr},
                 {"a\\b.c", "a\\b", "c"},        {"end.", "end", ""}};
    for (const auto& row : names) {
        const std::unique_ptr<QString> ext(CQFileUtils::Ext(row.path));
        const std::unique_ptr<QString> stem(CQFileUtils::FileNameWithoutExt(row.path));
        EXPECT_EQ(row.stem, stem->toStdString());
        ASSERT_EQ(row.ext != nullptr, ext != nullptr) << row.path;
        EXPECT_TRUE(!ext || *ext == row.ext) << row.path;
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
                {"none", -21, -1, -1, false, false},   {"file\\", -11, -1, 1, false, true}};
    for (const auto& row : rows) {
        for (const bool file : {true, false}) {
            SCOPED_TRACE(std::to_string(row.code) + row.path + (file ? " file" : " directory"));
            const TempDir dir;
            for (const char* name : {"file", "empty/", "full/in"}) {
                dir.Put(name);
            }
            const std::string before = dir.All();
            const bool expected = file ? row.forFile : row.forDir;
            int code = row.code;
            EXPECT_EQ(expected, (file ? CQFileUtils::FileErrors
                                      : CQFileUtils::DirErrors)(code, dir.Path(row.path)));
            EXPECT_EQ(file ? row.fileCode : row.dirCode, code);
            EXPECT_EQ(expected, dir.All() != before);
        }
    }
    // What lies directly in the root directory is never repaired, and callers go on.
    int code = -21;
    EXPECT_FALSE(CQFileUtils::DirErrors(code, "/orvo-no-such-file/"));
    EXPECT_EQ(1, code);
    EXPECT_EQ(-21, CQFileUtils::RmDir("/orvo-no-such-directory"));
}

TEST(FileUtils, DirectoriesAreMadeAndBlockingFilesRemoved)
{
    const TempDir dir;
    dir.Put("file");
    dir.Put("other", "old");
    ASSERT_TRUE(QDir::setCurrent(dir.Path()));
    EXPECT_EQ(-12, CQFileUtils::MkDir("abc"));
    EXPECT_EQ(1, CQFileUtils::MkDir("abcd"));
    EXPECT_EQ(1, CQFileUtils::MkDir("abcd"));
    EXPECT_EQ(-12, CQFileUtils::MkDir(dir.Path("file/sub"))) << "only the path itself is repaired";
    EXPECT_EQ("abcd/ file=x other=old ", dir.All());
    EXPECT_EQ(1, CQFileUtils::MkDir(dir.Path("file")));
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists(dir.Path("a\\b")));
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists(dir.Path("other")));
    EXPECT_EQ("a/ a/b/ abcd/ file/ other=old ", dir.All());
    EXPECT_EQ(1, CQFileUtils::EnsurePathExists(dir.Path("other/sub/name")));
    EXPECT_EQ("a/ a/b/ abcd/ file/ other/ other/sub/ ", dir.All());
    EXPECT_FALSE(CQFileUtils::IsDir("\\abcd") || CQFileUtils::IsDir(dir.Path("a\\b")));
}

TEST(FileUtils, MkFileOpensAFileAndReportsOnlyOnItsDirectories)
{
    const TempDir dir;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    umask(022);
    QFile file;
    EXPECT_EQ(1, CQFileUtils::MkFile(file, dir.Path("a\\b\\file.dat"), onlyOwner));
    EXPECT_EQ(3, file.write("new"));
    EXPECT_TRUE(file.permissions().testFlag(QFile::ReadOther)) << "set before it was there";
    file.close();
    EXPECT_EQ(1, CQFileUtils::MkFile(file, dir.Path("a/b/file.dat"), onlyOwner));
    EXPECT_EQ("new", file.readAll().toStdString());
    EXPECT_FALSE(file.permissions().testFlag(QFile::ReadOther));
    file.close();
    EXPECT_EQ(1, CQFileUtils::MkFile(file, dir.Path("a/b"), onlyOwner));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ("a/ a/b/ a/b/file.dat=new ", dir.All());
}
