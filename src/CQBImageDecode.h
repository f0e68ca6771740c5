#pragma once

#include "OrvoExport.h"
#include "TDisplayMode.h"

#include <memory>

class CImgDecodeNotify;
class CQWString;
class PrivateBImageDecode;
class QImage;
class QSize;

/// Decodes an image file for display and tells how it fits the screen.
///
/// A decode runs to its end inside the call. What it leaves depends on the file:
/// - Masked, that is, the name ends in ".png" in any case of letters or the image has an alpha
///   channel: the image in 8-bit indexed form, in GetMaskImage(). GetImage() gives null, the
///   operation returns 0 and nobody is notified. Callers go by GetMaskImage() after a 0.
/// - Plain: the image as it is in the file, in GetImage(). The operation returns 1 and has
///   notified with (1, id, 0), but not when fitting to the screen was asked for and the fitting
///   size differs from the image's; see ResizeImageToFitScreen().
/// - Unreadable, beyond 128 MB in memory as CQImageDecode counts it, or no regular file: as plain
///   or masked by its name, with a null QImage. A whole decode, mask and fitting included, stays
///   below 3 x 128 MB at its peak.
///
/// Refused with 0, nothing changed and nobody notified: a null or empty path, and "nopic.bmp" as
/// the whole path, in any case of letters. A backslash in a path becomes a slash, in the caller's
/// string too, which may be what GetFileName() returned.
///
/// An image that GetImage() or GetMaskImage() has returned is never deleted by the decoder, not
/// even by its destructor, so a client may go on using it and deletes it when it is done. An image
/// that nobody asked for is deleted when the next decode replaces it, but not by the destructor:
/// fetch the last one. Use a decoder on one thread.
///
/// What happens without memory is said of CQImageDecode.
class ORVO_EXPORT CQBImageDecode
{
public:
    /// A new decoder that the caller deletes. \a notify may be null and is not owned.
    /// @{
    static CQBImageDecode* NewL(TDisplayMode displayMode, CImgDecodeNotify* notify);
    static CQBImageDecode* NewLC(TDisplayMode displayMode, CImgDecodeNotify* notify);
    /// @}
    /// A decoder without a notifier; ConstructL() sets it. The display mode does not show in any
    /// image that can be fetched: plain images are not converted.
    explicit CQBImageDecode(TDisplayMode displayMode);
    virtual ~CQBImageDecode();
    CQBImageDecode(const CQBImageDecode&) = delete;
    CQBImageDecode& operator=(const CQBImageDecode&) = delete;

    /// The second phase of NewL(): sets the notifier, which may be null and is not owned.
    void ConstructL(CImgDecodeNotify* notify);

    /// Decodes the file at \a path, fitted to the screen by the switch of the last DecodeImgFile()
    /// or DecodeImgFileSpecDispMode(), which is on at first. A masked file leaves the decoder busy
    /// for those two until a plain one is decoded or ResizeImageToFitScreen() has acted.
    int DecodeImgFileL(CQWString* path, int id, bool useDisplayMode);
    /// Sets the switch and decodes the file at \a path; 0 also when the decoder is busy. The first
    /// asks for the display mode, the second for the file's own format; see the constructor.
    /// @{
    int DecodeImgFileSpecDispMode(CQWString& path, int id, bool fitScreen);
    int DecodeImgFile(CQWString* path, int id, bool fitScreen);
    /// @}

    /// Sets the size in pixels that images are fitted to; -1 x -1 at first. Any values are
    /// accepted.
    void SetScreenSize(const QSize& size);
    /// Sets \a fit to the size at which an image of \a size is shown.
    ///
    /// Only the width decides whether an image is reduced: a tall image that is no wider than the
    /// screen keeps its size. A wider one is reduced in proportion until both sides fit. Sizes are
    /// truncated toward zero and saturate; without a screen size they mean nothing.
    /// \return  1; 0 with \a fit unchanged when a side of \a size is below 1.
    int GetFitScreenSize(QSize size, QSize& fit) const;
    /// Loads \a image anew from the raw pixels of its copy in fitting size. Raw pixels are no
    /// encoded image, so as a rule \a image stays what it was; callers draw it scaled.
    /// \return  1 when that was done, and then a decode ends without notification; 0 for null, for
    ///          a null image and for one that fits as it is.
    int ResizeImageToFitScreen(QImage* image);

    /// The image of the last decode, or null. It is not given up: the next call returns it again.
    QImage* GetImage();
    /// The mask of the last decode when its file was masked, else null.
    QImage* GetMaskImage();
    /// Path of the last decode that was not refused.
    CQWString& GetFileName();

private:
    std::unique_ptr<PrivateBImageDecode> m_pPrivate;
};
