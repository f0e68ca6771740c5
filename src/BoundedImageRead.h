#pragma once

#include <QImage>

class QImageReader;
class QIODevice;
class QSize;
class QString;

/// Decoding of images that come from elsewhere. The format is detected from the content alone,
/// and an image that would take more than 128 MB is refused before memory is asked for: some
/// generations of Qt have no such limit, and a header of a few bytes can claim any size. What
/// does not decode is a null image.
namespace BoundedImageRead
{

/// Reads the image that \a reader stands on.
QImage Read(QImageReader& reader);
/// Reads the file at \a path. Like QImage::load(), a name without such a file is also tried with
/// the extensions of the known formats.
QImage FromFile(const QString& path);
/// Reads an open device.
QImage FromDevice(QIODevice& device);
/// Reads \a nSize bytes of an encoded image.
QImage FromBytes(const char* pData, int nSize);

/// True when an image of \a size pixels of \a nDepth bits stays within the limit. Pixels count
/// with 32 bits at least: that is what handling them takes.
bool IsWithinLimit(const QSize& size, int nDepth);

/// \a image converted to the QImage::Format numbered \a nFormat; null when there is no such format.
QImage Converted(const QImage& image, int nFormat);

} // namespace BoundedImageRead
