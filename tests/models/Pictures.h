#pragma once

#include "Model.h"

#include <CImgDecodeNotify.h>

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QtEndian>

#include <zlib.h>

#include <array>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// Tiny pictures whose content is foreign while their structure is kept: chunks of a PNG with
/// their checksums, the entry of an icon, segments of a JPEG.
namespace Pictures
{

constexpr qint64 limit = qint64{128} << 20;

struct Picture {
    QByteArray bytes;
    qint64 beside = 0; // what counts beside the pixels that Qt announces
};

using Parts = std::vector<QByteArray>;
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

template <class Number>
QByteArray Packed(Number number, bool big = true)
{
    const Number packed = big ? qToBigEndian(number) : qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char*>(&packed), sizeof packed);
}

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

/// Drops, doubles, swaps or changes parts, or leaves them.
inline Parts Shuffled(ByteSource& source, Parts parts)
{
    for (int steps = source.Between(0, 3); steps > 0 && !parts.empty(); --steps) {
        const auto at = parts.begin() + source.Between(0, int(parts.size()) - 1);
        const int kind = source.Between(0, 3);
        if (kind == 0) {
            parts.erase(at);
        } else if (kind == 1) {
            parts.insert(at, QByteArray(*at));
        } else if (kind == 2) {
            std::swap(parts.front(), *at);
        } else {
            (*at)[source.Between(0, int(at->size()) - 1)] = char(source.Byte());
        }
    }
    return parts;
}

/// The chunks of a tiny PNG, each without length and checksum.
inline Parts PngChunks(QImage::Format format)
{
    const QByteArray whole = Encoded("png", Plain(format));
    Parts chunks;
    for (int at = 8; at < int(whole.size()); at += 8 + int(chunks.back().size())) {
        chunks.push_back(whole.mid(at + 4, 4 + qFromBigEndian<int>(whole.constData() + at)));
    }
    return chunks;
}

inline Picture Png(ByteSource& source)
{
    static const Parts variants[] = {
        PngChunks(QImage::Format_ARGB32), PngChunks(QImage::Format_RGB32),
        PngChunks(QImage::Format_Grayscale8), PngChunks(QImage::Format_RGBA64)};
    // 4 MiB of text, which takes 4 KB.
    static const QByteArray text =
        QByteArray("zTXtk\0\0", 7) + qCompress(QByteArray(4 << 20, 'a')).mid(4);
    Parts chunks = Shuffled(source, variants[source.Between(0, 3)]);
    const int count = source.Byte() == 255 ? source.Between(1, 6) : 0;
    chunks.insert(chunks.begin() + (chunks.empty() ? 0 : source.Between(0, int(chunks.size()))),
                  size_t(count), text);
    Picture picture{"\x89PNG\r\n\x1a\n"};
    bool ended = false;
    for (const QByteArray& chunk : chunks) {
        const auto* const data = reinterpret_cast<const Bytef*>(chunk.constData());
        picture.bytes += Packed(quint32(chunk.size()) - 4) + chunk +
                         Packed(quint32(crc32(0, data, uInt(chunk.size()))));
        ended = ended || chunk.startsWith("IEND");
        picture.beside += !ended && chunk == text ? 8 * (chunk.size() - 4 + (4 << 20)) : 0;
    }
    return picture;
}

/// An icon whose directory announces any size for the PNG inside.
inline Picture Icon(ByteSource& source)
{
    const char width = char(source.Between(0, 63)), height = char(source.Between(0, 63));
    Picture picture = Png(source);
    const QByteArray header = picture.bytes.mid(16, 8).leftJustified(8, '\0');
    const qint64 pixels = qint64{qFromBigEndian<quint32>(header.constData())} *
                          qFromBigEndian<quint32>(header.constData() + 4);
    picture.beside += picture.bytes.size() + (pixels > limit ? limit : pixels * 4);
    picture.bytes = QByteArray("\0\0\1\0\1\0", 6) + width + height +
                    QByteArray("\0\0\1\0\x20\0", 6) + Packed(int(picture.bytes.size()), false) +
                    Packed(22, false) + picture.bytes;
    return picture;
}

/// The parts of a tiny JPEG behind its first mark, each from one mark to the next.
inline Parts JpegParts(bool progressive)
{
    Parts parts;
    const QByteArray whole = Encoded("jpg", Plain(QImage::Format_RGB32), progressive);
    for (const QByteArray& part : whole.mid(3).split('\xFF')) {
        parts.push_back('\xFF' + part);
    }
    return parts;
}

inline Picture Jpeg(ByteSource& source)
{
    static const Parts variants[] = {JpegParts(false), JpegParts(true)};
    Picture picture{"\xFF\xD8"};
    for (const QByteArray& part : Shuffled(source, variants[source.Between(0, 1)])) {
        picture.bytes += part;
    }
    return picture;
}

inline Picture Any(ByteSource& source)
{
    const int kind = source.Between(0, 6);
    Picture picture = kind < 2   ? Png(source)
                      : kind < 4 ? Icon(source)
                      : kind < 6 ? Jpeg(source)
                                 : Picture{QByteArray::fromStdString(source.Bytes(255))};
    if (source.Between(0, 3) == 0 && picture.beside == 0) {
        picture.bytes.truncate(source.Between(0, 1023));
    }
    return picture;
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
inline QImage Decoded(Picture picture)
{
    QBuffer buffer(&picture.bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (picture.beside > limit) {
        return QImage();
    }
    const QSize size = reader.size();
    const qint64 pixels = std::abs(qint64{size.width()}) * std::abs(qint64{size.height()});
    return pixels * 4 + picture.beside > limit ? QImage() : reader.read();
}

inline bool AreSame(const QImage* own, const QImage* expected)
{
    return own == nullptr || expected == nullptr
               ? own == expected
               : own->format() == expected->format() && *own == *expected;
}

} // namespace Pictures
