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

std::unique_ptr<QImage> MaskOf(const QImage& image)
{
    return std::make_unique<QImage>(BoundedImageRead::Converted(image, QImage::Format_Indexed8));
}

} // namespace

PrivateImageDecode::PrivateImageDecode(TDisplayMode displayMode)
    : m_nDisplayMode(displayMode), m_pNotify(nullptr), m_nId(0), m_nHasAlpha(0)
{
}

PrivateImageDecode::~PrivateImageDecode() = default;

void PrivateImageDecode::ConstructL(CImgDecodeNotify* notify)
{
    m_pNotify = notify;
}

// The path was made before the name is stored: either may have come from m_FileName.
QImage PrivateImageDecode::ReadFile(const QString& path, CQWString& name, int id)
{
    m_pReader = std::make_unique<QImageReader>(path);
    m_nId = id;
    m_FileName = name;
    return BoundedImageRead::Read(*m_pReader);
}

int PrivateImageDecode::DecodeImgFileL(CQWString* path, int id)
{
    if (!NamesPicture(path)) {
        return 0;
    }
    const QImage image = ReadFile(PathText::FromWide(path->GetDataPtr()), *path, id);
    m_pImage = std::make_unique<QImage>(BoundedImageRead::Converted(image, m_nDisplayMode));
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
    m_pImage = std::make_unique<QImage>(DecodedFile(path));
    RunL();
    return 1;
}

int PrivateImageDecode::DecodePngFileL(CQWString* path, int id)
{
    if (!NamesPicture(path)) {
        return 0;
    }
    const QImage image = ReadFile(PathText::FromWide(path->GetDataPtr()), *path, id);
    m_pImage = std::make_unique<QImage>(BoundedImageRead::Converted(image, m_nDisplayMode));
    m_pMask = MaskOf(image);
    RunL();
    return 1;
}

int PrivateImageDecode::DecodePngFileL(CQWString* dir, CQWString* name, int id)
{
    if (IsEmpty(dir) || IsEmpty(name)) {
        return 0;
    }
    m_pImage = std::make_unique<QImage>(ReadFile(PathOf(*dir, *name), *name, id));
    m_pMask = MaskOf(*m_pImage);
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
    m_pMask = Decoded(data);
    RunL();
    return 1;
}

int PrivateImageDecode::DecodeImgBufL(CQSString& data, CQSString format, int)
{
    if (data.IsEmpty() || format.IsEmpty()) {
        return 0;
    }
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

void PrivateImageDecode::RunL()
{
    m_pReader.reset();
    const int hasAlpha = std::exchange(m_nHasAlpha, 0);
    // The last step: the notifier may start another decode, or destroy this object.
    if (m_pNotify != nullptr) {
        m_pNotify->OnImageDecoded(1, m_nId, hasAlpha);
    }
}

void PrivateImageDecode::DoCancel() {}
