#pragma once

#include <QImage>

class QImageReader;
class QIODevice;
class QSize;
class QString;

/// Decoding of images that come from elsewhere. The format is detected from the content alone,
/// and an image that would take more than 128 MB is refused before memory is asked for: some
/// generations of Qt have no such limit, and a header of a few bytes can claim any size. Pixels
/// count with 32 bits at least: that is what handling them takes. With them counts what expands
/// beside them, each text and profile of a PNG eight times, for so often Qt keeps it, and the
/// picture inside an icon.
///
/// A decode as a whole, with the conversion of the image and the making of its mask, stays below
/// three times the limit at its peak; a picture that would not, such as a very large one in
/// several scans, is refused as well. What is refused or does not decode is a null image.
namespace BoundedImageRead
{

/// Reads the image that \a reader stands on. Like QImage::load(), a name without such a file is
/// also tried with the extensions of the known formats. A file that is no regular one, such as
/// a device or a pipe, is not opened.
/// \param nTaken  bytes that the decode as a whole has already taken.
QImage Read(QImageReader& reader, qint64 nTaken = 0);
/// Reads the file at \a path, as Read() does.
QImage FromFile(const QString& path);
/// Reads an open device that is not sequential, from its beginning.
QImage FromDevice(QIODevice& device, qint64 nTaken = 0);
/// Reads \a nSize bytes of an encoded image.
QImage FromBytes(const char* pData, int nSize, qint64 nTaken = 0);

/// True when something stands at \a path that is neither a file nor a directory. To open it may
/// wait for ever, and to read it may never end.
bool IsSpecialFile(const QString& path);

/// True when an image of \a size pixels of \a nDepth bits stays within the limit.
bool IsWithinLimit(const QSize& size, int nDepth);

/// \a image converted to the QImage::Format numbered \a nFormat; null when there is no such
/// format or the converted image passes the limit. An image that is given up with std::move() is
/// converted in place where that can be.
QImage Converted(QImage image, int nFormat);

} // namespace BoundedImageRead
