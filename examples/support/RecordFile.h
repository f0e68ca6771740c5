#pragma once

#include <COStream.h>
#include <CQSString.h>
#include <CQSaveFile.h>
#include <DataOutputStream.h>

/// The device of a buffered stream that replaces a file safely.
class SaveStream : public OrvoStream::COStream
{
public:
    explicit SaveStream(CQSaveFile& file) : m_file(file) {}
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        m_file.Write(data, static_cast<unsigned int>(len));
    }

private:
    CQSaveFile& m_file;
};

/// One file of typed records. Its old content stays until Publish(). What cannot be written
/// throws a SampleFailure.
class RecordFile
{
public:
    explicit RecordFile(const CQSString& path);

    void WriteNumber(unsigned int number);
    /// Length, then bytes; long texts in pieces that a stream buffer takes.
    void WriteText(const CQSString& text);
    /// Ends the writing; the new content has reached the system.
    void Finish();
    /// Puts the new content in the place of the old one.
    void Publish();

    const CQSString& GetPath() const { return m_path; }
    int GetSize() const { return m_bytes; }

private:
    CQSString m_path;
    CQSaveFile m_file;
    SaveStream m_stream;
    DataOutputStream m_out;
    int m_bytes = 0;
};
