// Decoding a picture of an account from its file into the form in which a client draws it. What
// bounds it is Qt's own decoder; the library adds a look at the headers.

#include "Photo.h"
#include "Row.h"

#include <CQImageDecode.h>
#include <CQWString.h>

#include <memory>

namespace
{

QImage DecodeWithLibrary(const QString& path)
{
    CQImageDecode decoder(enFormat_ARGB32_Premultiplied);
    CQWString name(path);
    decoder.DecodeImgFileL(&name, 1);
    return *std::unique_ptr<QImage>(decoder.GetImage());
}

QImage DecodeWithQt(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void AddRow(const std::string& work, const char* format, QImage::Format pixels)
{
    const auto photo = std::make_shared<Photo>(format, pixels, 320, 240);
    Row("decode " + work)
        .Library([photo] { return DecodeWithLibrary(photo->GetPath()); })
        .Peer("QImage", 0.98, [photo] { return DecodeWithQt(photo->GetPath()); });
}

const bool rows = (AddRow("png 320 x 240", "png", QImage::Format_RGB32),
                   AddRow("png with alpha 320 x 240", "png", QImage::Format_ARGB32),
                   AddRow("jpg 320 x 240", "jpg", QImage::Format_RGB32), true);

} // namespace
