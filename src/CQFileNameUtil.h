#pragma once

#include "OrvoExport.h"

class CQWString;
class TImageMIMETypes;

/// Names of image files and the image types that the client handles. Paths are used as they
/// stand; a backslash is part of a name. A path that begins with ":" is one of Qt's, for data
/// built into the program, and no file's: write "./:a". A file whose name is not UTF-8 cannot be
/// named by wide text. Thread-safe on distinct arguments.
///
/// Without memory the operations throw `std::bad_alloc`, but that FindShortName() and
/// FindFileExtName() may instead leave their result without a buffer; for IsImageFile() see
/// CQImageDecode.
class ORVO_EXPORT CQFileNameUtil
{
public:
    /// Fills \a types with the types that the client handles: "image/bmp", "image/gif",
    /// "image/jp2", "image/jpeg", "image/png", in this order. Fill each holder once: the list of
    /// an earlier filling stays allocated.
    static void OrvoImageMIMETypesL(TImageMIMETypes& types);
    /// Fills \a types with the image types of a fresh QMimeData, with the same ownership. A fresh
    /// one carries no formats, so the list is empty; callers that want the client's types use
    /// OrvoImageMIMETypesL().
    static void ImageMIMETypesL(TImageMIMETypes& types);

    /// True when \a path holds an image that can be decoded, by its content whatever its
    /// extension. Images beyond 128 MB in memory, as CQImageDecode counts it, and files that are
    /// no regular ones count as not decodable. Decodes the whole image.
    static bool IsImageFile(CQWString const& path);

    /// Sets \a name to the file name in \a path without its directory and without everything from
    /// its first "." on: "a" for "/pics/a.b.png". The two may be the same object.
    static void FindShortName(CQWString const& path, CQWString& name);
    /// Sets \a ext to everything after the first "." of the file name in \a path: "b.png" for
    /// "/pics/a.b.png", empty when there is none. The two may be the same object.
    static void FindFileExtName(CQWString const& path, CQWString& ext);
};
