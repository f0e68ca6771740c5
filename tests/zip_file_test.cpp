#include "TemporaryFiles.h"

#include <CQZipFile.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QtEndian>

#include <zlib.h>

namespace
{

int Store(CQZipFile& zip, const CQWString& path, QByteArray block)
{
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    int length = static_cast<int>(block.size());
    return zip.Write(&bytes, &length, path.GetDataPtr());
}

// The block by both ways of reading, which must agree; nothing behind it may be touched.
QByteArray Load(const CQWString& path, int boundedResult = 1)
{
    QByteArray bounded("unset");
    EXPECT_EQ(boundedResult, CQZipFile().Read(bounded, path.GetDataPtr()));
    QByteArray buffer(static_cast<int>(bounded.size()) + 1, '#');
    auto* bytes = reinterpret_cast<unsigned char*>(buffer.data());
    int length = -1;
    EXPECT_EQ(1, CQZipFile().Read(&bytes, &length, path.GetDataPtr()));
    EXPECT_EQ(bounded.size(), length);
    EXPECT_EQ(bounded + '#', buffer);
    return bounded;
}

auto OpenFiles()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

} // namespace

TEST(ZipFile, AnotherZlibReadsWhatIsWritten)
{
    const TemporaryFiles files;
    CQZipFile zip; // stays open: nothing may wait in a buffer
    for (const QByteArray& block : {QByteArray(99999, 7), QByteArray("\r\n\r"), QByteArray()}) {
        const QByteArray longer = files.Content("block");
        EXPECT_EQ(1, Store(zip, files.Path("block"), block));
        EXPECT_EQ(block, Load(files.Path("block")));

        const QByteArray stored = files.Content("block");
        EXPECT_TRUE(longer.isEmpty() || longer.size() == stored.size()); // the file is not cut
        ASSERT_EQ(block.size(), static_cast<int>(qFromBigEndian<quint32>(stored.constData())));
        QByteArray inflated(static_cast<int>(block.size()), '\0');
        auto size = static_cast<uLongf>(inflated.size());
        uncompress(reinterpret_cast<Bytef*>(inflated.data()), &size,
                   reinterpret_cast<const Bytef*>(stored.constData()) + 4,
                   static_cast<uLong>(stored.size()) - 4);
        EXPECT_EQ(block, inflated);
    }
    Store(zip, files.Path("new"), "");
    EXPECT_EQ(QByteArray(4, '\0'), files.Content("new"));
}

// The streams were made by Python's zlib.compress(). A length that is wrong within reason, or
// the tail of a longer block, does not matter.
TEST(ZipFile, ReadsAnotherZlibsStreamsAndGoesByThem)
{
    const TemporaryFiles files;
    const QByteArray stream("789c4b2a4d49a9ccc92c2ee1e54a22c404006d410fad");
    for (const QByteArray& stored : {"0000002c" + stream, "0000002c" + stream + "0d0a00789c",
                                     "00000001" + stream, "00000400" + stream}) {
        EXPECT_EQ(QByteArray("buddylist\r\n").repeated(4),
                  Load(files.Add("block", QByteArray::fromHex(stored))));
    }
    EXPECT_EQ("", Load(files.Add("block", QByteArray::fromHex("00000005789c030000000001"))));
    EXPECT_EQ("abc",
              Load(files.Add("block", QByteArray::fromHex("00002c58789c4b4c4a0600024d0127"))));
}

TEST(ZipFile, WhatDoesNotUncompressIsNoBlock)
{
    const TemporaryFiles files;
    const char* const contents[] = {
        "",
        "000000",
        "00000003",
        "00000003789c4b4c4a0600",           // cut short
        "00000003789c4b4c4a0600024d0128",   // wrong Adler-32
        "00000003ffffffffffffffffffff",     // no zlib header
        "ffffffff789c4b4c4a0600024d0127",   // claims 4 GiB
        "7fffffff789c4b4c4a0600024d0127",   // claims 2 GiB
        "00002c59789c4b4c4a0600024d0127",   // claims one byte beyond 1032 to 1
        "0000000378bb0000000100000000dead", // asks for a dictionary
    };
    for (const char* content : contents) {
        SCOPED_TRACE(content);
        EXPECT_EQ("", Load(files.Add("block", QByteArray::fromHex(content)), 0));
    }
}

TEST(ZipFile, MissingFilesAreCreatedAndRefusalsChangeNothing)
{
    const TemporaryFiles files;
    EXPECT_EQ("", Load(files.Path("a\\b"), 0)); // the path is taken as it stands
    EXPECT_TRUE(QFile::exists(files.NameOf("a\\b")));

    CQZipFile zip;
    zip.Close(); // nothing is open
    const CQWString nowhere = files.Path("none/block");
    const CQWString path = files.Path("new");
    QByteArray block("unset");
    auto* bytes = reinterpret_cast<unsigned char*>(block.data());
    unsigned char* none = nullptr;
    int length = 1;
    int negative = -1;
    EXPECT_EQ(0, zip.Read(block, nowhere.GetDataPtr()));
    EXPECT_EQ(0, zip.Read(&bytes, &length, nowhere.GetDataPtr()));
    EXPECT_EQ(0, zip.Write(&bytes, &length, nowhere.GetDataPtr()));
    EXPECT_EQ(0, zip.Read(&none, &length, path.GetDataPtr()));
    EXPECT_EQ(0, zip.Write(&none, &length, path.GetDataPtr()));
    EXPECT_EQ(0, zip.Write(&bytes, &negative, path.GetDataPtr()));
    EXPECT_EQ(0, zip.Open(nullptr));
    EXPECT_EQ("unset", block);
    EXPECT_EQ(1, length);
    EXPECT_FALSE(QFile::exists(files.NameOf("new")));
}

TEST(ZipFile, AnEarlierFileStaysOpenUntilTheObjectGoes)
{
    const TemporaryFiles files;
    const auto openBefore = OpenFiles();
    {
        CQZipFile zip;
        for (const char* name : {"open", "closed", "open too", "none/refused", "last"}) {
            zip.Open(files.Path(name).GetDataPtr());
            if (qstrcmp(name, "closed") == 0) {
                zip.Close();
            }
        }
        EXPECT_EQ(openBefore + 3, OpenFiles());
    }
    EXPECT_EQ(openBefore, OpenFiles());
}
