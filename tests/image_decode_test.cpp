#include "AssertRecorder.h"
#include "DecodeRecorder.h"
#include "TemporaryFiles.h"

#include <CQImageDecode.h>
#include <CQSString.h>

#include <gtest/gtest.h>

#include <climits>

namespace
{

using Notifications = DecodeRecorder::Notifications;
using Formats = std::pair<int, int>;

CQSString Bytes(QByteArray bytes)
{
    CQSString result;
    result.SetData(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    return result;
}

class ImageDecode : public testing::Test
{
protected:
    // Takes both images and returns their formats; -1 for none.
    Formats TakeFormats()
    {
        QImage* image = nullptr;
        QImage* mask = nullptr;
        EXPECT_EQ(1, decoder->GetImageFromPng(&image, &mask));
        const std::unique_ptr<QImage> owned[] = {std::unique_ptr<QImage>(image),
                                                 std::unique_ptr<QImage>(mask)};
        return {image != nullptr ? image->format() : -1, mask != nullptr ? mask->format() : -1};
    }

    TemporaryFiles files;
    CQWString dir = files.Path("./");
    CQWString plainName{QStringLiteral("plain")};
    CQWString alphaName{QStringLiteral("alpha")};
    CQWString plainPath = files.Add("plain", Png(3, 2));
    CQWString alphaPath = files.Add("alpha", Png(5, 4, QImage::Format_ARGB32));
    CQSString alphaBytes = Bytes(files.Content("alpha"));
    CQSString anyFormat = Bytes("image/bmp");
    DecodeRecorder recorder;
    std::unique_ptr<CQImageDecode> decoder{CQImageDecode::NewL(enFormat_RGB16, &recorder)};
};

} // namespace

TEST_F(ImageDecode, EachOperationFillsItsSlotsAndNotifiesOnce)
{
    EXPECT_EQ(1, decoder->DecodeImgFileL(&alphaPath, 1));
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats());
    EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &alphaName, 2));
    EXPECT_EQ(Formats(enFormat_ARGB32, -1), TakeFormats());
    EXPECT_EQ(1, decoder->DecodePngFileL(&alphaPath, 3));
    EXPECT_EQ(Formats(enFormat_RGB16, enFormat_Indexed8), TakeFormats());
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &alphaName, 4));
    EXPECT_EQ(Formats(enFormat_ARGB32, enFormat_Indexed8), TakeFormats());
    EXPECT_EQ(1, decoder->DecodeImgBufL(alphaBytes, anyFormat, 5));
    EXPECT_EQ(Formats(enFormat_ARGB32, -1), TakeFormats());
    EXPECT_EQ(nullptr, decoder->GetImage());
    // The PNG buffer leaves the image as it was.
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &plainName, 6));
    EXPECT_EQ(1, decoder->DecodePngBufL(alphaBytes, 7));
    EXPECT_EQ(Formats(enFormat_RGB32, enFormat_ARGB32), TakeFormats());
    EXPECT_TRUE(decoder->GetFileName() == plainName);
    // Alpha is told by one operation only, and buffers keep the id of the file before them.
    EXPECT_EQ((Notifications{
                  {1, 1, 0}, {1, 2, 0}, {1, 3, 0}, {1, 4, 1}, {1, 4, 0}, {1, 6, 0}, {1, 6, 0}}),
              recorder.Take());
}

TEST_F(ImageDecode, RefusalsKeepTheImagesAndSayNothing)
{
    decoder->DecodePngFileL(&plainPath, 1);
    recorder.Take();
    CQWString none;
    CQSString nothing;
    CQWString placeholder(QStringLiteral("NoPic.BMP"));
    for (CQWString* path : {static_cast<CQWString*>(nullptr), &none, &placeholder}) {
        EXPECT_EQ(0, decoder->DecodeImgFileL(path, 2));
        EXPECT_EQ(0, decoder->DecodePngFileL(path, 2));
    }
    for (CQWString* text : {static_cast<CQWString*>(nullptr), &none}) {
        EXPECT_EQ(0, decoder->DecodeImgFileL(text, &plainName, 2));
        EXPECT_EQ(0, decoder->DecodeImgFileL(&dir, text, 2));
        EXPECT_EQ(0, decoder->DecodePngFileL(text, &plainName, 2));
        EXPECT_EQ(0, decoder->DecodePngFileL(&dir, text, 2));
    }
    EXPECT_EQ(0, decoder->DecodePngBufL(nothing, 2));
    EXPECT_EQ(0, decoder->DecodeImgBufL(nothing, anyFormat, 2));
    EXPECT_EQ(0, decoder->DecodeImgBufL(alphaBytes, nothing, 2));
    QImage* image = nullptr;
    EXPECT_EQ(0, decoder->GetImageFromPng(nullptr, &image));
    EXPECT_EQ(0, decoder->GetImageFromPng(&image, nullptr));
    EXPECT_TRUE(recorder.Take().empty());
    EXPECT_TRUE(decoder->GetFileName() == plainPath);
    EXPECT_EQ(Formats(enFormat_RGB16, enFormat_Indexed8), TakeFormats());
    // Only the whole path is the placeholder.
    CQWString path = files.Add("NoPic.BMP", Png(1, 1));
    EXPECT_EQ(1, decoder->DecodeImgFileL(&path, 3));
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &placeholder, 3));
}

TEST_F(ImageDecode, WhatDoesNotDecodeIsANullImageAndIsAnnounced)
{
    const QByteArray contents[] = {
        "no picture", files.Content("plain").chopped(20), HugeBitmap(),
        // Signature and IHDR of a PNG of 60000 x 60000, CRC-32 by Python's zlib.
        QByteArray::fromHex("89504e470d0a1a0a0000000d49484452"
                            "0000ea600000ea6008020000000fb0e215")};
    for (const QByteArray& content : contents) {
        files.Add("bad", content);
        CQWString name(QStringLiteral("bad"));
        CQSString data = Bytes(content);
        EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &name, 1));
        EXPECT_EQ(Formats(0, 0), TakeFormats());
        EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &name, 2));
        EXPECT_EQ(1, decoder->DecodePngBufL(data, 3));
        EXPECT_EQ((Notifications{{1, 1, 0}, {1, 2, 0}, {1, 2, 0}}), recorder.Take());
        EXPECT_EQ(Formats(0, 0), TakeFormats());
    }
    // A file that cannot be opened: only the two-name form of the plain decode asserts.
    AssertRecorder assertions;
    CQWString missing(QStringLiteral("missing"));
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &missing, 6));
    EXPECT_EQ(1, decoder->DecodeImgFileL(&missing, 5));
    EXPECT_TRUE(assertions.Reports().empty());
    EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &missing, 7));
    ASSERT_EQ(1U, assertions.Reports().size());
    EXPECT_TRUE(assertions.Take().at(0).Is("0", "src/PrivateImageDecode_win32", 164));
    EXPECT_EQ((Notifications{{1, 6, 0}, {1, 5, 0}, {1, 7, 0}}), recorder.Take());
    EXPECT_EQ(Formats(0, 0), TakeFormats());
}

TEST_F(ImageDecode, OnlyRealDisplayModesConvert)
{
    const int count = QImage::NImageFormats;
    for (const int mode : {-1, 0, 1, count - 1, count, INT_MAX}) {
        decoder.reset(CQImageDecode::NewL(mode, nullptr));
        EXPECT_EQ(1, decoder->DecodeImgFileL(&alphaPath, 1));
        EXPECT_EQ(Formats(mode > 0 && mode < count ? mode : 0, -1), TakeFormats());
    }
}

TEST_F(ImageDecode, ItsOwnFileNameMayBeAnArgumentAndTheNotifierMayDoAnything)
{
    decoder->GetFileName() = dir;
    recorder.onDecoded = [this] {
        EXPECT_EQ(enFormat_ARGB32, TakeFormats().first);
        decoder->GetFileName() = plainPath;
        EXPECT_EQ(1, decoder->DecodeImgFileL(&decoder->GetFileName(), 2));
    };
    EXPECT_EQ(1, decoder->DecodePngFileL(&decoder->GetFileName(), &alphaName, 1));
    EXPECT_EQ((Notifications{{1, 1, 1}, {1, 2, 0}}), recorder.Take());
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats());
    recorder.onDecoded = [this] { decoder.reset(); };
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &alphaName, 3));
}
