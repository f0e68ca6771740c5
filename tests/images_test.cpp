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

namespace
{

using Formats = std::pair<int, int>;
using ImagePtr = std::unique_ptr<QImage>;
using Notifications = std::vector<std::array<int, 3>>; // status, id, alpha

QByteArray Png(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, format);
    image.fill(Qt::red);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

// The two headers of a bitmap file, little-endian, that claims 60000 x 60000 pixels of 24 bits.
const QByteArray HugeBitmap =
    QByteArray::fromHex("424d3600000000000000360000002800000060ea000060ea000001001800") +
    QByteArray(24, '\0');

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
    CQWString opaquePath = Add("opaque", Png(8, 6));
    CQWString alphaPath = Add("alpha", Png(8, 6, QImage::Format_ARGB32));
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

TEST_F(Decoders, EachPlainOperationFillsItsSlotsAndNotifiesOnce)
{
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats(plain->DecodeImgFileL(&alphaPath, 1)));
    EXPECT_EQ(Formats(enFormat_ARGB32, -1),
              TakeFormats(plain->DecodeImgFileL(&dir, &alphaName, 2)));
    EXPECT_EQ(Formats(enFormat_ARGB32, enFormat_Indexed8),
              TakeFormats(plain->DecodePngFileL(&dir, &alphaName, 3)));
    EXPECT_TRUE(plain->GetFileName() == alphaName);
    EXPECT_EQ(Formats(enFormat_ARGB32, -1),
              TakeFormats(plain->DecodeImgBufL(alphaBytes, anyFormat, 4)));
    EXPECT_EQ(nullptr, plain->GetImage());
    EXPECT_EQ(1, plain->DecodePngFileL(&alphaPath, 5));
    EXPECT_EQ(1, plain->DecodePngBufL(alphaBytes, 6)); // leaves the image as it was
    EXPECT_EQ(Formats(enFormat_RGB16, enFormat_ARGB32), TakeFormats());
    // Alpha is told by one operation only, and buffers keep the id of the file before them.
    EXPECT_EQ((Notifications{{1, 1, 0}, {1, 2, 0}, {1, 3, 1}, {1, 3, 0}, {1, 5, 0}, {1, 5, 0}}),
              Take());
}

TEST_F(Decoders, RefusalsKeepTheImagesAndSayNothing)
{
    plain->DecodePngFileL(&opaquePath, 1);
    EXPECT_EQ(1u, Take().size());
    CQSString nothing;
    QImage* image = nullptr;
    for (CQWString* text : {static_cast<CQWString*>(nullptr), &none}) {
        EXPECT_EQ(
            0, plain->DecodeImgFileL(text, &alphaName, 2) | plain->DecodeImgFileL(&dir, text, 2) |
                   plain->DecodeImgFileL(text, 2) | plain->DecodePngFileL(text, &alphaName, 2) |
                   plain->DecodePngFileL(&dir, text, 2) | plain->DecodePngFileL(text, 2) |
                   fitting->DecodeImgFile(text, 2, true) | fitting->DecodeImgFileL(text, 2, false));
    }
    EXPECT_EQ(0, plain->DecodeImgFileL(&placeholder, 2) | plain->DecodePngFileL(&placeholder, 2) |
                     fitting->DecodeImgFile(&placeholder, 2, true));
    EXPECT_EQ(0, plain->DecodePngBufL(nothing, 2) | plain->DecodeImgBufL(nothing, anyFormat, 2) |
                     plain->DecodeImgBufL(alphaBytes, nothing, 2));
    EXPECT_EQ(0, plain->GetImageFromPng(nullptr, &image) | plain->GetImageFromPng(&image, nullptr));
    EXPECT_TRUE(Take().empty() && plain->GetFileName() == opaquePath);
    EXPECT_EQ(Formats(enFormat_RGB16, enFormat_Indexed8), TakeFormats());
    // Only the whole path is the placeholder.
    CQWString path = Add("NoPic.BMP", Png(1, 1));
    EXPECT_EQ(1, plain->DecodeImgFileL(&path, 3) & plain->DecodePngFileL(&dir, &placeholder, 3));
}

TEST_F(Decoders, WhatDoesNotDecodeIsANullImageAndIsAnnounced)
{
    CQWString bad = Wide(L"bad"), missing = Wide(L"missing");
    EXPECT_TRUE(CQFileNameUtil::IsImageFile(alphaPath)); // by content: it has no extension
    for (const auto& content : {QByteArray("no picture"), HugeBitmap}) {
        EXPECT_FALSE(CQFileNameUtil::IsImageFile(Add("x.png", content)));
        CQWString path = Add("bad", content);
        CQSString data = Make<CQSString>(content.toStdString());
        EXPECT_EQ(Formats(0, 0), TakeFormats(plain->DecodePngFileL(&dir, &bad, 1)));
        EXPECT_EQ(Formats(0, 0), TakeFormats(plain->DecodeImgFileL(&dir, &bad, 2) &
                                             plain->DecodePngBufL(data, 3)));
        EXPECT_EQ(1, fitting->DecodeImgFile(&path, 4, true));
        EXPECT_TRUE(ImagePtr(fitting->GetImage())->isNull());
        EXPECT_EQ((Notifications{{1, 1, 0}, {1, 2, 0}, {1, 2, 0}, {1, 4, 0}}), Take());
    }
    // A file that cannot be opened: only the two-name form of the plain decode asserts.
    AssertRecorder assertions;
    EXPECT_EQ(1, plain->DecodePngFileL(&dir, &missing, 6) & plain->DecodeImgFileL(&missing, 5));
    EXPECT_EQ(AssertReports(), assertions.Take());
    EXPECT_EQ(1, plain->DecodeImgFileL(&dir, &missing, 7));
    EXPECT_EQ((AssertReports{{"0", "src/PrivateImageDecode_win32", 164}}), assertions.Take());
    EXPECT_EQ((Notifications{{1, 6, 0}, {1, 5, 0}, {1, 7, 0}}), Take());
    EXPECT_EQ(Formats(0, 0), TakeFormats());
    const int count = QImage::NImageFormats;
    for (const int mode : {-1, 0, 1, count - 1, count, INT_MAX}) {
        plain.reset(CQImageDecode::NewL(mode, nullptr));
        EXPECT_EQ(Formats(mode > 0 && mode < count ? mode : 0, -1),
                  TakeFormats(plain->DecodeImgFileL(&alphaPath, 1)));
    }
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
    EXPECT_EQ((Notifications{{1, 1, 1}, {1, 2, 0}}), Take());
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats());
    onDecoded = [this] { plain.reset(); };
    EXPECT_EQ(1, plain->DecodePngFileL(&dir, &alphaName, 3));
    onDecoded = [this] {
        const ImagePtr image(fitting->GetImage());
        fitting.reset();
        EXPECT_EQ(QSize(8, 6), image->size());
    };
    EXPECT_EQ(1, fitting->DecodeImgFile(&opaquePath, 4, false));
}

// Masked by its name without alpha, by its alpha, and by its name without content.
TEST_F(Decoders, AMaskedFileLeavesOnlyItsMaskAndIsNotAnnouncedWhereAPlainOneIsNeverConverted)
{
    CQWString missing = files.Absolute("missing.PNG"), named = Add("m.Png", Png(8, 6));
    for (CQWString* path : {&named, &alphaPath, &missing}) {
        EXPECT_EQ(1, fitting->DecodeImgFile(&opaquePath, 5, false)); // replaced unseen: no leak
        EXPECT_EQ(1, fitting->DecodeImgFileSpecDispMode(opaquePath, 6, false));
        EXPECT_EQ((Notifications{{1, 5, 0}, {1, 6, 0}}), Take());
        EXPECT_EQ(nullptr, fitting->GetMaskImage());
        const ImagePtr image(fitting->GetImage());
        EXPECT_EQ(image.get(), fitting->GetImage()); // it is not given up
        EXPECT_EQ(0, fitting->DecodeImgFile(path, 2, false));
        EXPECT_TRUE(Take().empty());
        EXPECT_EQ(QImage::Format_RGB32, image->format()); // outlives the next decode
        EXPECT_EQ(nullptr, fitting->GetImage());
        const ImagePtr mask(fitting->GetMaskImage());
        ASSERT_NE(nullptr, mask);
        EXPECT_EQ(path == &missing ? 0 : QImage::Format_Indexed8, mask->format());
    }
}

TEST_F(Decoders, AnImageThatIsResizedKeepsItsSizeAndIsNotAnnounced)
{
    for (const QSize screen : {QSize(4, 100), {8, 1}, {-1, -1}, {0, 0}, {-1, INT_MAX}}) {
        const int resized = screen.width() < 8 ? 1 : 0;
        fitting->SetScreenSize(screen);
        EXPECT_EQ(1, fitting->DecodeImgFile(&opaquePath, 1, true));
        EXPECT_EQ(resized != 0, Take().empty()) << screen.width();
        const ImagePtr image(fitting->GetImage());
        EXPECT_EQ(resized, fitting->ResizeImageToFitScreen(image.get()));
        EXPECT_EQ(QSize(8, 6), image->size());
    }
    EXPECT_EQ(0, fitting->ResizeImageToFitScreen(nullptr));
    // The pixels of the reduced copy are read as a file. As a rule they are none; these are.
    uchar greyMap[] = "P5 1 1 255 \x22"; // pgm(5)
    QImage image = QImage(greyMap, 12, 1, QImage::Format_Grayscale8).scaled(24, 2);
    fitting->SetScreenSize(QSize(12, 12));
    EXPECT_EQ(1, fitting->ResizeImageToFitScreen(&image));
    EXPECT_EQ(QSize(1, 1), image.size());
    EXPECT_EQ(0x22, qGray(image.pixel(0, 0)));
}

TEST_F(Decoders, TheDirectFormOfAMaskedDecodeLeavesTheDecoderBusy)
{
    EXPECT_EQ(0, fitting->DecodeImgFileL(&alphaPath, 1, true));
    EXPECT_EQ(0, fitting->DecodeImgFile(&opaquePath, 2, false));
    EXPECT_EQ(0, fitting->DecodeImgFileSpecDispMode(opaquePath, 2, false));
    EXPECT_TRUE(fitting->GetFileName() == alphaPath);
    // The direct form does not ask, and fits to the screen as was last asked for.
    EXPECT_EQ(1, fitting->DecodeImgFileL(&opaquePath, 4, false));
    EXPECT_TRUE(Take().empty());
    // A backslash turns in the caller's path, which may be the decoder's.
    for (CQWString* path : {&opaquePath, &fitting->GetFileName()}) {
        path->Replace(L"/", L"\\");
        EXPECT_EQ(1, fitting->DecodeImgFile(path, 5, false));
        EXPECT_TRUE(*path == CQWString(files.Absolute("opaque")));
    }
    EXPECT_EQ(1, fitting->DecodeImgFileL(&opaquePath, 6, false));
    EXPECT_EQ((Notifications{{1, 5, 0}, {1, 5, 0}, {1, 6, 0}}), Take());
    EXPECT_EQ(QSize(8, 6), ImagePtr(fitting->GetImage())->size());
}

// Computed with Python's floats, which are IEEE doubles, from the rules alone.
TEST_F(Decoders, FittingSizes)
{
    // Only the width says whether an image fits. Ratios below 1 multiply: a screen that was never
    // set, or is negative. No division by zero, no overflow; a side below 1 is refused.
    const QSize huge(INT_MAX, INT_MAX - 1);
    const QSize cases[][3] = {{{960, 800}, {480, 800}, {480, 400}},
                              {{960, 3200}, {480, 800}, {240, 800}},
                              {{960, 1600}, {480, 800}, {480, 800}},
                              {{400, 1000}, {480, 800}, {400, 1000}},
                              {{200, 100}, {176, 1000}, {176, 87}},
                              {{640, 480}, {-1, -1}, {-307200, -1}},
                              {{640, 480}, {-3, 1000}, {307, 1000}},
                              {{640, 480}, {0, 100}, {0, 0}},
                              {{0, 10}, {480, 800}, {-7, -7}},
                              {{10, 0}, {480, 800}, {-7, -7}},
                              {{100000, 30000}, {-1, -1}, {INT_MIN, -1}},
                              {huge, huge.transposed(), {INT_MAX - 1, INT_MAX - 2}}};
    for (const auto& [image, screen, expected] : cases) {
        QSize fit(-7, -7);
        fitting->SetScreenSize(screen);
        EXPECT_EQ(image.isEmpty() ? 0 : 1, fitting->GetFitScreenSize(image, fit));
        EXPECT_EQ(expected, fit) << image.width() << 'x' << image.height();
    }
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

TEST(ImageTypes, NamesAreSplitAtTheFirstDot)
{
    const wchar_t* const cases[][3] = {
        {L"/pics/a.b.png", L"a", L"b.png"},
        {L"/pics.old/readme", L"readme", L""},
        {L".hidden", L"", L"hidden"},
        {L"dir\\a.gif", L"dir\\a", L"gif"},
        {L"/\U0001F600\U0001F601.jpg", L"\U0001F600\U0001F601", L"jpg"}};
    for (const auto& [path, name, extension] : cases) {
        CQWString text = Wide(path), part = Wide(L"before");
        CQFileNameUtil::FindShortName(text, part);
        EXPECT_EQ(0, part.Compare(name));
        EXPECT_EQ(CQWString::SafeStrlen(name), part.GetLength());
        CQFileNameUtil::FindFileExtName(text, text);
        EXPECT_EQ(0, text.Compare(extension));
    }
}
