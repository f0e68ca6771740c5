#pragma once

#include <CQWString.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

/// A directory of the test's own, gone with the object.
class TemporaryFiles
{
public:
    QString NameOf(const char* file) const { return m_dir.filePath(QString::fromUtf8(file)); }
    CQWString Path(const char* file) const { return NameOf(file); }

    CQWString Add(const char* name, const QByteArray& content) const
    {
        QFile file(NameOf(name));
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return Path(name);
    }

    QByteArray Content(const char* name) const
    {
        QFile file(NameOf(name));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

private:
    QTemporaryDir m_dir;
};

inline QByteArray Png(int width, int height, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(width, height, format);
    image.fill(Qt::red);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

/// The two headers of a bitmap file, little-endian, that claims 60000 x 60000 pixels of 24 bits.
inline QByteArray HugeBitmap()
{
    return QByteArray::fromHex("424d3600000000000000360000002800000060ea000060ea000001001800") +
           QByteArray(24, '\0');
}
