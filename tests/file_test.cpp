#include "AssertRecorder.h"
#include "TempDir.h"

#include <CQFile.h>

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

std::string Times(int count, char c)
{
    return std::string(static_cast<std::size_t>(count), c);
}

// A socket exists and can be removed, but nobody can open it, whatever rights they have.
void PutSocket(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    ASSERT_LT(name.size(), static_cast<int>(sizeof address.sun_path));
    std::copy(name.begin(), name.end(), address.sun_path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address));
    close(descriptor);
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
    } rows[] = {{Read, 0, "old", -1, "file=old "},
                {Write, 1, "refused", 3, "a/ a/b/ a/b/c= file=new "},
                {ReadWrite, 1, "old", 3, "a/ a/b/ a/b/c= file=oldnew "},
                {Append, 1, "", 3, "a/ a/b/ a/b/c= file=oldnew "}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        const TempDir dir;
        dir.Put("file", "old");
        CQFile file;
        EXPECT_EQ(row.opened, file.Open(dir.Wide("a\\b\\c").c_str(), row.mode));
        file.Close();
        EXPECT_EQ(1, file.Open(dir.Wide("file").c_str(), row.mode));
        EXPECT_EQ(row.read, ReadAll(file));
        EXPECT_EQ(row.written, Put(file, "new"));
        EXPECT_EQ(row.written < 0 ? -1 : 0, file.Write("x", 0));
        EXPECT_EQ(row.written < 0 ? UINT_MAX : 0U, file.WriteData(nullptr, 1));
        EXPECT_EQ(-1, file.Read(nullptr, 1));
        EXPECT_EQ(-1, file.Read(&file, 0));
        EXPECT_EQ(row.after, dir.All());
    }
}

TEST(File, RefusedOpensLeaveTheObjectClosed)
{
    const TempDir dir;
    CQFile file;
    QString path = dir.Path("a\\b");
    EXPECT_EQ(0, file.Open(path, 4));
    EXPECT_EQ(dir.Path("a/b"), path) << "slashed in place all the same";
    EXPECT_EQ(0, file.Open(static_cast<const wchar_t*>(nullptr), Write));
    EXPECT_EQ(0, file.OpenWithWriteCache(nullptr, Write, 10));
    EXPECT_EQ(0, file.Open(L"", Read));
    EXPECT_EQ("", dir.All());
    EXPECT_EQ("refused", ReadAll(file));
    EXPECT_EQ(-1, Put(file, "x"));
    EXPECT_EQ(0, file.Seek(0, 0) + file.SeekToBegin() + file.SeekToEnd());
    EXPECT_EQ(0, file.GetLength() + file.SetSize(0));
    file.Close();
}

TEST(File, EightBitPathsAreUtf8)
{
    const TempDir dir;
    CQSString path;
    path.SetData(dir.Path("sub\\\xC3\xA4").toUtf8().constData()); // U+00E4
    CQFile file;
    EXPECT_EQ(1, file.Open(path, Write));
    EXPECT_TRUE(QFile::exists(dir.Path("sub/" + QString(QChar(0xE4)))));
    EXPECT_GT(path.Find('\\'), 0) << "unchanged";
    path.SetData("bare");
    ASSERT_TRUE(QDir::setCurrent(dir.Path("sub")));
    EXPECT_EQ(1, CQFile().Open(path, Write));
    EXPECT_EQ("", dir.Get("sub/bare"));
    path.Empty();
    EXPECT_EQ(0, CQFile().Open(path, Write));
}

TEST(File, AFileThatCannotBeOpenedIsReplaced)
{
    for (const Mode mode : {Read, Write, ReadWrite, Append}) {
        SCOPED_TRACE(mode);
        const TempDir dir;
        dir.Put("d/");
        ASSERT_NO_FATAL_FAILURE(PutSocket(dir.Path("s")));
        EXPECT_EQ(mode != Read, CQFile().Open(dir.Wide("s").c_str(), mode));
        EXPECT_EQ(0, CQFile().Open(dir.Wide("d").c_str(), mode)) << "directories stay";
        EXPECT_EQ(mode == Read ? "d/ " : "d/ s= ", dir.All());
        EXPECT_EQ(mode != Read, QFileInfo(dir.Path("s")).isFile());
    }
}

TEST(File, PositionsAre32Bit)
{
    const TempDir dir;
    dir.Put("file", QByteArray(90, 'a') + "0123456789");
    CQFile file;
    ASSERT_EQ(1, file.Open(dir.Wide("file").c_str(), ReadWrite));
    EXPECT_EQ(1, file.Seek(-10, 2));
    EXPECT_EQ("0123456789", ReadAll(file));
    EXPECT_EQ(1, file.Seek(-3, 1));
    EXPECT_EQ("789", ReadAll(file));
    EXPECT_EQ(1, file.Seek(98, 0));
    EXPECT_EQ("89", ReadAll(file));
    EXPECT_EQ(0, file.Seek(0, 3));
    EXPECT_EQ(0, file.Seek(-101, 2));
    EXPECT_EQ(0, file.Seek(INT_MAX, 2)) << "wraps below zero";
    EXPECT_EQ(1, file.SeekToBegin());
    EXPECT_EQ(100U, ReadAll(file).size());
    EXPECT_EQ(100, file.GetLength());
    EXPECT_EQ(1, file.SetSize(3));
    EXPECT_EQ(1, file.SeekToEnd());
    EXPECT_EQ(1, Put(file, "!"));
    EXPECT_EQ("aaa!", dir.Get("file"));
    EXPECT_EQ(0, file.SetSize(-1));
    EXPECT_EQ("", ReadAll(file)) << "at the end";
    // Beyond 4 GiB only the low 32 bits of the length count, so this is position 2.
    ASSERT_TRUE(QFile::resize(dir.Path("file"), 0x100000005LL));
    EXPECT_EQ(5, file.GetLength());
    EXPECT_EQ(1, file.Seek(-3, 2));
    EXPECT_EQ("!", ReadAll(file).substr(1, 1));
}

TEST(File, TheCacheGathersWritesUntilTheyWouldFillIt)
{
    const TempDir dir;
    CQFile file;
    ASSERT_EQ(1, file.OpenWithWriteCache(dir.Wide("file").c_str(), Write, 100));
    for (const char c : {'a', 'b', 'c'}) {
        EXPECT_EQ(30, Put(file, Times(30, c)));
    }
    EXPECT_EQ("", dir.Get("file"));
    EXPECT_EQ(0, file.GetLength());
    EXPECT_EQ(10, Put(file, Times(10, 'd')));
    const std::string ninety = Times(30, 'a') + Times(30, 'b') + Times(30, 'c');
    EXPECT_EQ(ninety, dir.Get("file")) << "what just fits is not merged";
    EXPECT_EQ(150, Put(file, Times(150, 'e')));
    const std::string direct = ninety + Times(10, 'd') + Times(150, 'e');
    EXPECT_EQ(direct, dir.Get("file"));
    EXPECT_EQ(100, Put(file, Times(100, 'f'))) << "the whole capacity is cached";
    EXPECT_EQ(direct, dir.Get("file"));
    file.Close();
    EXPECT_EQ(direct + Times(100, 'f'), dir.Get("file"));
}

TEST(File, CachesAreLostUnlessTheFileIsClosed)
{
    const TempDir dir;
    {
        CQFile file;
        ASSERT_EQ(1, file.OpenWithWriteCache(dir.Wide("lost").c_str(), Write, 100));
        EXPECT_EQ(3, Put(file, "abc"));
    }
    CQFile file;
    ASSERT_EQ(1, file.OpenWithWriteCache(dir.Wide("first").c_str(), Write, 100));
    EXPECT_EQ(3, Put(file, "abc"));
    ASSERT_EQ(1, file.OpenWithWriteCache(dir.Wide("second").c_str(), Append, 100));
    EXPECT_EQ(3, Put(file, "def"));
    file.Close();
    ASSERT_EQ(1, file.OpenWithWriteCache(dir.Wide("third").c_str(), ReadWrite, 0));
    EXPECT_EQ(3, Put(file, "ghi"));
    EXPECT_EQ("first= lost= second=def third=ghi ", dir.All());
}

TEST(File, AFullDiskShowsInLargeWritesOnly)
{
    const TempDir dir;
    ASSERT_TRUE(QFile::link("/dev/full", dir.Path("full")));
    CQFile file;
    ASSERT_EQ(1, file.Open(dir.Wide("full").c_str(), Append));
    EXPECT_EQ(UINT_MAX, file.WriteData(Times(20480, 'x').data(), 20480));
    EXPECT_EQ(-1, Put(file, Times(20480, 'x')));
    EXPECT_EQ(3U, file.WriteData("abc", 3));
}

TEST(File, ModificationTimeIsNotSupported)
{
    AssertRecorder recorder;
    QTime time(1, 2, 3);
    EXPECT_EQ(0, CQFile().GetModifiedTime(time));
    EXPECT_EQ(QTime(1, 2, 3), time);
    ASSERT_EQ(1U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[0].Is("0", "src/CQFile", 710));
}
