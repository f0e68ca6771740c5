#include "RecordFile.h"

#include "SampleFailure.h"
#include "SampleText.h"

#include <CQWString.h>
#include <StreamBufferSize.h>

#include <algorithm>

RecordFile::RecordFile(const CQSString& path) : m_path(path), m_stream(m_file), m_out(m_stream)
{
    if (m_file.Open(CQWString(path).GetDataPtr()) == 0) {
        FailWith(Bytes(path), "cannot be replaced (no permission?)");
    }
}

void RecordFile::WriteNumber(unsigned int number)
{
    m_out << number;
    m_bytes += 4;
}

void RecordFile::WriteText(const CQSString& text)
{
    WriteNumber(unsigned(text.GetLength()));
    for (int done = 0; done < text.GetLength();) {
        const int piece = std::min(text.GetLength() - done, OrvoStream::StreamBufferSize);
        m_out.Write(text.GetDataPtr() + done, piece);
        done += piece;
    }
    m_bytes += text.GetLength();
}

void RecordFile::Finish()
{
    m_out.Flush();
    if (m_out.HasFailed() || m_file.HasFailed()) {
        FailWith(Bytes(m_path), "could not be written whole (disk full?); its old content stands");
    }
}

void RecordFile::Publish()
{
    if (m_file.Commit() == 0) {
        FailWith(Bytes(m_path), "could not be replaced; its old content stands");
    }
}
