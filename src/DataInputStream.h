#pragma once

#include "CIStream.h"
#include "OrvoExport.h"

namespace OrvoStream
{

/// Reads typed items, as DataOutputStream writes them, from any other input stream.
///
/// Integers are in the byte order of the host, little-endian on the handset and its peers. Byte
/// runs carry neither length nor terminator: read the length first and pass it to ReadBytes().
///
/// The wrapped stream does the buffering and must outlive this one, which closes it but does not
/// delete it.
class ORVO_EXPORT DataInputStream : public CIStream
{
public:
    /// Reads from \a in.
    explicit DataInputStream(CIStream& in);
    /// Closes the wrapped stream, unlike the destructor of DataOutputStream.
    ~DataInputStream() override;

    /// Forward to the wrapped stream.
    /// @{
    int Read(char* dest, int len) override;
    int Available() override;
    void Close() override;
    /// @}

    /// Read one item through Read(). Throw an `int` of -1 when its bytes are not available.
    /// @{
    virtual int ReadInt();
    virtual short ReadShort();
    virtual char ReadChar();
    /// @}
    /// Reads \a len bytes into a new array, which the caller frees as an array, and sets \a len
    /// to what Read() gave: all of them, or 0 when they were not available, and then the array is
    /// there all the same, of the length asked for and zeroed. Null for a length below 1, which
    /// stays as it is. `std::bad_alloc` without memory: check lengths that were read from a file.
    virtual char* ReadBytes(int& len);

    /// True once an item that was asked for did not come whole, or when the wrapped stream is a
    /// file or data stream that has failed. An item that did not come stays on the record until
    /// this object is destroyed.
    bool HasFailed() const;

private:
    CIStream* m_pIn; // not owned
    bool m_bFailed;
};

} // namespace OrvoStream
