// The plain decoder beside what Qt makes of the same pictures: which slot an operation fills, what
// it converts, and what it tells.

#include "Pictures.h"

#include <CQImageDecode.h>
#include <CQSString.h>
#include <CQWString.h>

#include <optional>

namespace
{

using Slot = std::optional<QImage>;

// What can be told of a decoder from outside.
struct Reference {
    Slot image, mask;
    int id = 0;
    CQWString name;
};

QImage Converted(const QImage& image, int mode)
{
    return mode > 0 && mode < QImage::NImageFormats
               ? image.convertToFormat(static_cast<QImage::Format>(mode))
               : QImage();
}

void CheckSlot(const QImage* taken, Slot& expected)
{
    const std::unique_ptr<const QImage> own(taken);
    MODEL_CHECK(Pictures::AreSame(taken, expected ? &*expected : nullptr));
    expected.reset();
}

void TakeImages(ByteSource& source, CQImageDecode& decoder, Reference& reference)
{
    QImage *image = nullptr, *mask = nullptr;
    MODEL_CHECK(decoder.GetImageFromPng(&image, nullptr) == 0);
    MODEL_CHECK(decoder.GetImageFromPng(nullptr, &mask) == 0);
    const int taken = source.Between(0, 2); // the image, both, or neither
    if (taken == 0) {
        CheckSlot(decoder.GetImage(), reference.image);
    } else if (taken == 1) {
        MODEL_CHECK(decoder.GetImageFromPng(&image, &mask) == 1);
        CheckSlot(image, reference.image);
        CheckSlot(mask, reference.mask);
    }
}

// The names under which one file can be given, by directory and name or as one path.
struct Names {
    QTemporaryDir place;
    CQWString dir{QString(place.path() + '/')}, name{QString("NoPic.BMP")};
    CQWString path{QString(place.filePath("NoPic.BMP"))}, none;
};

void Decode(ByteSource& source, CQImageDecode& decoder, Pictures::Recorder& recorder,
            Reference& reference, int mode)
{
    static Names names;
    QByteArray bytes = Pictures::Any(source);
    const QImage image = Pictures::Decoded(bytes);
    const int operation = source.Between(0, 5);
    const int id = source.Byte();
    const bool isFile = operation < 4, isConverted = operation == 0 || operation == 2;
    CQSString data, format;
    data.AppendData(reinterpret_cast<unsigned char*>(bytes.data()), int(bytes.size()));
    // One argument may be missing, or the path be the placeholder for no picture.
    const int missing = id / 16;
    CQWString* const absent = missing % 2 == 0 ? nullptr : &names.none;
    CQWString* const path = missing < 12 ? &names.path : missing < 14 ? &names.name : absent;
    CQWString* const dir = missing == 12 || missing == 13 ? absent : &names.dir;
    CQWString* const name = missing == 14 || missing == 15 ? absent : &names.name;
    format.AppendData(missing < 12 ? "x" : "");
    Pictures::Put(names.place.filePath("NoPic.BMP"), bytes);
    const int result = operation == 0   ? decoder.DecodeImgFileL(path, id)
                       : operation == 1 ? decoder.DecodeImgFileL(dir, name, id)
                       : operation == 2 ? decoder.DecodePngFileL(path, id)
                       : operation == 3 ? decoder.DecodePngFileL(dir, name, id)
                       : operation == 4 ? decoder.DecodePngBufL(data, id)
                                        : decoder.DecodeImgBufL(data, format, id);
    const bool runs = isFile ? missing < 12 : !data.IsEmpty() && (operation == 4 || missing < 12);
    MODEL_CHECK(result == (runs ? 1 : 0));
    if (runs && isFile) {
        reference.id = id;
        reference.name = isConverted ? names.path : names.name;
    }
    if (runs && operation != 4) {
        reference.image = isConverted ? Converted(image, mode) : image;
    }
    if (runs && operation >= 2 && operation <= 4) {
        reference.mask = isFile ? Converted(image, QImage::Format_Indexed8) : image;
    }
    const int hasAlpha = operation == 3 && image.hasAlphaChannel() ? 1 : 0;
    MODEL_CHECK(recorder.Take() == Pictures::Told(runs ? 1 : 0, {1, reference.id, hasAlpha}));
    MODEL_CHECK(decoder.GetFileName() == reference.name);
}

} // namespace

void DriveModel(ByteSource& source)
{
    Pictures::Recorder recorder;
    Reference reference;
    const int mode = source.Between(-1, QImage::NImageFormats);
    const std::unique_ptr<CQImageDecode> decoder(CQImageDecode::NewL(mode, &recorder));
    for (int steps = 0; steps < 8 && !source.IsEmpty(); ++steps) {
        Decode(source, *decoder, recorder, reference, mode);
        TakeImages(source, *decoder, reference);
    }
}
