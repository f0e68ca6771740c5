#pragma once

#include <QtGlobal>

class QIODevice;

/// What a decoder would take for a picture beside the pixels that Qt announces, as the picture's
/// own headers tell. Known are the parts that Qt takes memory for unasked: texts and profiles of
/// a PNG, which may expand a thousand times; the picture inside an icon, which need not have the
/// size in the icon's directory; the coefficients of a JPEG that comes in several scans.
struct PictureDemand {
    /// Pixels of the picture inside an icon, and bits of each; 0 x 0 for what is no icon.
    qint64 nWidth = 0;
    qint64 nHeight = 0;
    int nDepth = 32;
    /// Bytes of the parts that expand. They count with the pixels.
    qint64 nExpanded = 0;
    /// Bytes that the decoder needs while it works: a part that goes with the pixels, and one
    /// that does not.
    int nWorkingBytesPerPixel = 0;
    qint64 nWorking = 0;

    /// Looks at \a device, which is open and not sequential, from its beginning; leaves it there.
    /// Of what expands only as much is followed as leaves no doubt that it passes \a nMaxExpanded.
    static PictureDemand Of(QIODevice& device, qint64 nMaxExpanded);
};
