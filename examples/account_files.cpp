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

#include "support/AddressBook.h"
#include "support/MessageLog.h"
#include "support/ReadFile.h"
#include "support/RecordFile.h"
#include "support/SampleFailure.h"
#include "support/SampleText.h"

#include <BaseUtil.h>
#include <CQFile.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CSystemCall.h>
#include <DataInputStream.h>
#include <FileInputStream.h>
#include <Orvo/CQPath.h>
#include <StreamBufferSize.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

struct Options {
    CQSString root;
    unsigned int account;
    CQSString contacts;
    bool listMessages;
};

struct FileReport {
    std::string name;
    int bytes;
    size_t records;
};

// --- Writing through streams -------------------------------------------------------------

void WriteContact(RecordFile& file, const Contact& contact)
{
    file.WriteNumber(contact.number);
    file.WriteText(contact.nickname);
    file.WriteText(contact.group);
    file.WriteText(contact.remark);
}

void WriteContactList(RecordFile& file, const std::vector<Contact>& contacts)
{
    file.WriteNumber(unsigned(contacts.size()));
    for (const Contact& contact : contacts) {
        WriteContact(file, contact);
    }
    file.Finish();
}

void WriteGroupList(RecordFile& file, const std::vector<Group>& groups)
{
    file.WriteNumber(unsigned(groups.size()));
    for (const Group& group : groups) {
        file.WriteNumber(group.id);
        file.WriteText(group.name);
    }
    file.Finish();
}

void WriteMembers(RecordFile& file, const Group& group)
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
        if (length > OrvoStream::StreamBufferSize) {
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
void RequireMatch(const RecordFile& file, const char* what, Matches matches)
{
    bool equal = false;
    try {
        equal = matches();
    } catch (int) {
        // The file ended too early, so it differs.
    }
    if (!equal) {
        ReportDifference(Bytes(file.GetPath()), what);
    }
}

void CheckContactList(const RecordFile& file, const std::vector<Contact>& contacts)
{
    RequireMatch(file, "the contact list", [&] {
        MemorySource source(file.GetPath());
        return source.ReadNumber() == contacts.size() &&
               std::all_of(contacts.begin(), contacts.end(),
                           [&](const Contact& contact) { return MatchesContact(source, contact); });
    });
}

void CheckGroupList(const RecordFile& file, const std::vector<Group>& groups)
{
    RequireMatch(file, "the group list", [&] {
        MemorySource source(file.GetPath());
        return source.ReadNumber() == groups.size() &&
               std::all_of(groups.begin(), groups.end(), [&](const Group& group) {
                   return source.ReadNumber() == group.id && source.ReadText() == Bytes(group.name);
               });
    });
}

void CheckMembers(const RecordFile& file, const Group& group)
{
    RequireMatch(file, "a group's list", [&] {
        if (file.GetSize() > OrvoStream::StreamBufferSize) {
            MemorySource source(file.GetPath());
            return MatchesMembers(source, group);
        }
        StreamSource source(file.GetPath());
        return MatchesMembers(source, group);
    });
}

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
        FailWith(Bytes(path), "the directory cannot be made");
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

FileReport Report(const RecordFile& file, size_t records)
{
    return {NameOf(file.GetPath()), file.GetSize(), records};
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

// The files of an account's directory: all are written before the first old one is replaced.
class AccountFiles
{
public:
    AccountFiles(const CQSString& directory, const std::vector<Contact>& contacts,
                 const std::vector<Group>& groups, unsigned int now)
        : m_contacts(contacts), m_groups(groups), m_now(now),
          m_contactList(PathIn(directory, CQPath::GetBuddylistFilePath)),
          m_groupList(PathIn(directory, CQPath::GetGroupListFilePath)),
          m_lastLogOut(PathIn(directory, CQPath::GetLastLogOutTimeFilePath))
    {
        WriteContactList(m_contactList, contacts);
        WriteGroupList(m_groupList, groups);
        for (const Group& group : groups) {
            m_memberLists.push_back(std::make_unique<RecordFile>(MemberPath(directory, group)));
            WriteMembers(*m_memberLists.back(), group);
        }
        m_lastLogOut.WriteNumber(now);
        m_lastLogOut.Finish();
    }

    void Publish()
    {
        m_contactList.Publish();
        m_groupList.Publish();
        for (const auto& list : m_memberLists) {
            list->Publish();
        }
        m_lastLogOut.Publish();
    }

    void Check() const
    {
        CheckContactList(m_contactList, m_contacts);
        CheckGroupList(m_groupList, m_groups);
        for (size_t i = 0; i < m_groups.size(); ++i) {
            CheckMembers(*m_memberLists[i], m_groups[i]);
        }
        RequireMatch(m_lastLogOut, "the time",
                     [&] { return StreamSource(m_lastLogOut.GetPath()).ReadNumber() == m_now; });
    }

    std::vector<FileReport> GetReports() const
    {
        std::vector<FileReport> reports = {Report(m_contactList, m_contacts.size()),
                                           Report(m_groupList, m_groups.size())};
        for (size_t i = 0; i < m_groups.size(); ++i) {
            reports.push_back(Report(*m_memberLists[i], m_groups[i].members.size()));
        }
        reports.push_back(Report(m_lastLogOut, 1));
        return reports;
    }

    const CQSString& GetContactListPath() const { return m_contactList.GetPath(); }

private:
    const std::vector<Contact>& m_contacts;
    const std::vector<Group>& m_groups;
    unsigned int m_now;
    RecordFile m_contactList;
    RecordFile m_groupList;
    std::vector<std::unique_ptr<RecordFile>> m_memberLists;
    RecordFile m_lastLogOut;
};

void Run(const Options& options)
{
    const std::vector<Contact> contacts = ReadContacts(options.contacts);
    const std::vector<Group> groups = CollectGroups(contacts);
    const auto start = std::chrono::steady_clock::now();

    const CQSString directory = AccountDirectory(options);
    MakeDirectory(directory);

    const auto now = unsigned(CSystemCall::GetCurrentTime());
    AccountFiles files(directory, contacts, groups, now);
    MessageLog log(LogPath(options), options.account);
    log.Append(contacts, now);
    files.Publish();
    files.Check();
    log.Check(contacts, now);
    log.Publish();

    std::vector<FileReport> reports = files.GetReports();
    reports.push_back({NameOf(log.Path()), log.AppendedBytes(), contacts.size()});
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;

    std::printf("Account %u in %s\n\n", options.account, directory.GetDataPtr());
    PrintTable(reports);
    std::printf("\nThe first contact as it lies in %s:\n", reports[0].name.c_str());
    PrintHexDump(ReadFile(files.GetContactListPath()), 4, EndOfFirstRecord(contacts.front()));
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
    } catch (const SampleFailure& failure) {
        std::fprintf(stderr, "account_files: %s\n", failure.text.c_str());
        return failure.exitCode;
    }
    return 0;
}
