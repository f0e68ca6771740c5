#include "DecodeRecorder.h"
#include "TemporaryFiles.h"

#include <CQBImageDecode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace
{

using Notifications = DecodeRecorder::Notifications;
// The decoder deletes no image that it has handed out.
using ImagePtr = std::unique_ptr<QImage>;

class FitImageDecode : public testing::Test
{
protected:
    TemporaryFiles files;
    CQWString plainPath = files.Add("plain", Png(8, 6));
    CQWString maskedPath = files.Add("masked.Png", Png(8, 6));
    CQWString alphaPath = files.Add("alpha.bmp", Png(8, 6, QImage::Format_ARGB32));
    DecodeRecorder recorder;
    std::unique_ptr<CQBImageDecode> decoder{CQBImageDecode::NewL(enFormat_RGB16, &recorder)};
};

} // namespace

TEST_F(FitImageDecode, APlainFileIsAnnouncedAndNeverConverted)
{
    EXPECT_EQ(1, decoder->DecodeImgFile(&plainPath, 5, false)); // replaced unseen: not leaked
    EXPECT_EQ(1, decoder->DecodeImgFileSpecDispMode(plainPath, 6, false));
    EXPECT_EQ((Notifications{{1, 5, 0}, {1, 6, 0}}), recorder.Take());
    const ImagePtr image(decoder->GetImage());
    EXPECT_EQ(image.get(), decoder->GetImage()); // it is not given up
    EXPECT_EQ(QImage::Format_RGB32, image->format());
    EXPECT_EQ(nullptr, decoder->GetMaskImage());
    // Fetched images outlive the next decode and the decoder.
    ImagePtr second;
    recorder.onDecoded = [&] {
        second.reset(decoder->GetImage());
        decoder.reset();
    };
    EXPECT_EQ(1, decoder->DecodeImgFile(&plainPath, 7, false));
    EXPECT_EQ(image->size(), second->size());
}

// By its name without alpha, by its alpha, and by its name without content.
TEST_F(FitImageDecode, AMaskedFileLeavesOnlyItsMaskAndIsNotAnnounced)
{
    CQWString missing = files.Path("missing.PNG");
    for (CQWString* path : {&maskedPath, &alphaPath, &missing}) {
        decoder->DecodeImgFile(&plainPath, 1, false);
        EXPECT_EQ(nullptr, decoder->GetMaskImage());
        const ImagePtr image(decoder->GetImage());
        recorder.Take();
        EXPECT_EQ(0, decoder->DecodeImgFile(path, 2, false));
        EXPECT_TRUE(recorder.Take().empty());
        EXPECT_EQ(nullptr, decoder->GetImage());
        const ImagePtr mask(decoder->GetMaskImage());
        ASSERT_NE(nullptr, mask);
        EXPECT_EQ(path == &missing ? QImage::Format_Invalid : QImage::Format_Indexed8,
                  mask->format());
    }
}

TEST_F(FitImageDecode, AnImageThatIsResizedKeepsItsSizeAndIsNotAnnounced)
{
    const std::pair<QSize, int> cases[] = {{{4, 100}, 1}, {{8, 1}, 0}, {{-1, -1}, 1},
                                           {{0, 0}, 1},   {{7, 0}, 1}, {{-1, INT_MAX}, 1}};
    for (const auto& [screen, resized] : cases) {
        decoder->SetScreenSize(screen);
        EXPECT_EQ(1, decoder->DecodeImgFile(&plainPath, 1, true));
        EXPECT_EQ(resized != 0, recorder.Take().empty()) << screen.width();
        const ImagePtr image(decoder->GetImage());
        EXPECT_EQ(resized, decoder->ResizeImageToFitScreen(image.get()));
        EXPECT_EQ(QSize(8, 6), image->size());
    }
    // There is nothing to resize in what did not decode.
    CQWString huge = files.Add("huge", HugeBitmap());
    EXPECT_EQ(1, decoder->DecodeImgFile(&huge, 4, true));
    EXPECT_EQ((Notifications{{1, 4, 0}}), recorder.Take());
    const ImagePtr image(decoder->GetImage());
    EXPECT_TRUE(image->isNull());
    EXPECT_EQ(0, decoder->ResizeImageToFitScreen(image.get()));
    EXPECT_EQ(0, decoder->ResizeImageToFitScreen(nullptr));
}

// The pixels of the reduced copy are read as a file. As a rule they are none; these are.
TEST_F(FitImageDecode, RawPixelsThatAreAFileReplaceTheImage)
{
    const QByteArray greyMap = "P5 1 1 255 \x22"; // pgm(5)
    QImage image(2 * 12, 1, QImage::Format_Grayscale8);
    for (int x = 0; x < image.width(); ++x) {
        image.scanLine(0)[x] = static_cast<uchar>(greyMap.at(x / 2));
    }
    image = image.scaled(24, 2);
    decoder->SetScreenSize(QSize(12, 12));
    EXPECT_EQ(1, decoder->ResizeImageToFitScreen(&image));
    EXPECT_EQ(QSize(1, 1), image.size());
    EXPECT_EQ(0x22, qGray(image.pixel(0, 0)));
}

TEST_F(FitImageDecode, ItIsRefusedWhenBusyOrWithoutAPicture)
{
    CQWString none;
    CQWString placeholder(QStringLiteral("NOPIC.bmp"));
    for (CQWString* path : {static_cast<CQWString*>(nullptr), &none, &placeholder}) {
        EXPECT_EQ(0, decoder->DecodeImgFile(path, 2, true));
        EXPECT_EQ(0, decoder->DecodeImgFileL(path, 2, false));
    }
    EXPECT_EQ(0, decoder->DecodeImgFileSpecDispMode(none, 2, true));
    // The direct form of a masked decode leaves the decoder busy.
    EXPECT_EQ(0, decoder->DecodeImgFileL(&maskedPath, 1, true));
    EXPECT_EQ(0, decoder->DecodeImgFile(&plainPath, 2, false));
    EXPECT_EQ(0, decoder->DecodeImgFileSpecDispMode(plainPath, 2, false));
    EXPECT_TRUE(decoder->GetFileName() == maskedPath);
    // The direct form does not ask, and fits to the screen as was last asked for.
    EXPECT_EQ(1, decoder->DecodeImgFileL(&plainPath, 4, false));
    EXPECT_TRUE(recorder.Take().empty());
    EXPECT_EQ(1, decoder->DecodeImgFile(&plainPath, 5, false));
    EXPECT_EQ(1, decoder->DecodeImgFileL(&plainPath, 6, false));
    EXPECT_EQ((Notifications{{1, 5, 0}, {1, 6, 0}}), recorder.Take());
    const ImagePtr image(decoder->GetImage());
}

TEST_F(FitImageDecode, BackslashesTurnInTheCallersPathToo)
{
    decoder->GetFileName() = plainPath;
    for (CQWString* path : {&plainPath, &decoder->GetFileName()}) {
        path->Replace(L"/", L"\\");
        EXPECT_EQ(1, decoder->DecodeImgFile(path, 1, false));
        EXPECT_TRUE(*path == files.Path("plain"));
    }
    const ImagePtr image(decoder->GetImage());
    EXPECT_EQ(QSize(8, 6), image->size());
}

// Computed with Python's floats, which are IEEE doubles, from the rules alone.
TEST_F(FitImageDecode, FittingSizes)
{
    const struct {
        QSize image;
        QSize screen;
        QSize fit;
    } cases[] = {
        {{960, 800}, {480, 800}, {480, 400}},
        {{960, 3200}, {480, 800}, {240, 800}},
        {{960, 1600}, {480, 800}, {480, 800}},
        {{400, 1000}, {480, 800}, {400, 1000}}, // only the width is looked at
        {{200, 100}, {176, 1000}, {176, 87}},   // 100 / (200.0 / 176) is a little below 88
        {{481, 1}, {480, 800}, {480, 0}},
        // Ratios below 1 multiply: a screen that was never set, or is negative.
        {{640, 480}, {-1, -1}, {-307200, -1}},
        {{480, 640}, {-1, -1}, {-1, -307200}},
        {{640, 480}, {-3, 1000}, {307, 1000}},
        {{640, 480}, {-3, 100}, {133, 100}},
        // No division by zero, no overflow.
        {{640, 480}, {0, 0}, {0, 0}},
        {{640, 480}, {0, 100}, {0, 0}},
        {{640, 480}, {-5, 0}, {0, 0}},
        {{100000, 30000}, {-1, -1}, {INT_MIN, -1}},
        {{INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}, {INT_MIN, INT_MIN}},
        {{INT_MAX, INT_MAX - 1}, {INT_MAX - 1, INT_MAX}, {INT_MAX - 1, INT_MAX - 2}},
        {{0, 10}, {480, 800}, {-7, -7}}, // refused
        {{INT_MIN, INT_MIN}, {-1, -1}, {-7, -7}},
    };
    for (const auto& [image, screen, expected] : cases) {
        QSize fit(-7, -7);
        decoder->SetScreenSize(screen);
        EXPECT_EQ(image.width() > 0 ? 1 : 0, decoder->GetFitScreenSize(image, fit));
        EXPECT_EQ(expected, fit) << image.width() << 'x' << image.height();
    }
}

// Against whole-number arithmetic, which the rounding of the ratios misses by one at most.
TEST_F(FitImageDecode, WiderImagesKeepTheirShape)
{
    decoder->SetScreenSize(QSize(48, 80));
    for (int width = 49; width < 500; width += 3) {
        for (int height = 1; height < 900; height += 7) {
            QSize fit;
            decoder->GetFitScreenSize(QSize(width, height), fit);
            ASSERT_LE(std::abs(std::min(48, width * 80 / height) - fit.width()), 1);
            ASSERT_LE(std::abs(std::min(80, height * 48 / width) - fit.height()), 1);
        }
    }
}
