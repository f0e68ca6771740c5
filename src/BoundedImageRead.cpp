#include "BoundedImageRead.h"

#include "PictureDemand.h"
#include "TDisplayMode.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPixelFormat>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace
{

constexpr qint64 maxImageBytes = qint64{128} * 1024 * 1024;
constexpr qint64 maxPeakBytes = 3 * maxImageBytes;

// QImage looks the number up in a table without checking it.
bool IsFormat(int nFormat)
{
    return nFormat > QImage::Format_Invalid && nFormat < QImage::NImageFormats;
}

int DepthOf(int nFormat)
{
    return IsFormat(nFormat)
               ? QImage::toPixelFormat(static_cast<QImage::Format>(nFormat)).bitsPerPixel()
               : 0;
}

// Bytes of an image, as far as they can be within the limit; some number above it otherwise.
qint64 ImageBytes(qint64 width, qint64 height, int depth)
{
    const qint64 pixels =
        width > 0 && height > maxImageBytes / width ? maxImageBytes : width * height;
    return pixels * std::max(depth, 32) / 8;
}

// Qt's JPEG reader leaves the number of the format uninitialised when the header does not parse,
// and the size then invalid. A bitmap that stands upright has a negative height, and no more than
// 32 bits a pixel.
qint64 AnnouncedBytes(const QImageReader& reader)
{
    const QSize size = reader.size();
    const int depth = size.isValid() ? DepthOf(reader.imageFormat()) : 0;
    return ImageBytes(std::abs(qint64{size.width()}), std::abs(qint64{size.height()}), depth);
}

bool IsWithinLimits(qint64 image, qint64 expanded, qint64 working)
{
    return image + expanded <= maxImageBytes && image + expanded + working < maxPeakBytes;
}

bool IsWithinLimits(const QImageReader& reader, qint64 taken)
{
    const auto demand = PictureDemand::Of(*reader.device(), maxImageBytes);
    const qint64 working = taken + demand.nWorking;
    // Asked for the size, Qt reads texts and profiles: they must be known to be harmless before.
    if (!IsWithinLimits(0, demand.nExpanded, working)) {
        return false;
    }
    const qint64 embedded = ImageBytes(demand.nWidth, demand.nHeight, demand.nDepth);
    const qint64 image = std::max(AnnouncedBytes(reader), embedded);
    return IsWithinLimits(image, demand.nExpanded,
                          working + image / 4 * demand.nWorkingBytesPerPixel);
}

bool OpenRegular(QFile& file)
{
    return !BoundedImageRead::IsSpecialFile(file.fileName()) && file.open(QIODevice::ReadOnly);
}

// The names that QImageReader would try.
bool OpenPicture(QFile& file)
{
    const QString name = file.fileName();
    if (BoundedImageRead::IsSpecialFile(name)) {
        return false;
    }
    bool open = file.open(QIODevice::ReadOnly);
    const QList<QByteArray> extensions =
        open ? QList<QByteArray>() : QImageReader::supportedImageFormats();
    for (auto it = extensions.begin(); !open && it != extensions.end(); ++it) {
        file.setFileName(name + QLatin1Char('.') + QLatin1String(*it));
        open = OpenRegular(file);
    }
    return open;
}

} // namespace

bool BoundedImageRead::IsSpecialFile(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

bool BoundedImageRead::IsWithinLimit(const QSize& size, int nDepth)
{
    return ImageBytes(std::abs(qint64{size.width()}), std::abs(qint64{size.height()}), nDepth) <=
           maxImageBytes;
}

QImage BoundedImageRead::Read(QImageReader& reader, qint64 nTaken)
{
    auto* const file = qobject_cast<QFile*>(reader.device());
    if (file != nullptr && !file->isOpen() && !OpenPicture(*file)) {
        return QImage();
    }
    reader.setDecideFormatFromContent(true);
    return IsWithinLimits(reader, nTaken) ? reader.read() : QImage();
}

QImage BoundedImageRead::FromFile(const QString& path)
{
    QImageReader reader(path);
    return Read(reader);
}

QImage BoundedImageRead::FromDevice(QIODevice& device, qint64 nTaken)
{
    QImageReader reader(&device);
    return Read(reader, nTaken);
}

QImage BoundedImageRead::FromBytes(const char* pData, int nSize, qint64 nTaken)
{
    QBuffer buffer;
    buffer.setData(QByteArray::fromRawData(pData, nSize));
    buffer.open(QIODevice::ReadOnly);
    return FromDevice(buffer, nTaken);
}

QImage BoundedImageRead::Converted(QImage image, int nFormat)
{
    if (!IsFormat(nFormat) || !IsWithinLimit(image.size(), DepthOf(nFormat))) {
        return QImage();
    }
    // In place saves a copy of the image in time and memory. Among formats that came later some
    // generations of Qt give other pixels in place than in a copy: those are copied.
    const bool inPlace = std::max<int>(image.format(), nFormat) <= enFormat_ARGB4444_Premultiplied;
    const auto format = static_cast<QImage::Format>(nFormat);
    return inPlace ? std::move(image).convertToFormat(format) : image.convertToFormat(format);
}
