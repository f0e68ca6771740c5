// What the model of the compressed files does not reach.

#include "TempDir.h"
#include "TestPrelude.h"

#include <CQZipFile.h>

#include <sys/stat.h>

TEST(ZipFile, MissingFilesAreCreatedAndRefusalsChangeNothing)
{
    const TempDir dir;
    CQZipFile zip;
    zip.Close(); // nothing is open
    EXPECT_FALSE(zip.Sync());
    QByteArray block("unset");
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    unsigned char* none = nullptr;
    int length = 1, negative = -1;
    for (const wchar_t* path : {L"none/block", static_cast<const wchar_t*>(nullptr)}) {
        ExpectAll(0, {zip.Read(block, path), zip.Read(&bytes, &length, path),
                      zip.Write(&bytes, &length, path)});
        EXPECT_TRUE(zip.HasFailed());
    }
    ExpectAll(0, {zip.Read(nullptr, &length, L"new"), zip.Write(&none, &length, L"new"),
                  zip.Write(&bytes, &negative, L"new")});
    EXPECT_EQ("unset", block);
    EXPECT_EQ(1, length);
    EXPECT_EQ("", dir.All());
    EXPECT_EQ(1, zip.Read(&bytes, &length, L"a\\b")); // as the path stands
    EXPECT_EQ(0, length);
    EXPECT_EQ("a\\b= ", dir.All());
}

TEST(ZipFile, HostileFilesTakeNeitherMemoryNorTime)
{
    const TempDir dir;
    QByteArray block(30'000'000, 0);
    dir.Put("block", qCompress(block).replace(0, 4, QByteArray::fromHex("00000003")));
    CQZipFile zip;
    EXPECT_EQ(0, zip.Read(block, L"block", 29'999'999));
    EXPECT_TRUE(block.isEmpty());
    EXPECT_EQ(1, zip.Read(block, L"block", 30'000'000));
    EXPECT_EQ(QByteArray(30'000'000, 0), block);
    dir.Put("dictionary", QByteArray::fromHex("0000000378bb0000000100000000dead"));
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    int length = 7;
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    for (const wchar_t* path : {L"pipe", L"/dev/zero", L"dictionary"}) {
        EXPECT_EQ(0, zip.Read(block, path));
        EXPECT_EQ(*path == 'd', zip.Read(&bytes, &length, path));
        EXPECT_TRUE(zip.HasFailed());
        EXPECT_EQ(*path == 'd' ? 0 : 7, length);
    }
}

TEST(ZipFile, AnEarlierFileStaysOpenUntilTheObjectGoes)
{
    const TempDir dir;
    const auto openFiles = [] {
        return QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size();
    };
    const auto openBefore = openFiles();
    {
        CQZipFile zip;
        for (const wchar_t* name : {L"open", L"closed", L"open too", L"none/refused", L"last"}) {
            zip.Open(name);
            *name == L'c' ? zip.Close() : void();
        }
        EXPECT_EQ(openBefore + 3, openFiles());
    }
    EXPECT_EQ(openBefore, openFiles());
}
