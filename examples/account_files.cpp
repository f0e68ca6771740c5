// What a client does with an account's data on disk, from end to end.
//
//     account_files [--root DIR] [--account NUMBER] [CONTACTS.tsv]
//     account_files [--root DIR] [--account NUMBER] --messages
//
// It reads an address book (number, nickname, group and remark, separated by tabs), writes the
// account's files below DIR where CQPath names them, appends an enciphered message log, reads
// everything back and compares it with the source. The second form only deciphers the message
// log and prints it.
//
// Exit codes: 0 all was found equal; 1 something could not be written or differs; 2 the
// arguments or the address book are wrong, and nothing was written.

#include <BaseUtil.h>
#include <CCrypt.h>
#include <CQFile.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CSystemCall.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <MLDataBuf.h>
#include <Orvo/CQPath.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{

// The size of a stream buffer: one write or read beyond it is refused.
constexpr int streamBufferSize = 20480;

// Ends the program with one line on stderr.
struct Failure {
    int exitCode;
    std::string text;
};

[[noreturn]] void RefuseInput(const std::string& text)
{
    throw Failure{2, text};
}

[[noreturn]] void FailToWrite(const std::string& path, const char* what)
{
    throw Failure{1, path + ": " + what};
}

[[noreturn]] void ReportDifference(const std::string& path, const char* what)
{
    throw Failure{1, path + ": read back, " + what + " differs from what was written"};
}

// The string's bytes, also for a string without a buffer.
std::string Bytes(const CQSString& text)
{
    return text.IsEmpty() ? std::string()
                          : std::string(text.GetDataPtr(), size_t(text.GetLength()));
}

CQSString FromBytes(const std::string& bytes)
{
    CQSString text;
    text.AppendData(bytes.c_str());
    return text;
}

// Equality as this program means it: two empty strings are equal, which CQSString's operator
// denies.
bool SameText(const CQSString& left, const CQSString& right)
{
    return Bytes(left) == Bytes(right);
}

struct Options {
    CQSString root;
    unsigned int account;
    CQSString contacts;
    bool listMessages;
};

struct Contact {
    unsigned int number = 0;
    CQSString nickname;
    CQSString group;
    CQSString remark;
};

struct Group {
    unsigned int id;
    CQSString name;
    std::vector<const Contact*> members;
};

struct FileReport {
    std::string name;
    int bytes;
    size_t records;
};

// --- Reading the address book ------------------------------------------------------------

std::vector<char> ReadFile(const CQSString& path, int from = 0)
{
    const CQWString widePath(path);
    CQFile file;
    if (!QFileInfo(QString::fromUtf8(path.GetDataPtr())).isReadable() ||
        !file.Open(widePath.GetDataPtr(), 0)) {
        throw Failure{1, Bytes(path) + ": cannot be opened for reading"};
    }
    std::vector<char> content(size_t(std::max(0, file.GetLength() - from)));
    file.Seek(from, 0);
    size_t have = 0;
    while (have < content.size()) {
        const int got = file.Read(content.data() + have, unsigned(content.size() - have));
        if (got < 1) {
            throw Failure{1, Bytes(path) + ": cannot be read to its end"};
        }
        have += size_t(got);
    }
    return content;
}

unsigned int ParseNumber(const CQSString& field, const std::string& where)
{
    bool digits = !field.IsEmpty();
    for (int i = 0; i < field.GetLength(); ++i) {
        digits = digits && field[i] >= '0' && field[i] <= '9';
    }
    // ToUINT() wraps at 32 bits; the number's own text tells whether it did.
    CQSString text;
    if (digits) {
        text.UToString(field.ToUINT());
    }
    if (!SameText(text, field) || Bytes(text) == "0") {
        RefuseInput(where + "the number '" + Bytes(field) + "' is not within 1 to 4294967295");
    }
    return field.ToUINT();
}

// Wide text and back keeps UTF-8 as it is, and nothing else but a leading byte-order mark.
void RequireUtf8(const CQSString& field, const char* name, const std::string& where)
{
    if (!SameText(CQSString(CQWString(field)), field)) {
        RefuseInput(where + "the " + name + " is not UTF-8 text, or opens with a byte-order mark");
    }
}

std::vector<CQSString> SplitFields(const CQSString& line)
{
    std::vector<CQSString> fields;
    for (int start = 0;;) {
        const int tab = line.Find('\t', start);
        const int end = tab < 0 ? line.GetLength() : tab;
        CQSString field;
        line.GetSubString(field, start, end - start);
        fields.push_back(std::move(field));
        if (tab < 0) {
            return fields;
        }
        start = tab + 1;
    }
}

Contact ParseContact(const CQSString& line, const std::string& where)
{
    const std::vector<CQSString> fields = SplitFields(line);
    if (fields.size() != 4) {
        RefuseInput(where + std::to_string(fields.size()) +
                    " fields instead of 4 (number, nickname, group, remark, with tabs between)");
    }
    Contact contact;
    contact.number = ParseNumber(fields[0], where);
    const char* const names[] = {"number", "nickname", "group", "remark"};
    for (size_t i = 1; i < fields.size(); ++i) {
        RequireUtf8(fields[i], names[i], where);
    }
    contact.nickname = fields[1];
    contact.group = fields[2];
    contact.remark = fields[3];
    return contact;
}

CQSString TakeLine(const CQSString& text, int& position)
{
    const int newline = text.Find('\n', position);
    const int end = newline < 0 ? text.GetLength() : newline;
    CQSString line;
    text.GetSubString(line, position, end - position);
    position = end + 1;
    if (!line.IsEmpty() && line[line.GetLength() - 1] == '\r') {
        CQSString withoutReturn;
        line.TrimRight(1, withoutReturn);
        return withoutReturn;
    }
    return line;
}

std::vector<Contact> ReadContacts(const CQSString& path)
{
    std::vector<char> content;
    try {
        content = ReadFile(path);
    } catch (const Failure& failure) {
        RefuseInput(failure.text);
    }
    CQSString text;
    text.SetData(reinterpret_cast<unsigned char*>(content.data()), int(content.size()));

    std::vector<Contact> contacts;
    std::map<unsigned int, int> lineOfNumber;
    int position = text.IsEmpty() || !text.IsStartWith("\xEF\xBB\xBF") ? 0 : 3;
    for (int lineNumber = 1; position < text.GetLength(); ++lineNumber) {
        const CQSString line = TakeLine(text, position);
        const bool header = lineNumber == 1 && line.IsStartWith("number\t");
        if (line.IsEmpty() || header) {
            continue;
        }
        const std::string where = Bytes(path) + ":" + std::to_string(lineNumber) + ": ";
        contacts.push_back(ParseContact(line, where));
        const auto [first, isNew] = lineOfNumber.emplace(contacts.back().number, lineNumber);
        if (!isNew) {
            RefuseInput(where + "the number " + std::to_string(first->first) +
                        " already stands in line " + std::to_string(first->second));
        }
    }
    if (contacts.empty()) {
        RefuseInput(Bytes(path) + ": holds no contact");
    }
    return contacts;
}

// Groups in the order in which the address book names them, numbered from 1.
std::vector<Group> CollectGroups(const std::vector<Contact>& contacts)
{
    std::vector<Group> groups;
    for (const Contact& contact : contacts) {
        auto found = std::find_if(groups.begin(), groups.end(), [&](const Group& group) {
            return SameText(group.name, contact.group);
        });
        if (found == groups.end()) {
            groups.push_back({unsigned(groups.size()) + 1, contact.group, {}});
            found = groups.end() - 1;
        }
        found->members.push_back(&contact);
    }
    return groups;
}

// --- Writing through streams -------------------------------------------------------------

// A file that is written beside its place and moved there when it is known to be whole. The
// streams report no errors, so the file's length is what tells.
class StagedFile
{
public:
    explicit StagedFile(const CQSString& path)
        : m_path(path), m_staged(path), m_wideStaged(AddSuffix(m_staged)), m_stream(m_wideStaged),
          m_out(m_stream)
    {
    }

    ~StagedFile()
    {
        m_stream.Close();
        CQFile::DeleteFile(m_wideStaged.GetDataPtr());
    }

    void WriteNumber(unsigned int number)
    {
        m_out << number;
        m_bytes += 4;
    }

    // Length, then bytes; long texts in pieces that a stream buffer takes.
    void WriteText(const CQSString& text)
    {
        WriteNumber(unsigned(text.GetLength()));
        for (int done = 0; done < text.GetLength();) {
            const int piece = std::min(text.GetLength() - done, streamBufferSize);
            m_out.Write(text.GetDataPtr() + done, piece);
            done += piece;
        }
        m_bytes += text.GetLength();
    }

    void Finish()
    {
        m_out.Flush();
        m_stream.Close();
        if (CQFile::GetFileLenght(m_wideStaged.GetDataPtr()) != m_bytes) {
            FailToWrite(Bytes(m_staged),
                        "could not be written whole (disk full, or no permission?)");
        }
    }

    void Publish()
    {
        const CQWString path(m_path);
        CQFile::DeleteFile(path.GetDataPtr());
        if (!CQFile::RenameFile(m_wideStaged.GetDataPtr(), path.GetDataPtr())) {
            FailToWrite(Bytes(m_path), "could not be moved to its place");
        }
    }

    const CQSString& StagedPath() const { return m_staged; }
    const CQSString& Path() const { return m_path; }
    int Size() const { return m_bytes; }

private:
    static CQWString AddSuffix(CQSString& path)
    {
        path.AppendData(".new");
        return CQWString(path);
    }

    CQSString m_path;
    CQSString m_staged;
    CQWString m_wideStaged;
    OrvoStream::FileOutputStream m_stream;
    DataOutputStream m_out;
    int m_bytes = 0;
};

void WriteContact(StagedFile& file, const Contact& contact)
{
    file.WriteNumber(contact.number);
    file.WriteText(contact.nickname);
    file.WriteText(contact.group);
    file.WriteText(contact.remark);
}

void WriteContactList(StagedFile& file, const std::vector<Contact>& contacts)
{
    file.WriteNumber(unsigned(contacts.size()));
    for (const Contact& contact : contacts) {
        WriteContact(file, contact);
    }
    file.Finish();
}

void WriteGroupList(StagedFile& file, const std::vector<Group>& groups)
{
    file.WriteNumber(unsigned(groups.size()));
    for (const Group& group : groups) {
        file.WriteNumber(group.id);
        file.WriteText(group.name);
    }
    file.Finish();
}

void WriteMembers(StagedFile& file, const Group& group)
{
    file.WriteNumber(unsigned(group.members.size()));
    for (const Contact* contact : group.members) {
        WriteContact(file, *contact);
    }
    file.Finish();
}

// --- Reading back ------------------------------------------------------------------------

// Reads a file that fits a stream buffer, item by item.
class StreamSource
{
public:
    explicit StreamSource(const CQSString& path) : m_file(CQWString(path)), m_in(m_file) {}

    unsigned int ReadNumber() { return unsigned(m_in.ReadInt()); }

    std::string ReadText()
    {
        int length = m_in.ReadInt();
        if (length > streamBufferSize) {
            throw -1; // as a short read does
        }
        const std::unique_ptr<char[]> bytes(m_in.ReadBytes(length));
        return bytes ? std::string(bytes.get(), size_t(length)) : std::string();
    }

private:
    OrvoStream::FileInputStream m_file;
    OrvoStream::DataInputStream m_in;
};

// Reads a file of any length, which a stream cannot: it is taken whole through CQFile::Read.
class MemorySource
{
public:
    explicit MemorySource(const CQSString& path) : m_content(ReadFile(path)) {}

    unsigned int ReadNumber()
    {
        unsigned int number; // numbers lie in the file as in memory
        std::memcpy(&number, Take(sizeof number), sizeof number);
        return number;
    }

    std::string ReadText()
    {
        const size_t length = ReadNumber();
        return std::string(Take(length), length);
    }

private:
    const char* Take(size_t length)
    {
        if (length > m_content.size() - m_position) {
            throw -1; // as a short read of a data stream does
        }
        m_position += length;
        return m_content.data() + m_position - length;
    }

    std::vector<char> m_content;
    size_t m_position = 0;
};

template <typename Source>
bool MatchesContact(Source& source, const Contact& contact)
{
    return source.ReadNumber() == contact.number && source.ReadText() == Bytes(contact.nickname) &&
           source.ReadText() == Bytes(contact.group) && source.ReadText() == Bytes(contact.remark);
}

template <typename Source>
bool MatchesMembers(Source& source, const Group& group)
{
    return source.ReadNumber() == group.members.size() &&
           std::all_of(group.members.begin(), group.members.end(),
                       [&](const Contact* contact) { return MatchesContact(source, *contact); });
}

template <typename Matches>
void RequireMatch(const StagedFile& file, const char* what, Matches matches)
{
    bool equal = false;
    try {
        equal = matches();
    } catch (int) {
        // The file ended too early, so it differs.
    }
    if (!equal) {
        ReportDifference(Bytes(file.Path()), what);
    }
}

void CheckContactList(const StagedFile& file, const std::vector<Contact>& contacts)
{
    RequireMatch(file, "the contact list", [&] {
        MemorySource source(file.StagedPath());
        return source.ReadNumber() == contacts.size() &&
               std::all_of(contacts.begin(), contacts.end(),
                           [&](const Contact& contact) { return MatchesContact(source, contact); });
    });
}

void CheckGroupList(const StagedFile& file, const std::vector<Group>& groups)
{
    RequireMatch(file, "the group list", [&] {
        MemorySource source(file.StagedPath());
        return source.ReadNumber() == groups.size() &&
               std::all_of(groups.begin(), groups.end(), [&](const Group& group) {
                   return source.ReadNumber() == group.id && source.ReadText() == Bytes(group.name);
               });
    });
}

void CheckMembers(const StagedFile& file, const Group& group)
{
    RequireMatch(file, "a group's list", [&] {
        if (file.Size() > streamBufferSize) {
            MemorySource source(file.StagedPath());
            return MatchesMembers(source, group);
        }
        StreamSource source(file.StagedPath());
        return MatchesMembers(source, group);
    });
}

// --- The message log ---------------------------------------------------------------------

// A record is the length of its envelope in network order, then the envelope; enciphered are
// the sender's number and the time in network order, then the text.
class MessageLog
{
public:
    MessageLog(const CQSString& path, unsigned int account)
        : m_path(path), m_widePath(path), m_oldLength(Length())
    {
        char password[] = "correct horse"; // only its first 16 characters count
        const std::unique_ptr<unsigned char[]> key(CCrypt::GetMd5Key(int(account), password));
        m_cipher.SetKey(key.get(), 16);
        m_cipher.SetArith(0, 0);
    }

    // Takes back what was appended, unless it was published.
    ~MessageLog()
    {
        if (m_appending) {
            Restore();
        }
    }

    // Appends a message of every contact.
    void Append(const std::vector<Contact>& contacts, unsigned int time)
    {
        // CQFile removes a file that it cannot open; a log is worth asking first.
        const QFileInfo info(QString::fromUtf8(m_path.GetDataPtr()));
        CQFile log;
        if ((info.exists() && !info.isWritable()) ||
            !log.OpenWithWriteCache(m_widePath.GetDataPtr(), 3, 16384)) {
            FailToWrite(Bytes(m_path), "cannot be opened for appending");
        }
        m_appending = true;
        int expected = m_oldLength;
        for (const Contact& contact : contacts) {
            const Record record = EncipheredRecord(contact, time);
            expected += int(record.size());
            if (log.Write(record.data(), unsigned(record.size())) != int(record.size())) {
                FailToWrite(Bytes(m_path), "could not be appended to");
            }
        }
        log.Close();
        if (Length() != expected) {
            FailToWrite(Bytes(m_path), "could not be written whole (disk full?)");
        }
    }

    void Check(const std::vector<Contact>& contacts, unsigned int time)
    {
        const std::vector<Record> records = ReadRecords(m_oldLength);
        const bool equal =
            std::equal(records.begin(), records.end(), contacts.begin(), contacts.end(),
                       [&](const Record& record, const Contact& contact) {
                           return record == PlainRecord(contact, time);
                       });
        if (!equal) {
            ReportDifference(Bytes(m_path), "a message");
        }
    }

    // One line a message: number, time and text.
    void Print()
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

    void Publish() { m_appending = false; }

    int AppendedBytes() const { return Length() - m_oldLength; }
    const CQSString& Path() const { return m_path; }

private:
    using Record = std::vector<unsigned char>;

    int Length() const { return std::max(0, CQFile::GetFileLenght(m_widePath.GetDataPtr())); }

    void Restore() const
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

    std::vector<Record> ReadRecords(int from)
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
                throw Failure{1, Bytes(m_path) + ": damaged near byte " +
                                     std::to_string(size_t(from) + position)};
            }
            records.push_back(std::move(record));
            position += size;
        }
        return records;
    }

    static Record PlainRecord(const Contact& contact, unsigned int time)
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
        return Record(record.GetBuf(), record.GetBuf() + record.GetUsedSize());
    }

    Record EncipheredRecord(const Contact& contact, unsigned int time)
    {
        const Record plain = PlainRecord(contact, time);
        Record record(4 + size_t(m_cipher.FindEncryptSize(int(plain.size()))));
        int size = 0;
        m_cipher.Encrypt(plain.data(), int(plain.size()), record.data() + 4, size);
        SetDWORD(record.data(), unsigned(size));
        return record;
    }

    Record Decipher(const unsigned char* envelope, int size)
    {
        Record plain(static_cast<size_t>(size));
        int plainSize = size;
        if (!m_cipher.Decrypt(envelope, size, plain.data(), plainSize)) {
            return {};
        }
        plain.resize(size_t(plainSize));
        return plain;
    }

    CQSString m_path;
    CQWString m_widePath;
    int m_oldLength;
    bool m_appending = false;
    CCrypt m_cipher;
};

// --- The run -----------------------------------------------------------------------------

CQSString AccountDirectory(const Options& options)
{
    CQSString directory;
    CBaseUtil::FormatString(directory, "%s\\%u", options.root.GetDataPtr(), options.account);
    return directory;
}

CQSString LogPath(const Options& options)
{
    CQSString path;
    CQPath::GetMsgFilePath(path, options.root.GetDataPtr(), options.account);
    return path;
}

void MakeDirectory(const CQSString& path)
{
    if (!CQFile::CreateDirectory(CQWString(path).GetDataPtr())) {
        FailToWrite(Bytes(path), "the directory cannot be made");
    }
}

CQSString MemberPath(const CQSString& directory, const Group& group)
{
    CQSString path;
    CQPath::GetGroupMemberFilePath(path, directory.GetDataPtr(), group.id);
    return path;
}

template <typename Getter>
CQSString PathIn(const CQSString& directory, Getter getter)
{
    CQSString path;
    getter(path, directory.GetDataPtr());
    return path;
}

std::string NameOf(const CQSString& path)
{
    const CQWString widePath(path);
    CQWString name;
    CQFile::GetFileName(&widePath, name);
    return Bytes(CQSString(name));
}

FileReport Report(const StagedFile& file, size_t records)
{
    return {NameOf(file.Path()), file.Size(), records};
}

void PrintTable(const std::vector<FileReport>& reports)
{
    std::printf("%-24s %10s %8s\n", "file", "bytes", "records");
    for (const FileReport& report : reports) {
        std::printf("%-24s %10d %8zu\n", report.name.c_str(), report.bytes, report.records);
    }
}

void PrintHexDump(const std::vector<char>& content, size_t from, size_t to)
{
    for (size_t line = from; line < to; line += 16) {
        std::printf("%06zx ", line);
        std::string text;
        for (size_t i = line; i < std::min(line + 16, to); ++i) {
            const auto byte = static_cast<unsigned char>(content[i]);
            std::printf(" %02x", byte);
            text += byte >= 0x20 && byte < 0x7F ? char(byte) : '.';
        }
        std::printf("%*s  |%s|\n", int(3 * (16 - text.size())), "", text.c_str());
    }
}

// Where the first contact ends in the contact list, behind the count and its four items.
size_t EndOfFirstRecord(const Contact& contact)
{
    return 4 + 4 * 4 +
           size_t(contact.nickname.GetLength() + contact.group.GetLength() +
                  contact.remark.GetLength());
}

void Run(const Options& options)
{
    const std::vector<Contact> contacts = ReadContacts(options.contacts);
    const std::vector<Group> groups = CollectGroups(contacts);
    const auto start = std::chrono::steady_clock::now();

    const CQSString directory = AccountDirectory(options);
    MakeDirectory(directory);

    StagedFile contactList(PathIn(directory, CQPath::GetBuddylistFilePath));
    WriteContactList(contactList, contacts);
    CheckContactList(contactList, contacts);

    StagedFile groupList(PathIn(directory, CQPath::GetGroupListFilePath));
    WriteGroupList(groupList, groups);
    CheckGroupList(groupList, groups);

    std::vector<std::unique_ptr<StagedFile>> memberLists;
    for (const Group& group : groups) {
        memberLists.push_back(std::make_unique<StagedFile>(MemberPath(directory, group)));
        WriteMembers(*memberLists.back(), group);
        CheckMembers(*memberLists.back(), group);
    }

    const auto now = unsigned(CSystemCall::GetCurrentTime());
    StagedFile lastLogOut(PathIn(directory, CQPath::GetLastLogOutTimeFilePath));
    lastLogOut.WriteNumber(now);
    lastLogOut.Finish();
    RequireMatch(lastLogOut, "the time",
                 [&] { return StreamSource(lastLogOut.StagedPath()).ReadNumber() == now; });

    MessageLog log(LogPath(options), options.account);
    log.Append(contacts, now);
    log.Check(contacts, now);

    std::vector<FileReport> reports = {Report(contactList, contacts.size()),
                                       Report(groupList, groups.size())};
    contactList.Publish();
    groupList.Publish();
    for (size_t i = 0; i < groups.size(); ++i) {
        memberLists[i]->Publish();
        reports.push_back(Report(*memberLists[i], groups[i].members.size()));
    }
    lastLogOut.Publish();
    log.Publish();
    reports.push_back(Report(lastLogOut, 1));
    reports.push_back({NameOf(log.Path()), log.AppendedBytes(), contacts.size()});
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;

    std::printf("Account %u in %s\n\n", options.account, directory.GetDataPtr());
    PrintTable(reports);
    std::printf("\nThe first contact as it lies in %s:\n", reports[0].name.c_str());
    PrintHexDump(ReadFile(contactList.Path()), 4, EndOfFirstRecord(contacts.front()));
    int total = 0;
    for (const FileReport& report : reports) {
        total += report.bytes;
    }
    std::printf("\nTook %.1f ms.\n", taken.count());
    std::printf("Wrote %zu contacts in %zu groups and %zu messages, %d bytes in %zu files; "
                "all was read back and found equal.\n",
                contacts.size(), groups.size(), contacts.size(), total, reports.size());
}

Options ParseArguments(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Writes an account's files and reads them back.");
    const QCommandLineOption root("root", "Directory for the account's files.", "DIR",
                                  "account-data");
    const QCommandLineOption account("account", "Number of the account.", "NUMBER", "10001");
    const QCommandLineOption messages("messages", "Print the message log; write nothing.");
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({root, account, messages});
    parser.addPositionalArgument("CONTACTS.tsv", "Address book to start from.");
    if (!parser.parse(arguments)) {
        RefuseInput(parser.errorText().toStdString() + " See account_files --help.");
    }
    if (parser.isSet(help)) {
        parser.showHelp();
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1) {
        RefuseInput("one address book at a time, please; got " + std::to_string(files.size()));
    }
    if (parser.value(root).isEmpty()) {
        RefuseInput("--root needs a directory");
    }
    Options options;
    options.root = FromBytes(parser.value(root).toStdString());
    options.account = ParseNumber(FromBytes(parser.value(account).toStdString()), "--account: ");
    options.contacts =
        FromBytes(files.isEmpty() ? ORVO_EXAMPLE_DATA "/contacts.tsv" : files[0].toStdString());
    options.listMessages = parser.isSet(messages);
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        const Options options = ParseArguments(QCoreApplication::arguments());
        if (options.listMessages) {
            MessageLog(LogPath(options), options.account).Print();
        } else {
            Run(options);
        }
    } catch (const Failure& failure) {
        std::fprintf(stderr, "account_files: %s\n", failure.text.c_str());
        return failure.exitCode;
    }
    return 0;
}
