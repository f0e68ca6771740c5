#pragma once

#include "AddressBook.h"

#include <CCrypt.h>
#include <CQSString.h>
#include <CQWString.h>

#include <vector>

/// An account's enciphered message log. A record is the length of its envelope in network order,
/// then the envelope; enciphered are the sender's number and the time in network order, then the
/// text. Its operations throw a SampleFailure.
class MessageLog
{
public:
    MessageLog(const CQSString& path, unsigned int account);
    /// Takes back what was appended, unless it was published.
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    /// Appends a message of every contact.
    void Append(const std::vector<Contact>& contacts, unsigned int time);
    /// Reads the appended messages back and compares them.
    void Check(const std::vector<Contact>& contacts, unsigned int time);
    void Publish() { m_appending = false; }
    /// Prints one line a message: number, time and text.
    void Print();

    int AppendedBytes() const { return Length() - m_oldLength; }
    const CQSString& Path() const { return m_path; }

private:
    using Record = std::vector<unsigned char>;

    int Length() const;
    void Restore() const;
    std::vector<Record> ReadRecords(int from);
    Record EncipheredRecord(const Contact& contact, unsigned int time);
    Record Decipher(const unsigned char* envelope, int size);

    CQSString m_path;
    CQWString m_widePath;
    int m_oldLength;
    bool m_appending = false;
    CCrypt m_cipher;
};
