#include "PrivateImageDecode_win32.h"

#include "BoundedImageRead.h"
#include "CImgDecodeNotify.h"
#include "OrvoAssert.h"
#include "PathText.h"
#include "PictureName.h"

#include <QFile>

#include <utility>

namespace
{

bool IsEmpty(const CQWString* text)
{
    return text == nullptr || text->IsEmpty();
}

QString PathOf(const CQWString& dir, const CQWString& name)
{
    return PathText::FromWide(dir.GetDataPtr()) + PathText::FromWide(name.GetDataPtr());
}

// Straight from the file: what a copy of its bytes would decode to, without the copy.
QImage DecodedFile(const QString& path)
{
    QFile file(path);
    if (BoundedImageRead::IsSpecialFile(path)) {
        return QImage();
    }
    if (!OrvoAssert(file.open(QIODevice::ReadOnly), "0", "src/PrivateImageDecode_win32", 164)) {
        return QImage();
    }
    return BoundedImageRead::FromDevice(file);
}

std::unique_ptr<QImage> Decoded(const CQSString& data)
{
    return std::make_unique<QImage>(
        BoundedImageRead::FromBytes(data.GetDataPtr(), data.GetLength()));
}

std::unique_ptr<QImage> Converted(QImage image, int format)
{
    return std::make_unique<QImage>(BoundedImageRead::Converted(std::move(image), format));
}

} // namespace

PrivateImageDecode::PrivateImageDecode(TDisplayMode displayMode)
    : m_nDisplayMode(displayMode), m_pNotify(nullptr), m_nId(0), m_nHasAlpha(0),
      m_pAlive(this, [](const PrivateImageDecode*) {})
{
}

PrivateImageDecode::~PrivateImageDecode() = default;

void PrivateImageDecode::ConstructL(CImgDecodeNotify* notify)
{
    m_pNotify = notify;
}

// The path was made before the name is stored: either may have come from m_FileName. The reader,
// and what it keeps, is gone before the image is converted.
QImage PrivateImageDecode::ReadFile(const QString& path, CQWString& name, int id)
{
    m_pReader = std::make_unique<QImageReader>(path);
    m_nId = id;
    m_FileName = name;
    QImage image = BoundedImageRead::Read(*m_pReader);
    m_pReader.reset();
    return image;
}

int PrivateImageDecode::DecodeImgFileL(CQWString* path, int id)
{
    if (!NamesPicture(path)) {
        return 0;
    }
    m_pImage.reset();
    m_pImage =
        Converted(ReadFile(PathText::FromWide(path->GetDataPtr()), *path, id), m_nDisplayMode);
    RunL();
    return 1;
}

int PrivateImageDecode::DecodeImgFileL(CQWString* dir, CQWString* name, int id)
{
    if (IsEmpty(dir) || IsEmpty(name)) {
        return 0;
    }
    const QString path = PathOf(*dir, *name);
    m_pReader.reset();
    m_nId = id;
    m_FileName = *name;
    m_pImage.reset();
    m_pImage = std::make_unique<QImage>(DecodedFile(path));
    RunL();
    return 1;
}

int PrivateImageDecode::DecodePngFileL(CQWString* path, int id)
{
    if (!NamesPicture(path)) {
        return 0;
    }
    DeleteImages();
    QImage image = ReadFile(PathText::FromWide(path->GetDataPtr()), *path, id);
    m_pMask = Converted(image, QImage::Format_Indexed8); // of the image before it is converted
    m_pImage = Converted(std::move(image), m_nDisplayMode);
    RunL();
    return 1;
}

int PrivateImageDecode::DecodePngFileL(CQWString* dir, CQWString* name, int id)
{
    if (IsEmpty(dir) || IsEmpty(name)) {
        return 0;
    }
    DeleteImages();
    m_pImage = std::make_unique<QImage>(ReadFile(PathOf(*dir, *name), *name, id));
    m_pMask = Converted(*m_pImage, QImage::Format_Indexed8);
    m_nHasAlpha = m_pImage->hasAlphaChannel() ? 1 : 0;
    RunL();
    return 1;
}

int PrivateImageDecode::DecodePngBufL(CQSString& data, int)
{
    if (data.IsEmpty()) {
        return 0;
    }
    m_Data = QString::fromUtf8(data.GetDataPtr());
    m_Mime = QStringLiteral("image/png");
    m_pMask.reset();
    m_pMask = Decoded(data);
    RunL();
    return 1;
}

// By value, as in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
int PrivateImageDecode::DecodeImgBufL(CQSString& data, CQSString format, int)
{
    if (data.IsEmpty() || format.IsEmpty()) {
        return 0;
    }
    m_pImage.reset();
    m_pImage = Decoded(data);
    RunL();
    return 1;
}

QImage* PrivateImageDecode::GetImage()
{
    return m_pImage.release();
}

int PrivateImageDecode::GetImageFromPng(QImage** image, QImage** mask)
{
    if (image == nullptr || mask == nullptr) {
        return 0;
    }
    *image = m_pImage.release();
    *mask = m_pMask.release();
    return 1;
}

CQWString& PrivateImageDecode::GetFileName()
{
    return m_FileName;
}

// What a decode replaces is deleted before the decode asks for memory.
void PrivateImageDecode::DeleteImages()
{
    m_pImage.reset();
    m_pMask.reset();
}

void PrivateImageDecode::RunL()
{
    m_pReader.reset();
    const std::weak_ptr<const PrivateImageDecode> alive = m_pAlive;
    if (m_pNotify != nullptr) {
        m_pNotify->OnImageDecoded(1, m_nId, m_nHasAlpha);
    }
    // Behind the notification: a decode that the notifier starts still sees the word as it was.
    if (!alive.expired()) {
        m_nHasAlpha = 0;
    }
}

void PrivateImageDecode::DoCancel() {}
