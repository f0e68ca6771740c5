#include "TempDir.h"

#include <CQZipFile.h>

#include <gtest/gtest.h>

#include <QtEndian>

#include <zlib.h>

namespace
{

int Store(CQZipFile& zip, const wchar_t* path, std::string block)
{
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    int length = static_cast<int>(block.size());
    return zip.Write(&bytes, &length, path);
}

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
    return bounded.toStdString();
}

auto OpenFiles()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
}

} // namespace

TEST(ZipFile, AnotherZlibReadsWhatIsWritten)
{
    const TempDir dir;
    CQZipFile zip; // stays open: nothing may wait in a buffer
    std::size_t size = 0;
    for (const std::string& block : {std::string(99999, 7), std::string("\r\n\r"), std::string()}) {
        EXPECT_EQ(1, Store(zip, L"block", block));
        EXPECT_EQ(block, Load());
        const std::string stored = dir.Get("block");
        EXPECT_EQ(size == 0 ? stored.size() : size, stored.size()) << "the file is not cut";
        size = stored.size();
        ASSERT_EQ(block.size(), qFromBigEndian<quint32>(stored.data()));
        std::string inflated(block.size(), '\0');
        auto length = static_cast<uLongf>(block.size());
        uncompress(reinterpret_cast<Bytef*>(inflated.data()), &length,
                   reinterpret_cast<const Bytef*>(stored.data()) + 4, stored.size() - 4);
        EXPECT_EQ(block, inflated);
    }
    Store(zip, L"new", "");
    EXPECT_EQ(std::string(4, '\0'), dir.Get("new"));
}

// The streams were made by Python's zlib.compress(). A length that is wrong within reason, or
// the tail of a longer block, does not matter.
TEST(ZipFile, GoesByTheStreamAndRefusesWhatDoesNotUncompress)
{
    const QByteArray text("789c4b2a4d49a9ccc92c2ee1e54a22c404006d410fad");
    const std::string lines("buddylist\r\nbuddylist\r\nbuddylist\r\nbuddylist\r\n");
    const struct {
        QByteArray stored;
        std::string block;
        int result = 1;
    } rows[] = {
        {"0000002c" + text, lines},
        {"0000002c" + text + "0d0a00789c", lines},
        {"00000001" + text, lines},
        {"00000400" + text, lines},
        {"00000005789c030000000001", ""},
        {"00002c58789c4b4c4a0600024d0127", "abc"},
        {"00002c59789c4b4c4a0600024d0127", "", 0}, // claims one byte beyond 1032 to 1
        {"7fffffff789c4b4c4a0600024d0127", "", 0},
        {"ffffffff789c4b4c4a0600024d0127", "", 0},
        {"", "", 0},
        {"000000", "", 0},
        {"00000003", "", 0},
        {"00000003789c4b4c4a0600", "", 0},           // cut short
        {"00000003789c4b4c4a0600024d0128", "", 0},   // wrong Adler-32
        {"00000003ffffffffffffffffffff", "", 0},     // no zlib header
        {"0000000378bb0000000100000000dead", "", 0}, // asks for a dictionary
    };
    const TempDir dir;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stored.data());
        dir.Put("block", QByteArray::fromHex(row.stored));
        EXPECT_EQ(row.block, Load(row.result));
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
    int length = 1;
    int negative = -1;
    EXPECT_FALSE(zip.Read(block, L"none/block") || zip.Read(&bytes, &length, L"none/block") ||
                 zip.Write(&bytes, &length, L"none/block") || zip.Open(nullptr));
    EXPECT_FALSE(zip.Read(&none, &length, L"new") || zip.Write(&none, &length, L"new") ||
                 zip.Write(&bytes, &negative, L"new"));
    EXPECT_EQ("unset", block);
    EXPECT_EQ(1, length);
    EXPECT_EQ("", dir.All());
    EXPECT_EQ(1, zip.Read(&bytes, &length, L"a\\b")); // the path is taken as it stands
    EXPECT_EQ(0, length);
    EXPECT_EQ("a\\b= ", dir.All());
}

TEST(ZipFile, AnEarlierFileStaysOpenUntilTheObjectGoes)
{
    const TempDir dir;
    const auto openBefore = OpenFiles();
    {
        CQZipFile zip;
        for (const wchar_t* name : {L"open", L"closed", L"open too", L"none/refused", L"last"}) {
            zip.Open(name);
            if (*name == L'c') {
                zip.Close();
            }
        }
        EXPECT_EQ(openBefore + 3, OpenFiles());
    }
    EXPECT_EQ(openBefore, OpenFiles());
}
