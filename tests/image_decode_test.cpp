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

CQSString Bytes(QByteArray bytes)
{
    CQSString result;
    result.SetData(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    return result;
}

class ImageDecode : public testing::Test
{
protected:
    // The formats of the image and of the mask, which the decoder gives up; -1 for none.
    std::pair<int, int> TakeFormats()
    {
        QImage* image = nullptr;
        QImage* mask = nullptr;
        EXPECT_EQ(1, decoder->GetImageFromPng(&image, &mask));
        const std::unique_ptr<QImage> ownedImage(image);
        const std::unique_ptr<QImage> ownedMask(mask);
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

const std::pair noImages{-1, -1};

} // namespace

TEST_F(ImageDecode, EachOperationFillsItsSlotsAndNotifiesOnce)
{
    EXPECT_EQ(1, decoder->DecodeImgFileL(&alphaPath, 1));
    EXPECT_EQ(std::pair(int{enFormat_RGB16}, -1), TakeFormats());
    EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &alphaName, 2));
    EXPECT_EQ(std::pair(int{enFormat_ARGB32}, -1), TakeFormats());
    EXPECT_EQ(1, decoder->DecodePngFileL(&alphaPath, 3));
    EXPECT_EQ(std::pair(int{enFormat_RGB16}, int{enFormat_Indexed8}), TakeFormats());
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &alphaName, 4));
    EXPECT_EQ(std::pair(int{enFormat_ARGB32}, int{enFormat_Indexed8}), TakeFormats());
    EXPECT_EQ(noImages, TakeFormats());
    // Alpha is told for the last one only; buffers keep the id of the file before them.
    EXPECT_EQ(1, decoder->DecodeImgBufL(alphaBytes, anyFormat, 5));
    EXPECT_EQ(1, decoder->DecodePngBufL(alphaBytes, 6));
    EXPECT_EQ((Notifications{{1, 1, 0}, {1, 2, 0}, {1, 3, 0}, {1, 4, 1}, {1, 4, 0}, {1, 4, 0}}),
              recorder.Take());
    EXPECT_EQ(std::pair(int{enFormat_ARGB32}, int{enFormat_ARGB32}), TakeFormats());
    EXPECT_TRUE(decoder->GetFileName() == alphaName);

    // The PNG buffer leaves the image as it was, and an opaque picture tells no alpha.
    decoder->DecodePngFileL(&dir, &plainName, 7);
    decoder->DecodePngBufL(alphaBytes, 8);
    EXPECT_EQ((Notifications{{1, 7, 0}, {1, 7, 0}}), recorder.Take());
    const std::unique_ptr<QImage> image(decoder->GetImage());
    EXPECT_EQ(QSize(3, 2), image->size());
    EXPECT_EQ(nullptr, decoder->GetImage());
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
    EXPECT_EQ(std::pair(int{enFormat_RGB16}, int{enFormat_Indexed8}), TakeFormats());

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
    const std::pair nullImage{0, -1};
    for (const QByteArray& content : contents) {
        CQWString path = files.Add("bad", content);
        CQWString name(QStringLiteral("bad"));
        CQSString data = Bytes(content);
        EXPECT_EQ(1, decoder->DecodeImgFileL(&path, 1));
        EXPECT_EQ(nullImage, TakeFormats());
        EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &name, 2));
        EXPECT_EQ(nullImage, TakeFormats());
        EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &name, 3));
        EXPECT_EQ(std::pair(0, 0), TakeFormats());
        EXPECT_EQ(1, decoder->DecodeImgBufL(data, anyFormat, 4));
        EXPECT_EQ(nullImage, TakeFormats());
        EXPECT_EQ((Notifications{{1, 1, 0}, {1, 2, 0}, {1, 3, 0}, {1, 3, 0}}), recorder.Take());
    }
    // A file that cannot be opened: only the two-name form of the plain decode asserts.
    AssertRecorder assertions;
    CQWString missing(QStringLiteral("missing"));
    EXPECT_EQ(1, decoder->DecodeImgFileL(&missing, 5));
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &missing, 6));
    EXPECT_TRUE(assertions.Reports().empty());
    EXPECT_EQ(1, decoder->DecodeImgFileL(&dir, &missing, 7));
    ASSERT_EQ(1U, assertions.Reports().size());
    EXPECT_TRUE(assertions.Take().at(0).Is("0", "src/PrivateImageDecode_win32", 164));
    EXPECT_EQ((Notifications{{1, 5, 0}, {1, 6, 0}, {1, 7, 0}}), recorder.Take());
    EXPECT_EQ(std::pair(0, 0), TakeFormats());
}

TEST_F(ImageDecode, OnlyRealDisplayModesConvert)
{
    for (const int mode :
         {-1, 0, 1, QImage::NImageFormats - 1, int{QImage::NImageFormats}, INT_MAX}) {
        decoder.reset(CQImageDecode::NewL(mode, nullptr));
        EXPECT_EQ(1, decoder->DecodeImgFileL(&alphaPath, 1));
        const bool isFormat = mode > 0 && mode < QImage::NImageFormats;
        EXPECT_EQ(std::pair(isFormat ? mode : 0, -1), TakeFormats());
    }
}

TEST_F(ImageDecode, ItsOwnFileNameMayBeAnArgument)
{
    decoder->DecodeImgFileL(&plainPath, 1);
    EXPECT_EQ(1, decoder->DecodePngFileL(&decoder->GetFileName(), 2));
    EXPECT_EQ(std::pair(int{enFormat_RGB16}, int{enFormat_Indexed8}), TakeFormats());
    decoder->GetFileName() = dir;
    EXPECT_EQ(1, decoder->DecodePngFileL(&decoder->GetFileName(), &plainName, 3));
    EXPECT_EQ(std::pair(int{enFormat_RGB32}, int{enFormat_Indexed8}), TakeFormats());
    EXPECT_TRUE(decoder->GetFileName() == plainName);
}

TEST_F(ImageDecode, TheNotifierMayTakeDecodeAgainAndDestroy)
{
    recorder.onDecoded = [this] {
        EXPECT_EQ(int{enFormat_ARGB32}, TakeFormats().first);
        EXPECT_EQ(1, decoder->DecodeImgFileL(&plainPath, 2));
    };
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &alphaName, 1));
    EXPECT_EQ((Notifications{{1, 1, 1}, {1, 2, 0}}), recorder.Take());
    recorder.onDecoded = [this] { decoder.reset(); };
    EXPECT_EQ(1, decoder->DecodePngFileL(&dir, &alphaName, 3));
}
