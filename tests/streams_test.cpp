// What neither the models of the streams nor the faults of the disk reach: the state of a file
// stream between its blocks, and the largest position.

#include "StringContent.h"
#include "TempDir.h"
#include "TestPrelude.h"

#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <StreamBufferSize.h>

using namespace OrvoStream;

namespace
{

const CQWString path(QStringLiteral("file"));

} // namespace

TEST(StreamBases, InputReadsZerosBehindTheLargestPosition)
{
    struct : CIStream {
        int Available() override { return 0; }
        void Close() override {}
        int LoadBuffer(char* dest, int len) override { return *dest = 'x', len; }
    } endless;
    std::string block(StreamBufferSize, '#');
    for (qint64 total = 0; total < qint64{2200000000}; total += StreamBufferSize) {
        ASSERT_EQ(StreamBufferSize, endless.Read(block.data(), StreamBufferSize));
    }
    EXPECT_EQ(std::string(StreamBufferSize, '\0'), block);
}

TEST(FileStreams, OutputIsWhatWasFlushedAndNoMore)
{
    const TempDir dir;
    dir.Put("file", "before");
    FileOutputStream(path).Write("lost", 4);
    FileOutputStream out(path);
    out.SaveBuffer(nullptr, 4);
    out.SaveBuffer("x", 0);
    out.SaveBuffer("x", -1);
    EXPECT_EQ("before", dir.Get("file")) << "nothing was flushed";
    out.Write("flushed", 7);
    out.Flush();
    out.Write("kept", 4);
    out.Close();
    EXPECT_EQ("flushed", dir.Get("file"));
    out.Flush();
    EXPECT_EQ("kept", dir.Get("file")) << "still buffered, and written anew";
    EXPECT_FALSE(out.HasFailed());
}

TEST(FileStreams, OnlyInputIsOpenedAgainWhereThatFailed)
{
    const TempDir dir{"file/"};
    FileInputStream in(path);
    char bytes[3] = {};
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    EXPECT_TRUE(in.HasFailed());
    FileOutputStream out(path);
    out.SaveBuffer("a", 1);
    ASSERT_TRUE(QDir().rmdir("file"));
    EXPECT_EQ(0, in.LoadBuffer(bytes, 2));
    out.SaveBuffer("b", 1);
    EXPECT_EQ("", dir.All());
    out.Close();
    EXPECT_TRUE(out.HasFailed());
    out.SaveBuffer("cde", 3);
    EXPECT_FALSE(out.HasFailed()) << "a file of its own";
    EXPECT_EQ(2, in.LoadBuffer(bytes, 2));
    EXPECT_EQ(0, in.Available()) << "whatever is left";
    EXPECT_EQ(1, in.LoadBuffer(bytes, 2));
    EXPECT_STREQ("ed", bytes);
    in.Close();
    EXPECT_TRUE(in.HasFailed());
    EXPECT_EQ(3, in.Read(bytes, 3)) << "from its first byte";
    EXPECT_EQ('c', bytes[0]);
    EXPECT_EQ(0, in.Read(bytes, 3));
    EXPECT_FALSE(in.HasFailed()) << "the end is none";
    EXPECT_EQ(-1, in.LoadBuffer(bytes, -1));
}

TEST(DataStreams, PassOnWhatTheInnermostStreamTells)
{
    const TempDir dir;
    FileOutputStream file(path);
    DataOutputStream inner(file);
    DataOutputStream out(static_cast<COStream&>(inner));
    EXPECT_EQ(0, out.Write(Make<CQSString>("text")));
    EXPECT_FALSE(out.HasFailed()) << "though the first position is 0";
    out << std::string(StreamBufferSize + 1, 'x').c_str();
    EXPECT_TRUE(out.HasFailed());
    out.Flush();
    EXPECT_EQ("text", dir.Get("file"));
    FileInputStream again(path);
    int length = 20;
    const std::unique_ptr<char[]> refused(DataInputStream(again).ReadBytes(length));
    EXPECT_EQ(0, length);
    EXPECT_EQ(std::string(20, '\0'), std::string(refused.get(), 20));
    inner.Close();
    file.SaveBuffer("c", 1);
    EXPECT_EQ("c", dir.Get("file"));
    // A second load is not served from where it stands.
    dir.Put("long", QByteArray(StreamBufferSize + 1, 'x'));
    FileInputStream longFile(CQWString(QStringLiteral("long")));
    DataInputStream middle(longFile);
    DataInputStream in(static_cast<CIStream&>(middle));
    std::string bytes(StreamBufferSize, '#');
    EXPECT_EQ(StreamBufferSize, in.Read(bytes.data(), StreamBufferSize));
    EXPECT_FALSE(in.HasFailed());
    EXPECT_EQ('\0', in.ReadChar());
    EXPECT_TRUE(in.HasFailed());
}
