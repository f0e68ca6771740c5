#pragma once

#include "OrvoExport.h"
#include "TDisplayMode.h"

#include <memory>

class CImgDecodeNotify;
class CQSString;
class CQWString;
class PrivateImageDecode;
class QImage;

/// Decodes an image file or an encoded image in memory.
///
/// It has the shape of an asynchronous decoder, but every decode runs to its end inside the call,
/// and the notifier is called before the call returns: once for each decode that ran. The image
/// is then taken with GetImage(), or with GetImageFromPng() after the operations that also make a
/// mask.
///
///     std::unique_ptr<CQImageDecode> decoder(CQImageDecode::NewL(enFormat_RGB32, &notifier));
///     if (decoder->DecodeImgFileL(&path, id) != 0) {
///         std::unique_ptr<QImage> image(decoder->GetImage());
///     }
///
/// Decode operations return 1 when a decode ran, also when it failed: the image is then a null
/// QImage. They return 0 for null or empty arguments and for the name "nopic.bmp", which stands
/// for no picture; nothing has changed then and nobody is notified.
///
/// The format is detected from the content. A null image is what comes of:
/// - an image beyond 128 MB in memory. Pixels count with 32 bits at least, the display mode's
///   pixels too, and with them counts what expands beside them: texts and profiles of a PNG, the
///   picture inside an icon. A whole decode, mask included, stays below 3 x 128 MB at its peak,
///   beside images that were made before and are kept;
/// - a display mode that Qt does not know;
/// - a file that is no regular one, such as a device or a pipe, which is not opened.
///
/// Paths are used as they stand; a backslash is part of a name. Arguments may be what
/// GetFileName() returned.
///
/// The notifier may do anything: take the images, start another decode, destroy the decoder. The
/// word that tells of alpha is reset when the notifier returns, so that a decode which it starts
/// itself is announced with the same word.
///
/// Images that are not taken stay with the decoder, which deletes them when the next decode
/// replaces them or when it is destroyed. Use a decoder on one thread.
///
/// Without memory a decode throws `std::bad_alloc`, or its image is null. The platform's image code
/// cannot live without memory, though: it may end the process instead, or keep a lock that no later
/// decode gets past. A client that has met `std::bad_alloc` here does not decode again.
class ORVO_EXPORT CQImageDecode
{
public:
    /// A new decoder that the caller deletes. \a notify may be null and is not owned.
    /// @{
    static CQImageDecode* NewL(int displayMode, CImgDecodeNotify* notify);
    static CQImageDecode* NewLC(TDisplayMode displayMode, CImgDecodeNotify* notify);
    /// @}
    /// A decoder without a notifier; ConstructL() sets it.
    explicit CQImageDecode(TDisplayMode displayMode);
    virtual ~CQImageDecode();
    CQImageDecode(const CQImageDecode&) = delete;
    CQImageDecode& operator=(const CQImageDecode&) = delete;

    /// The second phase of NewL(): sets the notifier, which may be null and is not owned.
    void ConstructL(CImgDecodeNotify* notify);

    /// Decodes the file at \a path and converts it to the display mode. Refuses \a path when it
    /// is "nopic.bmp" as a whole, in any case of letters; a longer path that ends in it is decoded.
    int DecodeImgFileL(CQWString* path, int id);
    /// Decodes the file at \a dir followed by \a name, as it is, without conversion. \a dir brings
    /// its own trailing slash. A file that cannot be opened asserts "0"; a null image.
    int DecodeImgFileL(CQWString* dir, CQWString* name, int id);
    /// As DecodeImgFileL(path, id), and makes the mask: the image in 8-bit indexed form.
    int DecodePngFileL(CQWString* path, int id);
    /// Decodes the file at \a dir followed by \a name, without conversion, and makes the mask. Only
    /// this operation notifies with \a hasAlpha 1, when the image has an alpha channel.
    int DecodePngFileL(CQWString* dir, CQWString* name, int id);
    /// Decodes \a data into the mask; the image stays what it was. Callers fetch the pair with
    /// GetImageFromPng(). Notifies with the id of the last file decode: \a id is not kept.
    int DecodePngBufL(CQSString& data, int id);
    /// Decodes \a data, without conversion. \a format must not be empty and has no other effect.
    /// Notifies with the id of the last file decode: \a id is not kept.
    int DecodeImgBufL(CQSString& data, CQSString format, int id);

    /// Gives up the image to the caller, who deletes it; null when there is none.
    QImage* GetImage();
    /// Gives up the image and the mask, either of which may be null, to the caller, who deletes
    /// them.
    /// \return  1; 0 for a null argument, and then the decoder keeps both.
    int GetImageFromPng(QImage** image, QImage** mask);
    /// Path or name of the last file decode, without the directory for the two-name operations.
    CQWString& GetFileName();

private:
    std::unique_ptr<PrivateImageDecode> m_pPrivate;
};
