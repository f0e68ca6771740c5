#pragma once

#include "OrvoExport.h"

/// Call-back of the image decoders, implemented by the client.
class ORVO_EXPORT CImgDecodeNotify
{
public:
    /// Called on the decoding thread before the decode operation returns. It may take the image,
    /// start another decode, or destroy the decoder.
    /// \param status    1. Also when the image did not decode: look whether it is null.
    /// \param id        the caller's id of the decoder's last file decode.
    /// \param hasAlpha  1 when the image is known to have an alpha channel, else 0; each decoder
    ///                  documents for which decodes that is.
    virtual void OnImageDecoded(int status, int id, int hasAlpha) = 0;
    virtual ~CImgDecodeNotify() = default;
};
