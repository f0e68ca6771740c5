#pragma once

#include <QImage>

/// Pixel format of a decoded image, numbered as QImage::Format. Any `int` may be passed as one;
/// a number that is no format of the Qt in use gives null images.
enum TDisplayMode : int {
    enFormat_Invalid = QImage::Format_Invalid,
    enFormat_Mono = QImage::Format_Mono,
    enFormat_MonoLSB = QImage::Format_MonoLSB,
    enFormat_Indexed8 = QImage::Format_Indexed8,
    enFormat_RGB32 = QImage::Format_RGB32,
    enFormat_ARGB32 = QImage::Format_ARGB32,
    enFormat_ARGB32_Premultiplied = QImage::Format_ARGB32_Premultiplied,
    enFormat_RGB16 = QImage::Format_RGB16,
    enFormat_ARGB8565_Premultiplied = QImage::Format_ARGB8565_Premultiplied,
    enFormat_RGB666 = QImage::Format_RGB666,
    enFormat_ARGB6666_Premultiplied = QImage::Format_ARGB6666_Premultiplied,
    enFormat_RGB555 = QImage::Format_RGB555,
    enFormat_ARGB8555_Premultiplied = QImage::Format_ARGB8555_Premultiplied,
    enFormat_RGB888 = QImage::Format_RGB888,
    enFormat_RGB444 = QImage::Format_RGB444,
    enFormat_ARGB4444_Premultiplied = QImage::Format_ARGB4444_Premultiplied,
};
