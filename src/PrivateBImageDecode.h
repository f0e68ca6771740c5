#pragma once

#include "CQWString.h"
#include "TDisplayMode.h"

#include <QImage>
#include <QSize>

class CImgDecodeNotify;

/// The work of CQBImageDecode, where the operations are documented.
///
/// The display mode is kept and never read: it would choose the form of a masked file's image,
/// which is deleted before anybody sees it. RunL() cannot meet stateResizing either, since a
/// resize runs to its end inside ResizeImageToFitScreen().
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
    enum State : qint32 {
        stateIdle = 0,
        stateDecoded = 1, // and waiting for RunL()
        stateResizing = 2
    };

    int DecodeWithSwitch(CQWString* path, int id, bool fitScreen, bool useDisplayMode);
    void SetImage(QImage* pImage);
    void SetMask(QImage* pImage);

    QImage* m_pImage;
    QImage* m_pMask;
    bool m_bHasMask; // the last file was masked
    [[maybe_unused]] TDisplayMode m_nDisplayMode;
    CImgDecodeNotify* m_pNotify; // not owned
    qint32 m_nId;
    CQWString m_FileName;
    bool m_bFitScreen;
    State m_nState;
    qint32 m_nScreenWidth;
    qint32 m_nScreenHeight;
    bool m_bImageFetched; // a client holds m_pImage
    bool m_bMaskFetched;  // a client holds m_pMask
};
