#include "CQImageDecode.h"

#include "PrivateImageDecode_win32.h"

#include <utility>

CQImageDecode* CQImageDecode::NewL(int displayMode, CImgDecodeNotify* notify)
{
    return NewLC(static_cast<TDisplayMode>(displayMode), notify);
}

CQImageDecode* CQImageDecode::NewLC(TDisplayMode displayMode, CImgDecodeNotify* notify)
{
    auto* pDecoder = new CQImageDecode(displayMode);
    pDecoder->ConstructL(notify);
    return pDecoder;
}

CQImageDecode::CQImageDecode(TDisplayMode displayMode)
    : m_pPrivate(std::make_unique<PrivateImageDecode>(displayMode))
{
}

CQImageDecode::~CQImageDecode() = default;

void CQImageDecode::ConstructL(CImgDecodeNotify* notify)
{
    m_pPrivate->ConstructL(notify);
}

int CQImageDecode::DecodeImgFileL(CQWString* path, int id)
{
    return m_pPrivate->DecodeImgFileL(path, id);
}

int CQImageDecode::DecodeImgFileL(CQWString* dir, CQWString* name, int id)
{
    return m_pPrivate->DecodeImgFileL(dir, name, id);
}

int CQImageDecode::DecodePngFileL(CQWString* path, int id)
{
    return m_pPrivate->DecodePngFileL(path, id);
}

int CQImageDecode::DecodePngFileL(CQWString* dir, CQWString* name, int id)
{
    return m_pPrivate->DecodePngFileL(dir, name, id);
}

int CQImageDecode::DecodePngBufL(CQSString& data, int id)
{
    return m_pPrivate->DecodePngBufL(data, id);
}

int CQImageDecode::DecodeImgBufL(CQSString& data, CQSString format, int id)
{
    return m_pPrivate->DecodeImgBufL(data, std::move(format), id);
}

QImage* CQImageDecode::GetImage()
{
    return m_pPrivate->GetImage();
}

int CQImageDecode::GetImageFromPng(QImage** image, QImage** mask)
{
    return m_pPrivate->GetImageFromPng(image, mask);
}

CQWString& CQImageDecode::GetFileName()
{
    return m_pPrivate->GetFileName();
}
