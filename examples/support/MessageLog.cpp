#include "MessageLog.h"

#include "ReadFile.h"
#include "SampleFailure.h"
#include "SampleText.h"

#include <ByteOrder.h>
#include <CQFile.h>
#include <MLDataBuf.h>

#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace
{

std::vector<unsigned char> PlainRecord(const Contact& contact, unsigned int time)
{
    // Not formatted with CBaseUtil::FormatString, which turns backslashes into slashes.
    CQSString text(contact.nickname);
    text.AppendData(": ");
    text.AppendData(contact.remark.GetDataPtr());

    CMLDataBuf record;
    record.Create(8UL + static_cast<unsigned long>(text.GetLength()));
    record.Append(HTONL(contact.number));
    record.Append(HTONL(time));
    record.Append(reinterpret_cast<const unsigned char*>(text.GetDataPtr()),
                  static_cast<unsigned long>(text.GetLength()));
    return std::vector<unsigned char>(record.GetBuf(), record.GetBuf() + record.GetUsedSize());
}

} // namespace

MessageLog::MessageLog(const CQSString& path, unsigned int account)
    : m_path(path), m_widePath(path), m_oldLength(Length())
{
    char password[] = "correct horse"; // only its first 16 characters count
    const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(int(account), password));
    m_cipher.SetKey(key.get(), 16);
    m_cipher.SetArith(0, 0);
}

MessageLog::~MessageLog()
{
    if (m_appending) {
        Restore();
    }
}

void MessageLog::Append(const std::vector<Contact>& contacts, unsigned int time)
{
    // CQFile removes a file that it cannot open; a log is worth asking first.
    const QFileInfo info(QString::fromUtf8(m_path.GetDataPtr()));
    CQFile log;
    if ((info.exists() && !info.isWritable()) ||
        !log.OpenWithWriteCache(m_widePath.GetDataPtr(), 3, 16384)) {
        FailWith(Bytes(m_path), "cannot be opened for appending");
    }
    m_appending = true;
    int expected = m_oldLength;
    for (const Contact& contact : contacts) {
        const Record record = EncipheredRecord(contact, time);
        expected += int(record.size());
        if (log.Write(record.data(), unsigned(record.size())) != int(record.size())) {
            FailWith(Bytes(m_path), "could not be appended to");
        }
    }
    log.Close();
    if (Length() != expected) {
        FailWith(Bytes(m_path), "could not be written whole (disk full?)");
    }
}

void MessageLog::Check(const std::vector<Contact>& contacts, unsigned int time)
{
    const std::vector<Record> records = ReadRecords(m_oldLength);
    const bool equal = std::equal(records.begin(), records.end(), contacts.begin(), contacts.end(),
                                  [&](const Record& record, const Contact& contact) {
                                      return record == PlainRecord(contact, time);
                                  });
    if (!equal) {
        ReportDifference(Bytes(m_path), "a message");
    }
}

void MessageLog::Print()
{
    for (Record& record : ReadRecords(0)) {
        unsigned long number = 0;
        unsigned long time = 0;
        GetDWORD(number, record.data());
        GetDWORD(time, record.data() + 4);
        std::printf("%lu\t%lu\t%.*s\n", number, time, int(record.size() - 8),
                    reinterpret_cast<const char*>(record.data() + 8));
    }
}

int MessageLog::Length() const
{
    return std::max(0, CQFile::GetFileLenght(m_widePath.GetDataPtr()));
}

void MessageLog::Restore() const
{
    if (m_oldLength == 0) {
        CQFile::DeleteFile(m_widePath.GetDataPtr());
        return;
    }
    CQFile log;
    if (log.Open(m_widePath.GetDataPtr(), 2)) {
        log.SetSize(m_oldLength);
    }
}

std::vector<MessageLog::Record> MessageLog::ReadRecords(int from)
{
    const std::vector<char> content = ReadFile(m_path, from);
    std::vector<unsigned char> bytes(content.begin(), content.end());
    std::vector<Record> records;
    for (size_t position = 0; position < bytes.size();) {
        unsigned long size = 0;
        if (bytes.size() - position >= 4) {
            GetDWORD(size, bytes.data() + position);
            position += 4;
        }
        Record record;
        if (size <= bytes.size() - position) {
            record = Decipher(bytes.data() + position, int(size));
        }
        if (record.size() < 8) {
            throw SampleFailure{1, Bytes(m_path) + ": damaged near byte " +
                                       std::to_string(size_t(from) + position)};
        }
        records.push_back(std::move(record));
        position += size;
    }
    return records;
}

MessageLog::Record MessageLog::EncipheredRecord(const Contact& contact, unsigned int time)
{
    const Record plain = PlainRecord(contact, time);
    Record record(4 + size_t(m_cipher.FindEncryptSize(int(plain.size()))));
    int size = 0;
    m_cipher.Encrypt(plain.data(), int(plain.size()), record.data() + 4, size);
    SetDWORD(record.data(), unsigned(size));
    return record;
}

MessageLog::Record MessageLog::Decipher(const unsigned char* envelope, int size)
{
    Record plain(static_cast<size_t>(size));
    int plainSize = size;
    if (!m_cipher.Decrypt(envelope, size, plain.data(), plainSize)) {
        return {};
    }
    plain.resize(size_t(plainSize));
    return plain;
}
