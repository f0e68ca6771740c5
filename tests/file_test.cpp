#include "AssertRecorder.h"
#include "TempDir.h"

#include <CQFile.h>
#include <CQWString.h>

#include <QTime>

#include <gtest/gtest.h>

#include <climits>
#include <sys/socket.h>
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

} // namespace

TEST(File, ModesDecideWhatExistsAndWhatIsAllowed)
{
    const struct {
        Mode mode;
        int opened;       // with the file missing
        const char* read; // from an existing one
        int written;
        const char* after;
    } rows[] = {{Read, 0, "old", -1, "\xC3\xA4=old "}, // U+00E4
                {Write, 1, "refused", 3, "a/ a/b/ a/b/c= \xC3\xA4=new "},
                {ReadWrite, 1, "old", 3, "a/ a/b/ a/b/c= \xC3\xA4=oldnew "},
                {Append, 1, "", 3, "a/ a/b/ a/b/c= \xC3\xA4=oldnew "}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        const TempDir dir;
        dir.Put(QChar(0xE4), "old");
        CQFile file;
        EXPECT_EQ(row.opened, file.Open(CQWString(dir.Absolute("a\\b\\c")), row.mode));
        file.Close();
        CQSString utf8;
        EXPECT_EQ(0, file.Open(utf8, row.mode));
        utf8.SetData(".\\\xC3\xA4");
        EXPECT_EQ(1, file.Open(utf8, row.mode));
        EXPECT_STREQ(".\\\xC3\xA4", utf8) << "unchanged";
        EXPECT_EQ(row.read, ReadAll(file));
        EXPECT_EQ(row.written, Put(file, "new"));
        EXPECT_EQ(row.written < 0 ? -1 : 0, file.Write("x", 0));
        EXPECT_EQ(row.written < 0 ? UINT_MAX : 0U, file.WriteData(nullptr, 1));
        EXPECT_TRUE(file.Read(nullptr, 1) == -1 && file.Read(&file, 0) == -1);
        EXPECT_EQ(row.after, dir.All());
    }
}

TEST(File, RefusedOpensLeaveTheObjectClosed)
{
    const TempDir dir;
    CQFile file;
    QString path("a\\b");
    const wchar_t* const none = nullptr;
    EXPECT_FALSE(file.Open(path, 4) || file.Open(none, Write) || file.Open(L"", Read) ||
                 file.OpenWithWriteCache(none, Write, 10));
    EXPECT_EQ("a/b", path) << "slashed in place all the same";
    EXPECT_EQ("", dir.All());
    EXPECT_EQ("refused", ReadAll(file));
    EXPECT_EQ(-1, Put(file, "x"));
    EXPECT_FALSE(file.Seek(0, 0) || file.SeekToBegin() || file.SeekToEnd() || file.SetSize(0));
    EXPECT_EQ(0, file.GetLength());
    file.Close();
}

TEST(File, AFileThatCannotBeOpenedIsReplaced)
{
    // A socket exists and can be removed, but nobody can open it, whatever rights they have.
    const sockaddr_un address{AF_UNIX, "socket"};
    for (const Mode mode : {Read, Write, ReadWrite, Append}) {
        SCOPED_TRACE(mode);
        const TempDir dir;
        dir.Put("d/");
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
    EXPECT_EQ(1, file.SeekToBegin());
    EXPECT_EQ(100, file.GetLength());
    EXPECT_EQ(100U, ReadAll(file).size());
    EXPECT_TRUE(file.SetSize(3) && file.SeekToEnd() && Put(file, "!"));
    EXPECT_EQ("aaa!", dir.Get("file"));
    EXPECT_EQ(0, file.SetSize(-1));
    // Beyond 4 GiB only the low 32 bits of the length count, so this is position 2.
    ASSERT_TRUE(QFile::resize("file", 0x100000005LL));
    EXPECT_EQ(5, file.GetLength());
    EXPECT_EQ(1, file.Seek(-3, 2));
    EXPECT_EQ("!", ReadAll(file).substr(1, 1));
}

TEST(File, TheCacheGathersWritesUntilTheyWouldFillIt)
{
    const TempDir dir;
    CQFile file;
    ASSERT_EQ(1, file.OpenWithWriteCache(L"file", Write, 100));
    const struct {
        char fill;
        int length;
        int lengthOfFile; // afterwards
    } rows[] = {{'a', 30, 0},    {'b', 30, 0},
                {'c', 30, 0},    {'d', 10, 90},    // what just fits is not merged
                {'e', 150, 250}, {'f', 100, 250}}; // the whole capacity is cached
    std::string all;
    for (const auto& row : rows) {
        const std::string block(static_cast<std::size_t>(row.length), row.fill);
        all += block;
        EXPECT_EQ(row.length, Put(file, block));
        EXPECT_EQ(row.lengthOfFile, file.GetLength());
        EXPECT_EQ(all.substr(0, static_cast<std::size_t>(row.lengthOfFile)), dir.Get("file"));
    }
    file.Close();
    EXPECT_EQ(all, dir.Get("file"));
}

TEST(File, CachesAreLostUnlessTheFileIsClosed)
{
    const TempDir dir;
    {
        CQFile file;
        EXPECT_TRUE(file.OpenWithWriteCache(L"lost", Write, 100) && Put(file, "abc"));
    }
    CQFile file;
    EXPECT_TRUE(file.OpenWithWriteCache(L"first", Write, 100) && Put(file, "abc"));
    EXPECT_TRUE(file.OpenWithWriteCache(L"second", Append, 100) && Put(file, "def"));
    file.Close();
    EXPECT_TRUE(file.OpenWithWriteCache(L"third", ReadWrite, 0) && Put(file, "ghi"));
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

TEST(File, UnsupportedOperationsAssertOnTheirLines)
{
    AssertRecorder recorder;
    CQFileUID uid;
    QTime time(1, 2, 3);
    EXPECT_FALSE(CQFile().GetModifiedTime(time) || CQFile::IsValidName(L"a") ||
                 CQFile::IsValidFileName(L"a") || CQFile::GetFileUID(L"a", uid) ||
                 CQFile::IsFileExist(L"a", L"b"));
    EXPECT_EQ(QTime(1, 2, 3), time);
    ASSERT_EQ(5U, recorder.Reports().size());
    std::size_t i = 0;
    for (const int line : {710, 1579, 1541, 1493, 1394}) {
        EXPECT_TRUE(recorder.Reports()[i++].Is("0", "src/CQFile", line)) << line;
    }
}
