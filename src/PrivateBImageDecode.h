#pragma once

#include "CQWString.h"
#include "TDisplayMode.h"

#include <QImage>
#include <QSize>

class CImgDecodeNotify;

/// The work of CQBImageDecode, where the operations are documented.
class PrivateBImageDecode
{
public:
    explicit PrivateBImageDecode(TDisplayMode displayMode);
    /// Frees no image: clients go on using what they fetched.
    virtual ~PrivateBImageDecode();
    PrivateBImageDecode(const PrivateBImageDecode&) = delete;
    PrivateBImageDecode& operator=(const PrivateBImageDecode&) = delete;

    void ConstructL(CImgDecodeNotify* notify);
    int DecodeImgFileL(CQWString* path, int id, bool useDisplayMode);
    int DecodeImgFileSpecDispMode(CQWString& path, int id, bool fitScreen);
    int DecodeImgFile(CQWString* path, int id, bool fitScreen);
    void SetScreenSize(const QSize& size);
    int GetFitScreenSize(QSize size, QSize& fit) const;
    int ResizeImageToFitScreen(QImage* image);
    QImage* GetImage();
    QImage* GetMaskImage();
    CQWString& GetFileName();

    /// Ends the decode of a plain file: fits the image to the screen, or notifies.
    void RunL();
    void DoCancel();

private:
    int DecodeWithSwitch(CQWString* path, int id, bool fitScreen, bool useDisplayMode);

    QImage* m_pImage;
    QImage* m_pMask;
    bool m_bHasMask; // the last file was masked
    [[maybe_unused]] TDisplayMode m_nDisplayMode;
    CImgDecodeNotify* m_pNotify; // not owned
    qint32 m_nId;
    CQWString m_FileName;
    bool m_bFitScreen;
    qint32 m_nState; // 0 idle, 1 decoded and waiting for RunL(), 2 resizing
    qint32 m_nScreenWidth;
    qint32 m_nScreenHeight;
    bool m_bImageFetched; // a client holds m_pImage
    bool m_bMaskFetched;  // a client holds m_pMask
};
