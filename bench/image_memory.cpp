// Prints the peak of memory that decoding a picture of 3000 x 2000 pixels adds to a process, by
// the library and by Qt alone: one child process each.
//
//     build/bench/bench/orvo_image_memory

#include "Photo.h"

#include <CQImageDecode.h>
#include <CQWString.h>

#include <QGuiApplication>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

namespace
{

long PeakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

int AddedMegabytes(void (*decode)(const QString&), const QString& path)
{
    if (fork() == 0) {
        QImage(8, 8, QImage::Format_RGB32).save(path + QStringLiteral(".png")); // loads the plugins
        QImage(path + QStringLiteral(".png"));
        const long before = PeakKilobytes();
        decode(path);
        _exit(int((PeakKilobytes() - before) / 1024));
    }
    int status = 0;
    wait(&status);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void DecodeWithLibrary(const QString& path)
{
    CQImageDecode decoder(enFormat_ARGB32_Premultiplied);
    CQWString name(path);
    decoder.DecodeImgFileL(&name, 1);
}

void DecodeWithQt(const QString& path)
{
    const QImage image = QImage(path).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void Print(const char* work, const char* format, QImage::Format pixels, const QString& path)
{
    // Made in a process of its own, so that nothing of it counts here.
    if (fork() == 0) {
        const Photo photo(format, pixels, 3000, 2000);
        rename(qPrintable(photo.GetPath()), qPrintable(path));
        _exit(0);
    }
    wait(nullptr);
    const int library = AddedMegabytes(DecodeWithLibrary, path);
    const int qt = AddedMegabytes(DecodeWithQt, path);
    std::printf("%-16s orvobase %4d MB  Qt %4d MB  ratio %.2f\n", work, library, qt,
                double(library) / qt);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QTemporaryDir place;
    const QString path = place.filePath(QStringLiteral("picture"));
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    Print("png", "png", QImage::Format_RGB32, path);
    Print("png with alpha", "png", QImage::Format_ARGB32, path);
    Print("jpg", "jpg", QImage::Format_RGB32, path);
}
