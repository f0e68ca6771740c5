#include "BoundedImageRead.h"

#include <QBuffer>
#include <QImageReader>
#include <QPixelFormat>

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr qint64 maxImageBits = qint64{128} * 1024 * 1024 * 8;

} // namespace

bool BoundedImageRead::IsWithinLimit(const QSize& size, int nDepth)
{
    const qint64 width = std::abs(qint64{size.width()});
    const qint64 height = std::abs(qint64{size.height()});
    return width * height <= maxImageBits / std::max(nDepth, 32);
}

QImage BoundedImageRead::Read(QImageReader& reader)
{
    reader.setDecideFormatFromContent(true);
    const int depth = QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel();
    return IsWithinLimit(reader.size(), depth) ? reader.read() : QImage();
}

QImage BoundedImageRead::FromFile(const QString& path)
{
    QImageReader reader(path);
    return Read(reader);
}

QImage BoundedImageRead::FromDevice(QIODevice& device)
{
    QImageReader reader(&device);
    return Read(reader);
}

QImage BoundedImageRead::FromBytes(const char* pData, int nSize)
{
    QBuffer buffer;
    buffer.setData(QByteArray::fromRawData(pData, nSize));
    buffer.open(QIODevice::ReadOnly);
    return FromDevice(buffer);
}

QImage BoundedImageRead::Converted(const QImage& image, int nFormat)
{
    // QImage looks the number up in a table without checking it.
    if (nFormat <= QImage::Format_Invalid || nFormat >= QImage::NImageFormats) {
        return QImage();
    }
    return image.convertToFormat(static_cast<QImage::Format>(nFormat));
}
