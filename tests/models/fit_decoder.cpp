// The fitting decoder beside the plain rules: what is masked, what is announced, what stays busy,
// and at which size an image is shown.

#include "Pictures.h"

#include <CQBImageDecode.h>
#include <CQWString.h>

#include <cmath>
#include <optional>

namespace
{

struct Reference {
    QSize screen{-1, -1};
    bool isFit = true;
    bool isBusy = false;
    bool isFetched = true; // whether the images of the last decode are ours
};

int FitSide(int side, double ratio)
{
    const double fit = ratio >= 1.0 ? side / ratio : side * ratio;
    return int(std::clamp<double>(fit, INT_MIN, INT_MAX));
}

// Nothing without a size.
std::optional<QSize> FitSize(QSize size, QSize screen)
{
    if (size.isEmpty()) {
        return std::nullopt;
    }
    const auto ratio = [](int side, int limit) {
        return limit == 0 ? HUGE_VAL : double(side) / limit;
    };
    const double rw = ratio(size.width(), screen.width());
    const double rh = ratio(size.height(), screen.height());
    return size.width() <= screen.width() ? size
           : rw > rh                      ? QSize(screen.width(), FitSide(size.height(), rw))
           : rw == rh                     ? screen
                                          : QSize(FitSide(size.width(), rh), screen.height());
}

// Whether the image is read anew, as if its fitted copy's raw pixels were a file.
bool Resize(QImage& image, QSize screen)
{
    const QSize fit = FitSize(image.size(), screen).value_or(image.size());
    if (fit == image.size()) {
        return false;
    }
    const QImage copy = fit.isValid() ? image.scaled(fit) : QImage();
    const QImage loaded = Pictures::Decoded(
        QByteArray(reinterpret_cast<const char*>(copy.constBits()), int(copy.sizeInBytes())));
    image = loaded.isNull() ? image : loaded;
    return true;
}

int Side(ByteSource& source)
{
    return source.Flag() ? source.Between(-2, 12) : int(source.Word());
}

void Decode(ByteSource& source, CQBImageDecode& decoder, Pictures::Recorder& recorder,
            Reference& reference)
{
    static const QTemporaryDir place;
    const QString names[] = {place.filePath("a"), place.filePath("a.pNg"), place.filePath("apng")};
    const QString name = names[source.Between(0, 2)];
    const QByteArray bytes = Pictures::Any(source);
    Pictures::Put(name, bytes);
    QImage image = Pictures::Decoded(bytes);
    const bool isMasked = name.endsWith(".pNg") || image.hasAlphaChannel();
    const QImage mask = image.convertToFormat(QImage::Format_Indexed8);

    const int given = source.Between(0, 15); // from 13 on null, nothing, the placeholder
    CQWString path{given == 15   ? "NoPic.BMP"
                   : given == 14 ? ""
                                 : QString(name).replace('/', source.Flag() ? '/' : '\\')};
    CQWString* const pPath = given == 13 ? nullptr : &path;
    const int id = source.Byte();
    const bool isFit = source.Flag();
    const int operation = source.Between(0, 2);
    const bool isRefused = given > 13 || (given == 13 && operation != 2);
    const int result = operation == 0   ? decoder.DecodeImgFileL(pPath, id, isFit)
                       : operation == 1 ? decoder.DecodeImgFile(pPath, id, isFit)
                                        : decoder.DecodeImgFileSpecDispMode(path, id, isFit);
    MODEL_CHECK(isRefused || path == CQWString(name));
    if (operation != 0 && reference.isBusy) {
        MODEL_CHECK(result == 0);
        return;
    }
    reference.isFit = operation == 0 ? reference.isFit : isFit;
    if (isRefused) {
        MODEL_CHECK(result == 0 && recorder.Take().empty());
        return;
    }
    reference.isBusy = isMasked && operation == 0;
    const bool isResized = !isMasked && reference.isFit && Resize(image, reference.screen);
    MODEL_CHECK(result == (isMasked ? 0 : 1));
    MODEL_CHECK(decoder.GetFileName() == CQWString(name));
    MODEL_CHECK(recorder.Take() == Pictures::Told(isMasked || isResized ? 0 : 1, {1, id, 0}));
    reference.isFetched = source.Flag();
    if (!reference.isFetched) {
        return; // the next decode deletes them
    }
    const std::unique_ptr<QImage> own(decoder.GetImage()), ownMask(decoder.GetMaskImage());
    MODEL_CHECK(decoder.GetImage() == own.get()); // it is not given up
    MODEL_CHECK(Pictures::AreSame(own.get(), isMasked ? nullptr : &image));
    MODEL_CHECK(Pictures::AreSame(ownMask.get(), isMasked ? &mask : nullptr));
}

void Fit(ByteSource& source, CQBImageDecode& decoder, Reference& reference)
{
    QSize fit(-7, -7);
    const int width = Side(source), height = Side(source);
    const auto expected = FitSize({width, height}, reference.screen);
    MODEL_CHECK(decoder.GetFitScreenSize({width, height}, fit) == (expected ? 1 : 0));
    MODEL_CHECK(fit == expected.value_or(QSize(-7, -7)));
    // The start of a grey map, or of any other picture, may stand in the pixels of a reduced copy:
    // in every second column of the middle row, with nothing around it.
    const QByteArray pixels = source.Flag() ? Pictures::Any(source) : "P5 2 1 255 ab";
    const int length = std::clamp(int(pixels.size()), 1, 2000);
    QImage image(2 * length, 3, QImage::Format_Grayscale8);
    image.fill(0);
    for (int i = 0; i < std::min(length, int(pixels.size())); ++i) {
        image.scanLine(1)[2 * i] = uchar(pixels[i]);
    }
    if (width % 2 == 0) {
        reference.screen = QSize(length, 12);
        decoder.SetScreenSize(reference.screen);
    }
    QImage resized = image;
    const bool acts = Resize(resized, reference.screen);
    MODEL_CHECK(decoder.ResizeImageToFitScreen(&image) == (acts ? 1 : 0));
    MODEL_CHECK(Pictures::AreSame(&image, &resized));
    reference.isBusy = reference.isBusy && !acts;
}

} // namespace

void DriveModel(ByteSource& source)
{
    Pictures::Recorder recorder;
    Reference reference;
    const std::unique_ptr<CQBImageDecode> decoder(CQBImageDecode::NewL(enFormat_RGB16, &recorder));
    for (int steps = 0; steps < 8 && !source.IsEmpty(); ++steps) {
        if (source.Between(0, 3) == 0) {
            reference.screen = QSize(Side(source), Side(source));
            decoder->SetScreenSize(reference.screen);
        }
        Decode(source, *decoder, recorder, reference);
        Fit(source, *decoder, reference);
    }
    if (!reference.isFetched) {
        delete decoder->GetImage();
        delete decoder->GetMaskImage();
    }
}
