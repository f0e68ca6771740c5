#include "TempDir.h"
#include "TestPrelude.h"

#include <CQZipFile.h>

#include <QtEndian>

#include <zlib.h>

namespace
{

// The block in "block" by both ways of reading, which must agree; nothing behind it is touched.
std::string Load(int boundedResult = 1)
{
    QByteArray bounded("unset");
    EXPECT_EQ(boundedResult, CQZipFile().Read(bounded, L"block"));
    QByteArray buffer(bounded.size() + 1, '#');
    auto* bytes = reinterpret_cast<unsigned char*>(buffer.data());
    int length = -1;
    EXPECT_EQ(1, CQZipFile().Read(&bytes, &length, L"block"));
    EXPECT_EQ(bounded.size(), length);
    EXPECT_EQ(bounded + '#', buffer);
    unsigned char* noBuffer = nullptr;
    EXPECT_EQ(1, CQZipFile().Read(&noBuffer, &length, L"block"));
    EXPECT_EQ(bounded.size(), length);
    return bounded.toStdString();
}

} // namespace

TEST(ZipFile, AnotherZlibReadsWhatIsWritten)
{
    const TempDir dir;
    CQZipFile zip; // stays open: nothing may wait in a buffer
    std::size_t longest = 0;
    for (std::string block : {std::string(99999, 7), std::string("\r\n\r"), std::string()}) {
        auto* bytes = reinterpret_cast<unsigned char*>(block.data());
        int count = static_cast<int>(block.size());
        EXPECT_EQ(1, zip.Write(&bytes, &count, L"block"));
        EXPECT_EQ(block, Load());
        const std::string stored = dir.Get("block");
        longest = std::max(longest, stored.size());
        EXPECT_EQ(longest, stored.size()) << "the file is not cut";
        ASSERT_EQ(block.size(), qFromBigEndian<quint32>(stored.data()));
        std::string inflated(block.size(), '\0');
        auto length = static_cast<uLongf>(block.size());
        uncompress(reinterpret_cast<Bytef*>(inflated.data()), &length,
                   reinterpret_cast<const Bytef*>(stored.data()) + 4, stored.size() - 4);
        EXPECT_EQ(block, inflated);
    }
}

// The streams were made by Python's zlib.compress(). A length that is wrong within reason, or
// the tail of a longer block, does not matter. The last four are cut short, have a wrong checksum,
// no zlib header, and ask for a dictionary.
TEST(ZipFile, GoesByTheStreamAndRefusesWhatDoesNotUncompress)
{
    const QByteArray abc("789c4b4c4a0600024d0127");
    const struct {
        const char* block; // null: none
        QList<QByteArray> stored;
    } rows[] = {
        {"abc",
         {"00000003" + abc, "0000000d" + abc, "00002c58" + abc, "00000003" + abc + "0d0a789c"}},
        {"", {"00000000" + abc, "00000005789c030000000001"}},
        {nullptr,
         {"00002c59" + abc, "7fffffff" + abc, "ffffffff" + abc, "00000003", "000000",
          "00000003789c4b4c4a0600", "00000003789c4b4c4a0600024d0128",
          "00000003ffffffffffffffffffff", "0000000378bb0000000100000000dead"}}};
    const TempDir dir;
    for (const auto& row : rows) {
        for (const QByteArray& stored : row.stored) {
            SCOPED_TRACE(stored.data());
            dir.Put("block", QByteArray::fromHex(stored));
            EXPECT_EQ(row.block ? row.block : "", Load(row.block != nullptr));
        }
    }
}

TEST(ZipFile, MissingFilesAreCreatedAndRefusalsChangeNothing)
{
    const TempDir dir;
    CQZipFile zip;
    zip.Close(); // nothing is open
    QByteArray block("unset");
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    unsigned char* none = nullptr;
    int length = 1, negative = -1;
    for (const wchar_t* path : {L"none/block", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_FALSE(zip.Read(block, path) || zip.Read(&bytes, &length, path) ||
                     zip.Write(&bytes, &length, path));
    }
    EXPECT_FALSE(zip.Read(nullptr, &length, L"new") || zip.Write(&none, &length, L"new") ||
                 zip.Write(&bytes, &negative, L"new"));
    EXPECT_TRUE(block == "unset" && length == 1 && dir.All().empty());
    EXPECT_TRUE(zip.Read(&bytes, &length, L"a\\b") == 1 && length == 0); // as the path stands
    EXPECT_EQ("a\\b= ", dir.All());
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
