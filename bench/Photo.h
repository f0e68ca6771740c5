#pragma once

#include <QImage>
#include <QString>
#include <QTemporaryDir>

/// A file with a picture of `width` x `height` pixels, as hard to compress as a photograph. It
/// lives as long as the object.
class Photo
{
public:
    Photo(const char* format, QImage::Format pixels, int width, int height)
        : m_path(m_directory.filePath(QStringLiteral("photo.") + QLatin1String(format)))
    {
        QImage image(width, height, QImage::Format_ARGB32);
        unsigned noise = 1;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                noise = noise * 1103515245U + 12345U;
                const int grain = int(noise >> 28);
                image.setPixel(x, y,
                               qRgba(x * 240 / width + grain, y * 240 / height + grain,
                                     (x + y) % 240 + grain, 128 + x % 128));
            }
        }
        image.convertToFormat(pixels).save(m_path, format);
    }

    const QString& GetPath() const { return m_path; }

private:
    QTemporaryDir m_directory;
    QString m_path;
};
