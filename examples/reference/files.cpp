// Examples of the reference: files, data layout, compressed files, images, system services.

#include "Require.h"

#include <CImgDecodeNotify.h>
#include <CQBImageDecode.h>
#include <CQFile.h>
#include <CQFileNameUtil.h>
#include <CQFileUtils.h>
#include <CQImageDecode.h>
#include <CQSString.h>
#include <CQSaveFile.h>
#include <CQWString.h>
#include <CQZipFile.h>
#include <CSystemCall.h>
#include <Orvo/CQPath.h>
#include <TImageMIMETypes.h>

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstring>
#include <memory>

namespace
{

CQWString In(const QTemporaryDir& directory, const char* name)
{
    return CQWString(directory.filePath(QString::fromLatin1(name)));
}

void File(const CQWString& path)
{
    //! [CQFile]
    CQFile file;
    if (file.OpenWithWriteCache(path.GetDataPtr(), 1, 4096) == 1) { // mode 1: write, emptied
        file.Write("record", 6);
        file.Close(); // writes the cache out; the destructor would drop it
    }
    REQUIRE(!file.HasFailed());
    REQUIRE(CQFile::GetFileLenght(path) == 6);
    //! [CQFile]
}

void SaveFile(const CQWString& path)
{
    //! [CQSaveFile]
    CQSaveFile file;
    file.Open(path.GetDataPtr());
    file.Write("one ", 4);
    file.Write("two", 3);
    REQUIRE(file.Commit() == 1); // the new content stands on the disk; after a 0 the old one does
    //! [CQSaveFile]
    REQUIRE(CQFile::GetFileLenght(path) == 7);
}

void FileUtils(const QString& directory)
{
    //! [CQFileUtils]
    REQUIRE(CQFileUtils::MkDir(directory + QStringLiteral("/a/b")) == 1);
    REQUIRE(CQFileUtils::RmDir(directory + QStringLiteral("/a")) == -21); // not empty
    //! [CQFileUtils]
}

void Layout()
{
    //! [CQPath]
    CQSString path;
    CQPath::GetBuddylistFilePath(path, "/data/10001");
    REQUIRE(path.Compare("/data/10001/buddylist.info") == 0);
    //! [CQPath]
}

void Compressed(const CQWString& path)
{
    //! [CQZipFile]
    QByteArray history(10000, 'x');
    auto* data = reinterpret_cast<unsigned char*>(history.data());
    int length = int(history.size());
    CQZipFile writer; // one object a file
    REQUIRE(writer.Write(&data, &length, path.GetDataPtr()) == 1);
    REQUIRE(!writer.HasFailed());

    QByteArray readBack;
    CQZipFile reader;
    REQUIRE(reader.Read(readBack, path.GetDataPtr()) == 1);
    REQUIRE(readBack == history);
    //! [CQZipFile]
}

//! [CQImageDecode]
struct Listener : CImgDecodeNotify {
    void OnImageDecoded(int, int id, int) override { m_id = id; }
    int m_id = 0;
};

void DecodeOne(CQWString path)
{
    Listener listener;
    const std::unique_ptr<CQImageDecode> decoder(CQImageDecode::NewL(enFormat_RGB32, &listener));
    REQUIRE(decoder->DecodeImgFileL(&path, 5) == 1); // decoded, and notified, when it returns
    const std::unique_ptr<QImage> image(decoder->GetImage());
    REQUIRE(listener.m_id == 5);
    REQUIRE(image->width() == 60);
}
//! [CQImageDecode]

void Fit()
{
    //! [CQBImageDecode]
    const std::unique_ptr<CQBImageDecode> decoder(CQBImageDecode::NewL(enFormat_RGB32, nullptr));
    decoder->SetScreenSize({480, 800});
    QSize fit;
    REQUIRE(decoder->GetFitScreenSize({960, 1000}, fit) == 1);
    REQUIRE(fit == QSize(480, 500));
    //! [CQBImageDecode]
}

void Names()
{
    //! [CQFileNameUtil]
    CQWString path;
    path.SetData(L"/pics/a.b.png");
    CQWString name;
    CQFileNameUtil::FindShortName(path, name);
    REQUIRE(name.Compare(L"a") == 0);
    TImageMIMETypes types;
    CQFileNameUtil::OrvoImageMIMETypesL(types);
    REQUIRE(types.GetArray()->contains(QStringLiteral("image/png")));
    //! [CQFileNameUtil]
}

void System()
{
    //! [CSystemCall]
    double value = 0;
    CQWString unit;
    CSystemCall::FileSizeExchange(2048, value, unit, false);
    REQUIRE(value == 2.0);
    REQUIRE(unit.Compare(L"KB") == 0);
    //! [CSystemCall]
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QTemporaryDir directory;
    File(In(directory, "file"));
    SaveFile(In(directory, "file"));
    FileUtils(directory.path());
    Layout();
    Compressed(In(directory, "history.z"));
    QImage(60, 40, QImage::Format_RGB32).save(directory.filePath(QStringLiteral("a.bmp")));
    DecodeOne(In(directory, "a.bmp"));
    Fit();
    Names();
    System();
}
