#include "AssertRecorder.h"
#include "StringContent.h"
#include "TempDir.h"
#include "TestPrelude.h"

#include <CImgDecodeNotify.h>
#include <CQBImageDecode.h>
#include <CQFileNameUtil.h>
#include <CQImageDecode.h>
#include <TImageMIMETypes.h>

#include <QBuffer>
#include <QImage>
#include <QtEndian>

#include <malloc.h>
#include <sys/stat.h>

namespace
{

using Formats = std::pair<int, int>;
using ImagePtr = std::unique_ptr<QImage>;
using Notifications = std::vector<std::array<int, 3>>; // status, id, alpha

QByteArray Encoded(const QImage& image, const char* format)
{
    QBuffer buffer;
    image.save(&buffer, format);
    return buffer.data();
}

QByteArray Png(QImage::Format format, int width = 8, int height = 6)
{
    QImage image(width, height, format);
    image.fill(Qt::red);
    return Encoded(image, "PNG");
}

// An icon that announces 16 x 16 pixels, over any content.
QByteArray Icon(const QByteArray& content)
{
    const qint32 place[] = {qToLittleEndian(qint32(content.size())), qToLittleEndian(22)};
    return QByteArray("\0\0\1\0\1\0\x10\x10\0\0\1\0\x20\0", 14) +
           QByteArray(reinterpret_cast<const char*>(place), 8) + content;
}

struct Decoders : testing::Test, CImgDecodeNotify {
    void OnImageDecoded(int status, int id, int hasAlpha) override
    {
        m_notifications.push_back({status, id, hasAlpha});
        std::exchange(onDecoded, [] {})();
    }
    // Returns what was recorded since the last call and starts over.
    Notifications Take() { return std::exchange(m_notifications, {}); }

    // Takes both images of the plain decoder, behind an operation that gave the result, and
    // returns their formats; -1 for none.
    Formats TakeFormats(int result = 1)
    {
        QImage* images[2] = {};
        EXPECT_EQ(1, result);
        EXPECT_EQ(1, plain->GetImageFromPng(&images[0], &images[1]));
        const ImagePtr image(images[0]), mask(images[1]);
        return {image ? image->format() : -1, mask ? mask->format() : -1};
    }

    CQWString Add(const char* name, const QByteArray& content) const
    {
        files.Put(name, content);
        return files.Absolute(name);
    }

    TempDir files;
    CQWString dir = files.Absolute("./"), alphaName = Wide(L"alpha"), none;
    CQWString opaquePath = Add("opaque", Png(QImage::Format_RGB32));
    CQWString alphaPath = Add("alpha", Png(QImage::Format_ARGB32));
    CQSString alphaBytes = Make<CQSString>(files.Get("alpha"));
    CQSString anyFormat = Make<CQSString>("image/bmp");
    CQWString placeholder = Wide(L"NoPic.BMP");
    Notifications m_notifications;
    std::function<void()> onDecoded = [] {};
    std::unique_ptr<CQImageDecode> plain{CQImageDecode::NewL(enFormat_RGB16, this)};
    // Deletes no image that it has handed out.
    std::unique_ptr<CQBImageDecode> fitting{CQBImageDecode::NewL(enFormat_RGB16, this)};
};

} // namespace

TEST_F(Decoders, RefusalsKeepTheImagesAndSayNothing)
{
    plain->DecodePngFileL(&opaquePath, 1);
    EXPECT_EQ(1u, Take().size());
    CQSString nothing;
    QImage* image = nullptr;
    for (CQWString* text : {static_cast<CQWString*>(nullptr), &none}) {
        ExpectAll(
            0, {plain->DecodeImgFileL(text, &alphaName, 2), plain->DecodeImgFileL(&dir, text, 2),
                plain->DecodePngFileL(text, &alphaName, 2), plain->DecodePngFileL(&dir, text, 2)});
    }
    for (CQWString* text : {static_cast<CQWString*>(nullptr), &none, &placeholder}) {
        ExpectAll(0,
                  {plain->DecodeImgFileL(text, 2), plain->DecodePngFileL(text, 2),
                   fitting->DecodeImgFile(text, 2, true), fitting->DecodeImgFileL(text, 2, false)});
    }
    EXPECT_EQ(0, plain->DecodePngBufL(nothing, 2) | plain->DecodeImgBufL(nothing, anyFormat, 2) |
                     plain->DecodeImgBufL(alphaBytes, nothing, 2));
    EXPECT_EQ(0, plain->GetImageFromPng(nullptr, &image) | plain->GetImageFromPng(&image, nullptr));
    EXPECT_EACH(Take().empty(), plain->GetFileName() == opaquePath);
    EXPECT_EQ(Formats(enFormat_RGB16, enFormat_Indexed8), TakeFormats());
    // Only the whole path is the placeholder.
    CQWString path = Add("NoPic.BMP", Png(QImage::Format_RGB32));
    EXPECT_EQ(1, plain->DecodeImgFileL(&path, 3) & plain->DecodePngFileL(&dir, &placeholder, 3));
}

TEST_F(Decoders, AMissingFileIsANullImageAndIsAnnounced)
{
    CQWString missing = Wide(L"missing");
    EXPECT_TRUE(CQFileNameUtil::IsImageFile(alphaPath)); // by content: it has no extension
    EXPECT_FALSE(CQFileNameUtil::IsImageFile(Add("x.png", "no picture")));
    // Only the two-name form of the plain decode asserts.
    AssertRecorder assertions;
    EXPECT_EQ(1, plain->DecodePngFileL(&dir, &missing, 6) & plain->DecodeImgFileL(&missing, 5));
    EXPECT_EQ(AssertReports(), assertions.Take());
    EXPECT_EQ(1, plain->DecodeImgFileL(&dir, &missing, 7));
    EXPECT_EQ((AssertReports{{"0", "src/PrivateImageDecode_win32", 164}}), assertions.Take());
    EXPECT_EQ((Notifications{{1, 6, 0}, {1, 5, 0}, {1, 7, 0}}), Take());
    EXPECT_EQ(Formats(0, 0), TakeFormats());
}

// 24 million pixels are within the limit with 32 bits each, and not with 64.
TEST_F(Decoders, TheDepthOfTheDisplayModeCounts)
{
    CQWString path = Add("large", Png(QImage::Format_Mono, 6000, 4000));
    for (const auto mode : {QImage::Format_Mono, QImage::Format_RGBA64}) {
        plain.reset(CQImageDecode::NewL(mode, nullptr));
        EXPECT_EQ(mode == QImage::Format_Mono ? mode : 0,
                  TakeFormats(plain->DecodeImgFileL(&path, 1)).first);
    }
}

TEST_F(Decoders, WhatAnIconHoldsCountsAndWhatItsTextsExpandTo)
{
    QImage texts(1, 1, QImage::Format_RGB32);
    for (const char* const key : {"a", "b", "c", "d"}) {
        texts.setText(key, QString(4 << 20, 'a'));
    }
    const std::pair<QByteArray, int> cases[] = {{Png(QImage::Format_RGB32), enFormat_RGB32},
                                                {Encoded(texts, "PNG"), 0},
                                                {Png(QImage::Format_Mono, 12000, 12000), 0}};
    for (const auto& [content, format] : cases) {
        CQSString data = Make<CQSString>(Icon(content).toStdString());
        EXPECT_EQ(format, TakeFormats(plain->DecodeImgBufL(data, anyFormat, 1)).first);
    }
}

TEST_F(Decoders, AJpegMayEndAnywhereOnADirtyHeap)
{
    mallopt(M_PERTURB, 0x5A);
    const std::string whole = Encoded(QImage(16, 16, QImage::Format_RGB32), "JPG").toStdString();
    for (std::size_t length = 1; length <= whole.size(); ++length) {
        CQSString data = Make<CQSString>(whole.substr(0, length));
        const int format = TakeFormats(plain->DecodeImgBufL(data, anyFormat, 1)).first;
        EXPECT_TRUE(format == 0 || format == enFormat_RGB32) << length;
    }
}

TEST_F(Decoders, APipeOrADeviceIsRefusedAtOnce)
{
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    ASSERT_EQ(0, mkfifo("named.png", 0600)); // one of the names tried for "named"
    CQWString pipe = Wide(L"pipe"), device = Wide(L"/dev/zero"), named = Wide(L"named");
    for (CQWString* path : {&pipe, &device, &named}) {
        EXPECT_EQ(Formats(0, 0), TakeFormats(plain->DecodePngFileL(path, 1)));
        EXPECT_FALSE(CQFileNameUtil::IsImageFile(*path));
    }
    EXPECT_EQ(Formats(0, -1), TakeFormats(plain->DecodeImgFileL(&dir, &pipe, 1)));
}

TEST_F(Decoders, TheirOwnFileNameMayBeAnArgumentAndTheNotifierMayDoAnything)
{
    plain->GetFileName() = dir;
    onDecoded = [this] {
        EXPECT_EQ(enFormat_ARGB32, TakeFormats().first);
        plain->GetFileName() = opaquePath;
        EXPECT_EQ(1, plain->DecodeImgFileL(&plain->GetFileName(), 2));
    };
    EXPECT_EQ(1, plain->DecodePngFileL(&plain->GetFileName(), &alphaName, 1));
    EXPECT_EQ((Notifications{{1, 1, 1}, {1, 2, 1}}), Take()); // reset behind the notification
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats());
    onDecoded = [this] { plain.reset(); };
    EXPECT_EQ(1, plain->DecodePngFileL(&dir, &alphaName, 3));
    ImagePtr image;
    onDecoded = [&] {
        image.reset(fitting->GetImage());
        fitting.reset();
    };
    CQWString& ownName = fitting->GetFileName() = opaquePath;
    ownName.Replace(L"/", L"\\");
    EXPECT_EQ(1, fitting->DecodeImgFile(&ownName, 4, false));
    EXPECT_EQ(QSize(8, 6), image->size());
}

// The raw pixels of a reduced copy are read as a file, and those of this blue begin as a JPEG does.
TEST_F(Decoders, AnImageThatIsResizedIsReadAsAFile)
{
    EXPECT_EQ(0, fitting->ResizeImageToFitScreen(nullptr));
    uchar greyMap[] = "P5 1 1 255 \x22"; // pgm(5)
    QImage image = QImage(greyMap, 12, 1, QImage::Format_Grayscale8).scaled(24, 2);
    fitting->SetScreenSize(QSize(12, 12));
    EXPECT_EQ(1, fitting->ResizeImageToFitScreen(&image));
    EXPECT_EQ(QSize(1, 1), image.size());
    QImage blue(1000, 600, QImage::Format_RGB32);
    blue.fill(QColor(0x87, 0xD8, 0xFF));
    fitting->SetScreenSize(QSize(480, 800));
    mallopt(M_PERTURB, 0x5A); // fresh memory holds anything
    CQWString path = Add("blue.bmp", Encoded(blue, "BMP"));
    EXPECT_EQ(1, fitting->DecodeImgFile(&path, 1, true));
    EXPECT_EQ(blue.size(), ImagePtr(fitting->GetImage())->size());
}

TEST(ImageTypes, TheClientsTypesAreListedInOrderAndThePlatformHasNone)
{
    TImageMIMETypes types, platformTypes;
    EXPECT_EQ(nullptr, types.GetArray());
    CQFileNameUtil::OrvoImageMIMETypesL(types);
    EXPECT_EQ("image/bmp image/gif image/jp2 image/jpeg image/png", types.GetArray()->join(' '));
    CQFileNameUtil::ImageMIMETypesL(platformTypes);
    EXPECT_TRUE(platformTypes.GetArray() && platformTypes.GetArray()->isEmpty());
}
