#include "AssertRecorder.h"
#include "StringContent.h"
#include "TempDir.h"
#include "models/Pictures.h"

#include <CQBImageDecode.h>
#include <CQFileNameUtil.h>
#include <CQImageDecode.h>
#include <PictureDemand.h>
#include <TImageMIMETypes.h>

#include <malloc.h>
#include <sys/stat.h>

namespace
{

using namespace Pictures;
using Formats = std::pair<int, int>;
using ImagePtr = std::unique_ptr<QImage>;

QByteArray operator""_b(const char* bytes, std::size_t size)
{
    return {bytes, int(size)};
}

const char xpm[] = "/* XPM */ static char* a[] = {\"1 1 1 1\", \"a c red\", \"a\"};";

struct Decoders : testing::Test {
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

    // Decodes bytes as they are, and returns the format.
    int Decode(const QByteArray& bytes)
    {
        CQSString data = Make<CQSString>(bytes.toStdString()), format = Make<CQSString>("any");
        return TakeFormats(plain->DecodeImgBufL(data, format, 1)).first;
    }

    CQWString Add(const char* name, const QByteArray& content) const
    {
        files.Put(name, content);
        return files.Absolute(name);
    }

    TempDir files;
    CQWString dir = files.Absolute("./"), alphaName = Wide(L"alpha");
    CQWString opaquePath = Add("opaque", Png(QImage::Format_RGB32));
    CQWString alphaPath = Add("alpha", Png(QImage::Format_ARGB32));
    Recorder recorder;
    std::unique_ptr<CQImageDecode> plain{CQImageDecode::NewL(enFormat_RGB16, &recorder)};
    // Deletes no image that it has handed out.
    std::unique_ptr<CQBImageDecode> fitting{CQBImageDecode::NewL(enFormat_RGB16, &recorder)};
};

} // namespace

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
    EXPECT_EQ((Told{{1, 6, 0}, {1, 5, 0}, {1, 7, 0}}), recorder.Take());
    EXPECT_EQ(Formats(0, 0), TakeFormats());
    files.Put("missing.png", Png(QImage::Format_RGB32)); // one of the names that Qt tries
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats(plain->DecodeImgFileL(&missing, 8)));
}

// 24 million pixels are within the limit with 32 bits each, and not with 64; 36 million are not.
TEST_F(Decoders, PixelsCountWithTheDepthOfTheDisplayModeAnd32BitsAtLeast)
{
    const std::tuple<int, int, int> cases[] = {{4000, enFormat_Mono, enFormat_Mono},
                                               {4000, QImage::Format_RGBA64, 0},
                                               {4000, INT_MAX, 0}, // no format
                                               {6000, enFormat_Mono, 0}};
    for (const auto& [height, mode, format] : cases) {
        CQWString path = Add("large", Png(QImage::Format_Mono, 6000, height));
        plain.reset(CQImageDecode::NewL(mode, nullptr));
        EXPECT_EQ(format, TakeFormats(plain->DecodeImgFileL(&path, 1)).first) << mode;
    }
}

TEST_F(Decoders, WhatIsNoPixelOfThePictureCountsToo)
{
    const auto withTexts = [](QImage image, int count) {
        for (; count > 0; --count) {
            image.setText(QString::number(count), QString(4 << 20, 'a'));
        }
        return Encoded("PNG", image);
    };
    const std::pair<QByteArray, int> cases[] = {
        {Icon(Png(QImage::Format_RGB32)), enFormat_RGB32},
        {Icon(withTexts(Plain(QImage::Format_RGB32), 4)), 0},
        {withTexts(Plain(QImage::Format_Mono, 6000, 4000), 2), 0},
        {Icon(Png(QImage::Format_Mono, 12000, 12000)), 0},
        {xpm + QByteArray(1 << 20, ' '), enFormat_Indexed8},
        {xpm + QByteArray(49 << 20, ' '), 0}}; // eight times so much may be needed
    for (const auto& [bytes, format] : cases) {
        EXPECT_EQ(format, Decode(bytes)) << bytes.size();
    }
}

TEST(PictureDemand, IsWhatTheHeadersTell)
{
    // Width, height and depth inside an icon; what expands; what is needed for a pixel and at all.
    using Demand = std::array<qint64, 6>;
    using Case = std::pair<QByteArray, Demand>;
    const QByteArray deflated = qCompress(QByteArray(1000, 'a')).mid(4);
    const auto png = [](const QByteArray& chunk, int inflated) {
        return Case("\x89PNG\r\n\x1a\n\0\0\0"_b + char(chunk.size() - 4) + chunk +
                        "sum.\0\0\0\0IENDsum.\0\0\0\1tEXtk"_b,
                    {0, 0, 32, 8 * (chunk.size() - 4 + inflated)});
    };
    const auto jpeg = [](const QByteArray& segments, int forAPixel, int beside = 0) {
        return Case("\xFF\xD8" + segments, {0, 0, 32, 0, forAPixel, segments.size() + 2 + beside});
    };
    const auto icon = [](const QByteArray& start, const QByteArray& bitmap, Demand demand) {
        return Case(Icon(bitmap, start), demand);
    };
    // Frames of three components, and scans of three and of one.
    const auto frame = [](char mark) { return '\xFF' + (mark + "\0\x08\x08\0\1\0\1\3"_b); };
    const QByteArray all = "\xFF\xDA\0\3\3"_b, one = "\xFF\xDA\0\3\1"_b;
    const Case cases[] = {
        {"BM", {0, 0, 32}},
        {"GIF89a", {0, 0, 32, 0, 4}},
        {"/* XPM */", {0, 0, 32, 0, 0, 72}},
        png("tEXtk\0ab"_b, 0),
        png("zTXtk\0\0"_b + deflated, 1000),
        png("iTXtk\0\1\0l\0k\0"_b + deflated, 1000),
        png("iTXtk\0\0\0l\0k\0"_b + deflated, 0),
        png("iCCPk\0\0"_b + deflated, 1000),
        png("sPLTabc", 0),
        png("eXIfab", 0),
        icon("\0\0\2\0\1\0\0\0"_b, Little(40) + Little(70000) + Little(-140),
             {70000, 70, 32, 0, 6}),
        icon("\0\0\1\0\1\0\3\4"_b, QByteArray(40, 'x'), {3, 4, 32, 0, 6}),
        icon("\0\0\1\0\1\0\3\4"_b, "\x89PNG\r\n\x1a\n\0\0\0\5IHDR\0\1\0\0\0\0\0\7\x10"_b,
             {65536, 7, 64, 25, 6}),
        jpeg("\xFF\xFE\0\4ab\xFF\xE1\0\3a\xFF\xE2\0\5abc"_b + frame('\xC0') + all, 0,
             8 * 4 + 3 * 3 + 3 * 5),
        jpeg(frame('\xC0') + one, 6),
        jpeg(frame('\xC2') + all, 6),
        jpeg(frame('\xC9') + one, 6),
        jpeg(frame('\xCA') + all, 6),
        jpeg("stray\xFF\0\xFF\xFF\1\xFF\xD0\xFF\xDB\0\0"_b + frame('\xC1') + one, 6),
        jpeg("\xFF\xD9" + frame('\xC2') + all, 0),
    };
    for (auto [bytes, demand] : cases) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        const auto d = ::PictureDemand::Of(buffer, 1 << 20);
        EXPECT_EQ(demand, (Demand{d.nWidth, d.nHeight, d.nDepth, d.nExpanded,
                                  d.nWorkingBytesPerPixel, d.nWorking}))
            << bytes.toHex(' ').toStdString();
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
    recorder.onDecoded = [this] {
        EXPECT_EQ(enFormat_ARGB32, TakeFormats().first);
        plain->GetFileName() = opaquePath;
        EXPECT_EQ(1, plain->DecodeImgFileL(&plain->GetFileName(), 2));
    };
    EXPECT_EQ(1, plain->DecodePngFileL(&plain->GetFileName(), &alphaName, 1));
    EXPECT_EQ((Told{{1, 1, 1}, {1, 2, 1}}), recorder.Take()); // reset behind the notification
    EXPECT_EQ(Formats(enFormat_RGB16, -1), TakeFormats());
    recorder.onDecoded = [this] { plain.reset(); };
    EXPECT_EQ(1, plain->DecodePngFileL(&dir, &alphaName, 3));
    ImagePtr image;
    recorder.onDecoded = [&] {
        image.reset(fitting->GetImage());
        fitting.reset();
    };
    CQWString& ownName = fitting->GetFileName() = opaquePath;
    ownName.Replace(L"/", L"\\");
    EXPECT_EQ(1, fitting->DecodeImgFile(&ownName, 4, false));
    EXPECT_EQ(QSize(9, 5), image->size());
}

// The raw pixels of a reduced copy are read as a file, and those of this blue begin as a JPEG does.
TEST_F(Decoders, AnImageThatIsResizedIsReadAsAFile)
{
    EXPECT_EQ(0, fitting->ResizeImageToFitScreen(nullptr));
    QImage blue(1000, 600, QImage::Format_RGB32);
    blue.fill(QColor(0x87, 0xD8, 0xFF));
    fitting->SetScreenSize(QSize(480, 800));
    mallopt(M_PERTURB, 0x5A); // fresh memory holds anything
    CQWString path = Add("blue.bmp", Encoded("BMP", blue));
    EXPECT_EQ(1, fitting->DecodeImgFile(&path, 1, true));
    EXPECT_EQ(blue.size(), ImagePtr(fitting->GetImage())->size());
    // What the image and its copy take counts: with eight times the copy it passes 3 x 128 MB.
    QImage large(12000, 10400, QImage::Format_Grayscale8);
    large.fill(' ');
    for (int i = 0; xpm[i] != '\0'; ++i) {
        large.scanLine(0)[2 * i] = uchar(xpm[i]);
    }
    fitting->SetScreenSize(QSize(6000, 5200));
    EXPECT_EQ(1, fitting->ResizeImageToFitScreen(&large));
    EXPECT_EQ(12000, large.width());
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
