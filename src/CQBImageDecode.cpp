#include "CQBImageDecode.h"

#include "PrivateBImageDecode.h"

namespace
{

void TurnBackslashes(CQWString& path)
{
    path.Replace(L"\\", L"/");
}

} // namespace

CQBImageDecode* CQBImageDecode::NewL(TDisplayMode displayMode, CImgDecodeNotify* notify)
{
    return NewLC(displayMode, notify);
}

CQBImageDecode* CQBImageDecode::NewLC(TDisplayMode displayMode, CImgDecodeNotify* notify)
{
    auto* pDecoder = new CQBImageDecode(displayMode);
    pDecoder->ConstructL(notify);
    return pDecoder;
}

CQBImageDecode::CQBImageDecode(TDisplayMode displayMode)
    : m_pPrivate(std::make_unique<PrivateBImageDecode>(displayMode))
{
}

CQBImageDecode::~CQBImageDecode() = default;

void CQBImageDecode::ConstructL(CImgDecodeNotify* notify)
{
    m_pPrivate->ConstructL(notify);
}

int CQBImageDecode::DecodeImgFileL(CQWString* path, int id, bool useDisplayMode)
{
    if (path != nullptr) {
        TurnBackslashes(*path);
    }
    return m_pPrivate->DecodeImgFileL(path, id, useDisplayMode);
}

int CQBImageDecode::DecodeImgFileSpecDispMode(CQWString& path, int id, bool fitScreen)
{
    TurnBackslashes(path);
    return m_pPrivate->DecodeImgFileSpecDispMode(path, id, fitScreen);
}

int CQBImageDecode::DecodeImgFile(CQWString* path, int id, bool fitScreen)
{
    if (path != nullptr) {
        TurnBackslashes(*path);
    }
    return m_pPrivate->DecodeImgFile(path, id, fitScreen);
}

void CQBImageDecode::SetScreenSize(const QSize& size)
{
    m_pPrivate->SetScreenSize(size);
}

int CQBImageDecode::GetFitScreenSize(QSize size, QSize& fit) const
{
    return m_pPrivate->GetFitScreenSize(size, fit);
}

int CQBImageDecode::ResizeImageToFitScreen(QImage* image)
{
    return m_pPrivate->ResizeImageToFitScreen(image);
}

QImage* CQBImageDecode::GetImage()
{
    return m_pPrivate->GetImage();
}

QImage* CQBImageDecode::GetMaskImage()
{
    return m_pPrivate->GetMaskImage();
}

CQWString& CQBImageDecode::GetFileName()
{
    return m_pPrivate->GetFileName();
}
