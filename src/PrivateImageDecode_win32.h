#pragma once

#include "CQSString.h"
#include "CQWString.h"
#include "TDisplayMode.h"

#include <QImage>
#include <QImageReader>
#include <QString>

#include <memory>

class CImgDecodeNotify;

/// The work of CQImageDecode, where the operations are documented.
///
/// The shape is that of a decoder that works on its own: it keeps the reader of a file, and text
/// and MIME type of a PNG buffer, for a step that would come later. Here none comes, so nothing
/// reads m_Data and m_Mime, and the reader is gone before a decode ends.
class PrivateImageDecode
{
public:
    explicit PrivateImageDecode(TDisplayMode displayMode);
    virtual ~PrivateImageDecode();
    PrivateImageDecode(const PrivateImageDecode&) = delete;
    PrivateImageDecode& operator=(const PrivateImageDecode&) = delete;

    void ConstructL(CImgDecodeNotify* notify);
    int DecodeImgFileL(CQWString* path, int id);
    int DecodeImgFileL(CQWString* dir, CQWString* name, int id);
    int DecodePngFileL(CQWString* path, int id);
    int DecodePngFileL(CQWString* dir, CQWString* name, int id);
    int DecodePngBufL(CQSString& data, int id);
    int DecodeImgBufL(CQSString& data, CQSString format, int id);
    QImage* GetImage();
    int GetImageFromPng(QImage** image, QImage** mask);
    CQWString& GetFileName();

    /// Ends a decode: gives up the reader, and with it the file, and notifies. The notifier may
    /// destroy this object: nothing may touch it behind a call of RunL().
    void RunL();
    /// Nothing: a decode is over before anybody could cancel it.
    void DoCancel();

private:
    QImage ReadFile(const QString& path, CQWString& name, int id);
    void DeleteImages();

    std::unique_ptr<QImageReader> m_pReader; // only during a file decode
    std::unique_ptr<QImage> m_pImage;        // null until a decode and when it was taken
    TDisplayMode m_nDisplayMode;
    CImgDecodeNotify* m_pNotify; // not owned
    qint32 m_nId;                // of the last file decode
    CQWString m_FileName;        // of the last file decode
    QString m_Data;              // text of the last PNG buffer
    QString m_Mime;              // MIME type of the last PNG buffer
    std::unique_ptr<QImage> m_pMask;
    qint32 m_nHasAlpha; // 1 until the notification that tells of it is over
    std::shared_ptr<const PrivateImageDecode> m_pAlive; // expires with this object; owns nothing
};
