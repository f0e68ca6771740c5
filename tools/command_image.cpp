// image: what the decoders make of an image file.

#include "Command.h"
#include "InputOutput.h"

#include <CImgDecodeNotify.h>
#include <CQBImageDecode.h>
#include <CQImageDecode.h>
#include <CQWString.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace
{

struct Decoded {
    std::unique_ptr<QImage> image;
    std::unique_ptr<QImage> mask;
};

Decoded Decode(const QString& path)
{
    if (!QFileInfo(path).isFile() || !QFileInfo(path).isReadable()) {
        throw Failure(path + QStringLiteral(": is no file that can be read"));
    }
    const std::unique_ptr<CQImageDecode> decoder(CQImageDecode::NewL(enFormat_ARGB32, nullptr));
    CQWString wide(path);
    decoder->DecodePngFileL(&wide, 1);
    QImage* image = nullptr;
    QImage* mask = nullptr;
    decoder->GetImageFromPng(&image, &mask);
    Decoded decoded{std::unique_ptr<QImage>(image), std::unique_ptr<QImage>(mask)};
    if (!image || image->isNull() || !mask || mask->isNull()) {
        throw Failure(path + QStringLiteral(": does not decode, or is beyond 128 MB in memory"));
    }
    return decoded;
}

QSize ParseSize(const QString& text)
{
    const QStringList sides = text.split(QLatin1Char('x'));
    if (sides.size() != 2) {
        throw UsageError(QStringLiteral("--fit takes WxH, such as 480x800, got '%1'").arg(text));
    }
    const auto side = [](const QString& number) {
        return static_cast<int>(ParseNumber(number, QStringLiteral("--fit"), 1, 32767));
    };
    return {side(sides[0]), side(sides[1])};
}

QSize FittedSize(const QSize& size, const QSize& screen)
{
    const std::unique_ptr<CQBImageDecode> decoder(CQBImageDecode::NewL(enFormat_RGB32, nullptr));
    decoder->SetScreenSize(screen);
    QSize fitted;
    decoder->GetFitScreenSize(size, fitted);
    return fitted;
}

QByteArray PngOf(const QImage& image)
{
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) {
        throw Failure(QStringLiteral("the image makes no PNG"));
    }
    return png;
}

QString SizeText(const QSize& size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

void Print(const QImage& image, const QSize& fitted, bool json)
{
    if (json) {
        QJsonObject object{{QStringLiteral("width"), image.width()},
                           {QStringLiteral("height"), image.height()},
                           {QStringLiteral("bytes"), qint64(image.sizeInBytes())}};
        if (fitted.isValid()) {
            object.insert(QStringLiteral("fitted"), SizeText(fitted));
        }
        std::fputs(QJsonDocument(object).toJson().constData(), stdout);
        return;
    }
    std::printf("size    %s\n", qUtf8Printable(SizeText(image.size())));
    if (fitted.isValid()) {
        std::printf("fitted  %s\n", qUtf8Printable(SizeText(fitted)));
    }
    std::printf("memory  %lld bytes\n", static_cast<long long>(image.sizeInBytes()));
}

void Declare(QCommandLineParser& parser)
{
    parser.addOptions({
        {QStringLiteral("fit"), QStringLiteral("Also the size at which a screen of WxH shows it."),
         QStringLiteral("WxH")},
        {QStringLiteral("mask"), QStringLiteral("With --out: write the 8-bit mask.")},
        {{QStringLiteral("o"), QStringLiteral("out")},
         QStringLiteral("Write what was decoded to PNG, in the fitted size with --fit."),
         QStringLiteral("PNG")},
    });
    DeclareJson(parser);
}

int Run(const QCommandLineParser& parser)
{
    RequireArguments(parser, 1, 1);
    const bool fit = parser.isSet(QStringLiteral("fit"));
    const bool isOut = parser.isSet(QStringLiteral("out"));
    if (parser.isSet(QStringLiteral("mask")) && !isOut) {
        throw UsageError(QStringLiteral("--mask wants --out"));
    }
    const QSize screen = fit ? ParseSize(parser.value(QStringLiteral("fit"))) : QSize();
    const Decoded decoded = Decode(parser.positionalArguments()[0]);
    const QSize fitted = fit ? FittedSize(decoded.image->size(), screen) : QSize();
    if (isOut) {
        const QImage& image = parser.isSet(QStringLiteral("mask")) ? *decoded.mask : *decoded.image;
        WriteOutput(parser,
                    PngOf(fit ? image.scaled(fitted.expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio,
                                             Qt::SmoothTransformation)
                              : image));
    }
    Print(*decoded.image, fitted, parser.isSet(QStringLiteral("json")));
    return 0;
}

} // namespace

const Command commandImage = {"image",
                              " FILE",
                              "Decode an image file; print its size, write it as PNG.",
                              "orvotool image examples/data/avatars/anna.jpg --fit 480x854",
                              Declare,
                              Run};
