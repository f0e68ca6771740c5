#pragma once

#include "Model.h"

#include <CImgDecodeNotify.h>

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtEndian>

#include <array>
#include <functional>
#include <malloc.h>
#include <memory>
#include <utility>
#include <vector>

/// Small pictures, whole and damaged, and what Qt itself makes of them.
namespace Pictures
{

using Told = std::vector<std::array<int, 3>>; // status, id, alpha

struct Recorder : CImgDecodeNotify {
    void OnImageDecoded(int status, int id, int hasAlpha) override
    {
        told.push_back({status, id, hasAlpha});
        std::exchange(onDecoded, [] {})();
    }
    /// Returns what was recorded since the last call and starts over.
    Told Take() { return std::exchange(told, {}); }

    Told told;
    std::function<void()> onDecoded = [] {}; // at the next one
};

inline QByteArray Encoded(const char* format, const QImage& image, bool progressive = false)
{
    QBuffer buffer;
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    writer.write(image);
    return buffer.data();
}

inline QImage Plain(QImage::Format format, int width = 9, int height = 5)
{
    QImage image(width, height, format);
    image.fill(QColor(200, 100, 20, 99));
    return image;
}

inline QByteArray Png(QImage::Format format, int width = 9, int height = 5)
{
    return Encoded("png", Plain(format, width, height));
}

inline QByteArray Little(int number)
{
    const int packed = qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char*>(&packed), sizeof packed);
}

/// An icon, or by another start a cursor, over any content.
inline QByteArray Icon(const QByteArray& content,
                       const QByteArray& start = QByteArray("\0\0\1\0\1\0\x10\x10", 8))
{
    return start + QByteArray("\0\0\1\0\x20\0", 6) + Little(int(content.size())) + Little(22) +
           content;
}

/// A picture with up to three bytes changed, or foreign bytes; either may be cut.
inline QByteArray Any(ByteSource& source)
{
    mallopt(M_PERTURB, 0x5A); // fresh memory holds anything
    static const QByteArray whole[] = {
        Png(QImage::Format_ARGB32),
        Png(QImage::Format_RGBA64),
        Png(QImage::Format_Grayscale8),
        Encoded("jpg", Plain(QImage::Format_RGB32)),
        Encoded("jpg", Plain(QImage::Format_RGB32), true),
        Icon(Png(QImage::Format_ARGB32)),
    };
    const int kind = source.Between(0, 6);
    QByteArray bytes = kind == 6 ? QByteArray::fromStdString(source.Bytes(255)) : whole[kind];
    for (int steps = kind == 6 ? 0 : source.Between(0, 3); steps > 0; --steps) {
        bytes[source.Between(0, int(bytes.size()) - 1)] = char(source.Byte());
    }
    if (source.Between(0, 3) == 0) {
        bytes.truncate(source.Between(0, 1023));
    }
    return bytes;
}

/// Makes a new file: one that is written over is forced to the disk by some file systems.
inline void Put(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    file.remove();
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

/// What Qt itself makes of a picture, unless the limit forbids it.
inline QImage Decoded(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    const qint64 pixels = std::abs(qint64{size.width()}) * std::abs(qint64{size.height()});
    return pixels * 4 > qint64{128} << 20 ? QImage() : reader.read();
}

inline bool AreSame(const QImage* own, const QImage* expected)
{
    return own == nullptr || expected == nullptr
               ? own == expected
               : own->format() == expected->format() && *own == *expected;
}

} // namespace Pictures
