#include "TempDir.h"

#include <FileInputStream.h>
#include <FileOutputStream.h>

#include <gtest/gtest.h>

using OrvoStream::FileInputStream;
using OrvoStream::FileOutputStream;

namespace
{

void Put(OrvoStream::COStream& out, const std::string& text)
{
    out.Write(text.data(), static_cast<int>(text.size()));
}

// Reads are all-or-nothing.
std::string Take(OrvoStream::CIStream& in, int count)
{
    std::string bytes(static_cast<std::size_t>(count), '?');
    return in.Read(bytes.data(), count) == count ? bytes : "refused";
}

} // namespace

TEST(FileStreams, OutputIsWhatWasFlushedAndNoMore)
{
    const TempDir dir;
    dir.Put("file", "what was there before");
    {
        FileOutputStream out(CQWString(dir.Path("file")));
        Put(out, "lost");
        out.Close();
        out.SaveBuffer(nullptr, 4);
        out.SaveBuffer("x", 0);
        out.SaveBuffer("x", -1);
    }
    EXPECT_EQ("what was there before", dir.Get("file")) << "nothing was flushed";
    {
        FileOutputStream out(CQWString(dir.Path("file")));
        Put(out, "flushed");
        out.Flush();
        Put(out, "lost");
        out.Close();
        EXPECT_EQ("flushed", dir.Get("file"));
        Put(out, " so now it is not");
        out.Flush();
    }
    EXPECT_EQ("lost so now it is not", dir.Get("file")) << "still buffered, and written anew";
}

TEST(FileStreams, AnOutputThatDoesNotOpenIsNotTriedAgainBeforeClose)
{
    const TempDir dir;
    dir.Put("blocked/");
    FileOutputStream out(CQWString(dir.Path("blocked")));
    out.SaveBuffer("a", 1);
    ASSERT_TRUE(QDir().rmdir(dir.Path("blocked")));
    out.SaveBuffer("b", 1);
    EXPECT_EQ("", dir.All());
    out.Close();
    out.SaveBuffer("c", 1);
    EXPECT_EQ("blocked=c ", dir.All());
}

TEST(FileStreams, InputReadsTheWholeFileAndTellsNothingOfItsLength)
{
    const TempDir dir;
    dir.Put("file", "0123456789abcdefghijABCDEFGHIJ");
    FileInputStream in(CQWString(dir.Path("file")));
    EXPECT_EQ("0123456789", Take(in, 10));
    EXPECT_EQ(0, in.Available()) << "also while 20 bytes are left";
    EXPECT_EQ("abcdefghijABCDEFGHIJ", Take(in, 20));
    EXPECT_EQ("refused", Take(in, 1));
}

TEST(FileStreams, InputIsOpenedWhenItIsLoadedAndTriedAgain)
{
    const TempDir dir;
    FileInputStream in(CQWString(dir.Path("new/file")));
    char bytes[2] = {};
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    EXPECT_EQ("", dir.All());
    dir.Put("new/file", "abc");
    EXPECT_EQ(2, in.LoadBuffer(bytes, 2));
    EXPECT_EQ(1, in.LoadBuffer(bytes, 2));
    EXPECT_EQ('c', bytes[0]);
    in.Close();
    EXPECT_EQ(2, in.LoadBuffer(bytes, 2));
    EXPECT_EQ('a', bytes[0]) << "reopened";
    EXPECT_EQ(-1, in.LoadBuffer(bytes, -1));
    FileInputStream unset{CQWString()};
    EXPECT_EQ("refused", Take(unset, 1));
}
