#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

namespace OrvoStream
{

/// A write-behind byte sink: collects writes in one buffer of 20480 bytes and hands it to its
/// device whole.
///
/// A concrete stream supplies SaveBuffer() and Close(). The buffer is allocated at the first
/// write and never grows, so one call can write at most 20480 bytes (StreamBufferSize). Nothing is
/// flushed on destruction: write, then Flush(), then Close(); bytes written after the last flush
/// are lost. Not locked; one thread at a time.
class ORVO_EXPORT COStream
{
public:
    /// A stream without a buffer yet.
    COStream();
    /// Drops what is still buffered, without calling the device, and frees the buffer.
    virtual ~COStream();
    COStream(const COStream&) = delete;
    COStream& operator=(const COStream&) = delete;

    /// Buffers \a len bytes and returns the position in the buffer where they were put. The
    /// result is not a count: the first write after a flush returns 0, as does a refusal.
    ///
    /// Refused with nothing written: a negative length, null with a positive length, a length
    /// above 20480 (what was buffered is flushed before that refusal), or no memory.
    virtual int Write(char const* data, int len);

    /// Hands the buffered bytes to SaveBuffer() and empties the buffer. SaveBuffer() is called
    /// even when nothing is buffered, with null before the first write.
    virtual void Flush();

    /// Ends the device. Supplied by the concrete stream; does not imply Flush().
    virtual void Close() = 0;

    /// The device: takes \a len bytes, which are valid during the call. Has to ignore null and
    /// empty blocks. The base's body does nothing.
    virtual void SaveBuffer(char const* data, int len);

    /// Makes room for \a len more bytes and returns 1, or 0 if they cannot fit. Flushes when
    /// they would fill the buffer exactly or overflow it, unless the buffer is empty. Without
    /// memory for the buffer, returns 0; the next call tries again.
    virtual int PrepareBuffer(int len);

private:
    friend int MakeRoom(COStream& out, int len); // of PrepareBuffer()
    // Whether Write() has just taken len bytes when it answered position, which is 0 for a refusal
    // too. A stream that puts its bytes elsewhere and answers 0 counts as one that refused.
    friend bool HasTaken(const COStream& out, int position, int len);

    char* m_pBuffer;
    qint32 m_nCapacity;
    qint32 m_nUsed;
};

} // namespace OrvoStream
