#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

namespace OrvoStream
{

/// A read-ahead byte source: loads up to 20480 bytes (StreamBufferSize) from its device at the
/// first read and serves reads from that buffer.
///
/// A concrete stream supplies LoadBuffer(), Available() and Close(). Reads are all-or-nothing.
/// What the device delivers in the first load reads correctly as long as no read is refused: a
/// refused read gives up the unread bytes. What comes later, from an input longer than the buffer
/// or a device that delivers in pieces, follows from PrepareBuffer() and is not what the device
/// holds; read such inputs through CQFile. Not locked; one thread at a time.
class ORVO_EXPORT CIStream
{
public:
    /// A stream that has loaded nothing yet.
    CIStream();
    /// Frees the buffer. Does not call Close().
    virtual ~CIStream();
    CIStream(const CIStream&) = delete;
    CIStream& operator=(const CIStream&) = delete;

    /// Copies the next \a len bytes to \a dest and returns \a len. Returns 0 and copies nothing
    /// when fewer are available, for a negative length, for null with a positive length, or
    /// without memory for the buffer. Where a refill left the position behind the end of the
    /// buffer, the bytes from there on read as zero.
    virtual int Read(char* dest, int len);

    /// Number of bytes that can be read without waiting, as far as the concrete stream tells.
    virtual int Available() = 0;

    /// Ends the device. Supplied by the concrete stream; buffered bytes stay readable.
    virtual void Close() = 0;

    /// The device: puts up to \a len bytes, which may be 0, to \a dest and returns their number,
    /// 0 at the end. A result outside 0 and \a len is taken as the nearer of the two. The base's
    /// body returns 0.
    virtual int LoadBuffer(char* dest, int len);

    /// Returns 1 if \a len bytes can be read, else 0, loading first where they are not buffered.
    ///
    /// A refill moves the unread bytes to the front but leaves the position where it was, and
    /// asks the device only for as many bytes as had been read, not for all the free space.
    /// What callers get from long inputs depends on both, so neither may be changed.
    int PrepareBuffer(int len);

private:
    friend int Load(CIStream& in, int len); // of PrepareBuffer()
    friend bool HasBuffer(const CIStream& in);
    // Whether LoadBuffer() was given dest by a load that is not the first.
    friend bool IsRefill(const CIStream& in, const char* dest);

    char* m_pBuffer;
    qint32 m_nValidLen;
    qint32 m_nPos;
};

} // namespace OrvoStream
