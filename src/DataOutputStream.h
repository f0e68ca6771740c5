#pragma once

#include "COStream.h"
#include "OrvoExport.h"

class CQSString;
class ISerializable;

/// Writes typed items to any output stream of the namespace OrvoStream.
///
/// Integers are written as they lie in memory: little-endian on the handset and its peers, and
/// never in the network order of ByteOrder.h. Texts are their bytes alone, without length or
/// terminator: a format that needs the length writes it itself, before the bytes.
///
/// The wrapped stream does the buffering and must outlive this one, which neither flushes nor
/// closes it on destruction. The results are those of COStream::Write(): a position in the
/// buffer, not a count. One write longer than 20480 bytes is refused by the buffered streams;
/// longer texts go out in pieces.
class ORVO_EXPORT DataOutputStream : public OrvoStream::COStream
{
public:
    /// Writes to \a out.
    explicit DataOutputStream(OrvoStream::COStream& out);
    /// Leaves the wrapped stream as it is, unlike the destructor of DataInputStream.
    ~DataOutputStream() override;

    /// Forward to the wrapped stream. Everything that is written goes through this Write(), so a
    /// derived class sees every byte there.
    /// @{
    int Write(char const* data, int len) override;
    void Flush() override;
    void Close() override;
    /// @}

    /// Write one item: 4, 2 or 1 bytes, or the bytes of a string, zero bytes included. Other types
    /// are promoted before they get here: `Write()` of an `unsigned short` or `unsigned char` puts
    /// 4 bytes. Cast it, or use `<<`, which has an overload for each.
    /// @{
    virtual int Write(int v);
    virtual int Write(short v);
    virtual int Write(char v);
    virtual int Write(CQSString const& s);
    /// @}

    /// Write one item, by its bits: 1, 2 or 4 bytes. An `unsigned long` counts as 32 bits.
    /// @{
    DataOutputStream& operator<<(char v);
    DataOutputStream& operator<<(unsigned char v);
    DataOutputStream& operator<<(short v);
    DataOutputStream& operator<<(unsigned short v);
    DataOutputStream& operator<<(int v);
    DataOutputStream& operator<<(unsigned int v);
    DataOutputStream& operator<<(unsigned long v);
    /// @}
    /// Writes the characters of a C string; nothing for null. A CQSString lands here too and ends
    /// at its first zero byte; Write() takes all of it.
    DataOutputStream& operator<<(char const* s);
    /// Lets \a obj write itself.
    DataOutputStream& operator<<(ISerializable const& obj);

    /// True once an item was refused, dropped or cut short, or when the wrapped stream is a file or
    /// data stream that has failed. Items that follow a refused one are written all the same, so
    /// look here before the result is used. A refused item stays on the record until this object is
    /// destroyed. A wrapped stream of another kind that overrides Write() has to answer more than 0
    /// for what it took, and refusals of a PrepareBuffer() that it overrides may go unseen.
    bool HasFailed() const;

private:
    OrvoStream::COStream* m_pOut; // not owned
    bool m_bFailed;
};
