// A contact sheet of people's pictures, as they come and as a handset shows them.
//
//     avatars [--root DIR] [PICTURES_DIR]
//
// It decodes the PNG, JPEG, GIF and BMP files of PICTURES_DIR with both decoders, fits them to a
// handset's screen and writes below DIR: the fitted pictures, where CQPath names an account's
// head pictures; the sheet, avatars.png; and two compressed archives, of the sheet and of a
// message history, which it reads back and compares. A file that does not decode is crossed out
// on the sheet and named on stderr.
//
// Exit codes: 0 the archives were found equal; 1 something could not be written or differs; 2 the
// arguments or the directory of pictures are wrong, and nothing was written.

#include "support/SampleFailure.h"

#include <BaseUtil.h>
#include <CImgDecodeNotify.h>
#include <CQBImageDecode.h>
#include <CQFile.h>
#include <CQImageDecode.h>
#include <CQSString.h>
#include <CQSaveFile.h>
#include <CQWString.h>
#include <CQZipFile.h>
#include <Orvo/CQPath.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace
{

constexpr unsigned int accountNumber = 10003;
constexpr QSize screenSize(480, 854);
constexpr QSize thumbnailSize(184, 184);
constexpr size_t maxPictures = 250; // a sheet of 50 rows takes 90 MB in memory

struct Options {
    QString root;
    QString pictures;
};

struct Picture {
    QString name; // printable
    QSize size;
    QSize fitted;           // invalid, as size is, when the file does not decode
    QByteArray headPicture; // in fitted size, as PNG
    QImage thumbnail;
    QString plainOutcome;   // what CQImageDecode gave
    QString fittingOutcome; // what CQBImageDecode gave
};

QString SizeText(const QSize& size)
{
    return size.isValid() ? QStringLiteral("%1 \u00D7 %2").arg(size.width()).arg(size.height())
                          : QStringLiteral("-");
}

// --- Decoding ----------------------------------------------------------------------------

// Keeps what a decoder tells, which it does before its decode operation returns.
class Recorder : public CImgDecodeNotify
{
public:
    void OnImageDecoded(int, int, int hasAlpha) override
    {
        m_told = hasAlpha == 1 ? "notified of alpha" : "notified";
    }

    QString Outcome(const char* slot, const QImage* image) const
    {
        const bool empty = image == nullptr || image->isNull();
        return QStringLiteral("%1, %2").arg(QLatin1String(empty ? "nothing" : slot),
                                            QLatin1String(m_told));
    }

private:
    const char* m_told = "not notified";
};

// The decoder that always gives the image. Of its operations only the one for PNG files by
// directory and name tells of alpha.
QImage DecodePlain(CQWString directory, CQWString name, int id, QString& outcome)
{
    Recorder recorder;
    const std::unique_ptr<CQImageDecode> decoder(
        CQImageDecode::NewLC(enFormat_ARGB32_Premultiplied, &recorder));
    CQWString suffix;
    name.GetSubString(suffix, name.FindofLast(L'.'), 4);
    if (suffix.CompareNoCase(L".png") == 0) {
        decoder->DecodePngFileL(&directory, &name, id);
    } else {
        directory.AppendData(name);
        decoder->DecodeImgFileL(&directory, id);
    }
    const std::unique_ptr<QImage> image(decoder->GetImage());
    outcome = recorder.Outcome("image", image.get());
    return image ? *image : QImage();
}

// The decoder for display. Of a PNG file, or one with alpha, it leaves only the mask and does not
// notify: a client takes such a picture from the other decoder.
void DecodeFitting(CQBImageDecode& decoder, CQWString path, int id, QString& outcome)
{
    Recorder recorder;
    decoder.ConstructL(&recorder);
    const bool plain = decoder.DecodeImgFile(&path, id, false) == 1;
    decoder.ConstructL(nullptr);
    // What was fetched is the client's to delete.
    const std::unique_ptr<QImage> image(plain ? decoder.GetImage() : decoder.GetMaskImage());
    outcome = recorder.Outcome(plain ? "image" : "mask", image.get());
}

// A line 4000 pixels long and 1 high fits with a height of 0; a pixel of it stays.
QImage Scaled(const QImage& image, const QSize& size)
{
    return image.scaled(size.expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio,
                        Qt::SmoothTransformation);
}

QByteArray EncodedPng(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// A name may hold line breaks and other controls, which belong on no sheet and no terminal.
QString Printable(QString name)
{
    for (QChar& c : name) {
        if (!c.isPrint() && !c.isSurrogate() && c.category() != QChar::Other_Format) {
            c = QLatin1Char('?');
        }
    }
    return name;
}

Picture Decode(CQBImageDecode& fitting, const CQWString& directory, const CQWString& name, int id)
{
    CQWString path(directory);
    path.AppendData(name);
    Picture picture;
    picture.name = Printable(QString::fromUtf8(CQSString(name).GetDataPtr()));
    const QImage image = DecodePlain(directory, name, id, picture.plainOutcome);
    DecodeFitting(fitting, path, id, picture.fittingOutcome);
    if (fitting.GetFitScreenSize(image.size(), picture.fitted) == 1) {
        picture.size = image.size();
        picture.headPicture = EncodedPng(Scaled(image, picture.fitted));
        const QSize box = thumbnailSize.boundedTo(image.size());
        picture.thumbnail = Scaled(image, image.size().scaled(box, Qt::KeepAspectRatio));
    } else {
        std::fprintf(stderr, "avatars: %s: does not decode\n", qUtf8Printable(picture.name));
    }
    return picture;
}

std::vector<CQWString> FindPictures(CQWString directory)
{
    std::vector<CQWString> names;
    for (const char* extension : {"bmp", "gif", "jpeg", "jpg", "png"}) {
        CQWString ext(QString::fromLatin1(extension));
        CQWString* list = nullptr;
        const int count = CQFile::GetDirFileList(directory, ext, false, &list);
        const std::unique_ptr<CQWString[]> owner(list);
        names.insert(names.end(), list, list + count);
    }
    std::sort(names.begin(), names.end(), [](const CQWString& left, const CQWString& right) {
        return left.Compare(right) < 0;
    });
    return names;
}

std::vector<Picture> DecodeAll(const QString& path)
{
    const QFileInfo info(path);
    if (!info.isDir() || !info.isReadable()) {
        throw SampleFailure{2, path.toStdString() + ": is not a directory that can be read"};
    }
    const CQWString directory(path);
    const std::vector<CQWString> names = FindPictures(directory);
    if (names.empty() || names.size() > maxPictures) {
        throw SampleFailure{2, path.toStdString() + ": holds " + std::to_string(names.size()) +
                                   " pictures (bmp, gif, jpeg, jpg, png); a sheet takes 1 to " +
                                   std::to_string(maxPictures)};
    }
    const std::unique_ptr<CQBImageDecode> fitting(CQBImageDecode::NewL(enFormat_RGB32, nullptr));
    fitting->SetScreenSize(screenSize);
    std::vector<Picture> pictures;
    pictures.reserve(names.size());
    for (const CQWString& name : names) {
        pictures.push_back(Decode(*fitting, directory, name, int(pictures.size()) + 1));
    }
    return pictures;
}

// --- Drawing -----------------------------------------------------------------------------

constexpr int columns = 5;
constexpr int margin = 32;
constexpr int header = 104;
constexpr int gap = 16;
constexpr int pad = 14;
constexpr QSize cardSize(284, 286);
constexpr QSize step(cardSize.width() + gap, cardSize.height() + gap);

void DrawLine(QPainter& painter, QPoint at, int width, int pixelSize, const char* colour,
              const QString& text)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    font.setBold(pixelSize > 15);
    painter.setFont(font);
    painter.setPen(QColor(QLatin1String(colour)));
    painter.drawText(QRect(at, QSize(width, pixelSize * 3 / 2)),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideMiddle, width));
}

// Too small to be seen beside the others at the same scale.
bool IsSmall(const Picture& picture)
{
    return picture.size.width() < 64 && picture.size.height() < 64;
}

// The picture, and beside it a handset at an eighth of its size with the picture as it fits; what
// is taller than the screen is cut at its edge.
void DrawPicture(QPainter& painter, const QRect& box, const Picture& picture)
{
    const QImage& image = picture.thumbnail;
    QRect place({}, image.size().scaled(box.size(), Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    place.moveCenter(box.center());
    // Enlarged pixels stay pixels.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !IsSmall(picture));
    painter.drawImage(place, image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);

    const QRect screen(box.topRight() + QPoint(10, 38), screenSize / 8);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(52, 58, 70));
    painter.drawRoundedRect(screen.adjusted(-4, -9, 4, 9), 6, 6);
    painter.fillRect(screen, QColor(18, 20, 26));
    const int scale = IsSmall(picture) ? 2 : 8;
    place.setSize((picture.fitted / scale).expandedTo(QSize(1, 1)));
    place.moveCenter(screen.center());
    place.moveTop(std::max(place.top(), screen.top()));
    painter.setClipRect(screen);
    painter.drawImage(place, image);
    painter.setClipping(false);
}

void DrawCrossedFrame(QPainter& painter, const QRect& box)
{
    painter.setBrush(QColor(250, 240, 240));
    painter.setPen(QPen(QColor(200, 70, 70), 2));
    painter.drawRect(box);
    painter.drawLine(box.topLeft(), box.bottomRight());
    painter.drawLine(box.topRight(), box.bottomLeft());
}

// What the card says below the picture, in plain words.
QString Caption(const Picture& picture)
{
    if (picture.thumbnail.isNull()) {
        return QStringLiteral("no picture, or only a piece of one");
    }
    if (IsSmall(picture)) {
        return QStringLiteral("a small picture, enlarged here");
    }
    return picture.fitted == picture.size ? QStringLiteral("shown in its own size")
                                          : QStringLiteral("reduced to fit the screen");
}

void DrawCard(QPainter& painter, QPoint corner, const Picture& picture)
{
    painter.setPen(QColor(222, 225, 231));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRect(corner, cardSize), 8, 8);

    const QRect box(corner + QPoint(pad, pad), thumbnailSize);
    const QPoint text = box.bottomLeft() + QPoint(0, 9);
    const int width = cardSize.width() - 2 * pad;
    DrawLine(painter, text, width, 16, "#20242c", picture.name);
    if (picture.thumbnail.isNull()) {
        DrawCrossedFrame(painter, box);
        DrawLine(painter, text + QPoint(0, 26), width, 14, "#c84646",
                 QStringLiteral("cannot be shown"));
    } else {
        DrawPicture(painter, box, picture);
        DrawLine(painter, text + QPoint(0, 26), width, 14, "#3c4452",
                 SizeText(picture.size) + QStringLiteral("  \u2192  ") + SizeText(picture.fitted));
    }
    DrawLine(painter, text + QPoint(0, 48), width, 12, "#7a8290", Caption(picture));
}

QImage DrawSheet(const std::vector<Picture>& pictures)
{
    const int count = int(pictures.size());
    const int rows = (count + columns - 1) / columns;
    QImage sheet(2 * margin + columns * step.width() - gap,
                 header + rows * step.height() - gap + margin, QImage::Format_RGB32);
    sheet.fill(QColor(240, 242, 246));
    QPainter painter(&sheet);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    DrawLine(painter, {margin, 24}, sheet.width(), 26, "#20242c", QStringLiteral("Head pictures"));
    DrawLine(painter, {margin, 62}, sheet.width(), 15, "#5a6270",
             QStringLiteral("%1 files; size of the picture \u2192 size on a screen of %2")
                 .arg(count)
                 .arg(SizeText(screenSize)));
    for (int i = 0; i < count; ++i) {
        const QPoint place(i % columns * step.width(), i / columns * step.height());
        DrawCard(painter, place + QPoint(margin, header), pictures[size_t(i)]);
    }
    return sheet;
}

// --- Storing -----------------------------------------------------------------------------

// A file whose old content stays until all files are known to be whole.
class StagedFile
{
public:
    StagedFile(const CQSString& path, const QByteArray& bytes) : m_path(path)
    {
        m_file.Open(CQWString(path).GetDataPtr());
        m_file.Write(bytes.constData(), unsigned(bytes.size()));
        if (bytes.isEmpty() || m_file.HasFailed()) {
            Fail("could not be written (disk full, or no permission?); its old content stands");
        }
    }

    void Publish()
    {
        if (m_file.Commit() == 0) {
            Fail("could not be replaced; its old content stands");
        }
    }

private:
    [[noreturn]] void Fail(const char* what) const { FailWith(m_path.GetDataPtr(), what); }

    CQSString m_path;
    CQSaveFile m_file;
};

// Replaces an archive, reads it back and prints what it takes.
void WriteArchive(const CQSString& path, const char* what, const QByteArray& bytes)
{
    const CQWString widePath(path);
    CQZipFile writer;
    if (writer.Replace(reinterpret_cast<const unsigned char*>(bytes.constData()), int(bytes.size()),
                       widePath.GetDataPtr()) == 0) {
        FailWith(path.GetDataPtr(), "could not be replaced (disk full, or no permission?)");
    }
    CQZipFile reader; // one object per file
    QByteArray readBack;
    if (reader.Read(readBack, widePath.GetDataPtr()) == 0 || readBack != bytes) {
        ReportDifference(path.GetDataPtr(), "its content");
    }
    const int stored = CQFile::GetFileLenght(widePath);
    std::printf("%-16s %9d %11d %6.1f %%\n", what, int(bytes.size()), stored,
                100.0 * stored / double(bytes.size()));
}

// Invented, and the same on every run.
QByteArray MessageHistory(int messages)
{
    const char* const texts[] = {"Did you see my new picture?", "Да, очень красиво!",
                                 "The ferry leaves at nine, meet at the harbour.", "明天见"};
    QByteArray history;
    for (int i = 0; i < messages; ++i) {
        CQSString line;
        CBaseUtil::FormatString(line, "%d\t%d\t%s\n", 1700000000 + 97 * i, 20001 + i * i % 8,
                                texts[i * i % 7 % 4]);
        history += line.GetDataPtr();
    }
    return history;
}

// --- The run -----------------------------------------------------------------------------

void PrintRow(const QString& size, const QString& fitted, const QString& plain,
              const QString& fitting, const QString& name)
{
    std::printf("%s %s %s %s %s\n", qUtf8Printable(size.leftJustified(12)),
                qUtf8Printable(fitted.leftJustified(12)), qUtf8Printable(plain.leftJustified(24)),
                qUtf8Printable(fitting.leftJustified(21)), qUtf8Printable(name));
}

void PrintPictures(const std::vector<Picture>& pictures)
{
    PrintRow("size", "fitted", "CQImageDecode", "CQBImageDecode", "picture");
    for (const Picture& picture : pictures) {
        PrintRow(SizeText(picture.size), SizeText(picture.fitted), picture.plainOutcome,
                 picture.fittingOutcome, picture.name);
    }
}

// The path in a directory, with slashes only: CQZipFile takes a backslash for part of a name.
CQSString PathIn(const QString& directory, const char* name)
{
    CQSString path;
    CBaseUtil::FormatString(path, "%s%s", qUtf8Printable(directory), name);
    return path;
}

void Run(const Options& options)
{
    const std::vector<Picture> pictures = DecodeAll(options.pictures);
    PrintPictures(pictures);

    const QString directory = options.root + QStringLiteral("%1/").arg(accountNumber);
    if (CQFile::CreateDirectory(CQWString(directory)) == 0) {
        throw SampleFailure{1, directory.toStdString() + ": the directory cannot be made"};
    }
    std::vector<std::unique_ptr<StagedFile>> files;
    for (size_t i = 0; i < pictures.size(); ++i) {
        if (!pictures[i].thumbnail.isNull()) {
            CQSString path;
            CQPath::GetCFFilePath(path, qUtf8Printable(options.root), accountNumber,
                                  unsigned(i) + 1);
            files.push_back(std::make_unique<StagedFile>(path, pictures[i].headPicture));
        }
    }
    const size_t decoded = files.size();
    const QByteArray sheet = EncodedPng(DrawSheet(pictures));
    const CQSString sheetPath = PathIn(options.root, "avatars.png");
    files.push_back(std::make_unique<StagedFile>(sheetPath, sheet));
    for (const auto& file : files) {
        file->Publish();
    }

    std::printf("\n%-16s %9s %11s %8s\n", "archive of", "bytes", "compressed", "ratio");
    WriteArchive(PathIn(directory, "sheet.z"), "the sheet", sheet);
    WriteArchive(PathIn(directory, "history.z"), "400 messages", MessageHistory(400));
    std::printf("\n%zu pictures, %zu of which decode: look at %s. Both archives were read back "
                "and found equal.\n",
                pictures.size(), decoded, sheetPath.GetDataPtr());
}

Options ParseArguments(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Draws a contact sheet of people's pictures.");
    const QCommandLineOption root("root", "Directory for what is written.", "DIR", "account-data");
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOption(root);
    parser.addPositionalArgument("PICTURES_DIR", "Pictures to draw.", "[PICTURES_DIR]");
    if (!parser.parse(arguments)) {
        throw SampleFailure{2, parser.errorText().toStdString() + " See avatars --help."};
    }
    if (parser.isSet(help)) {
        parser.showHelp();
    }
    QStringList directories = parser.positionalArguments();
    if (directories.isEmpty()) {
        directories << QStringLiteral(ORVO_EXAMPLE_DATA "/avatars");
    }
    if (parser.value(root).isEmpty() || directories.size() > 1 || directories[0].isEmpty()) {
        throw SampleFailure{2,
                            "wants --root DIR and one directory of pictures; see avatars --help"};
    }
    return {parser.value(root) + QLatin1Char('/'), directories[0] + QLatin1Char('/')};
}

} // namespace

int main(int argc, char** argv)
{
    // Nothing is shown, so no display is needed.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QGuiApplication application(argc, argv);
    try {
        Run(ParseArguments(QCoreApplication::arguments()));
    } catch (const SampleFailure& failure) {
        std::fflush(stdout); // the reason comes last, also where both go to one file
        std::fprintf(stderr, "avatars: %s\n", failure.text.c_str());
        return failure.exitCode;
    }
    return 0;
}
