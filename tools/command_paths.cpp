// paths: the whole data layout for a disc and an account, with what exists there.

#include "Command.h"

#include <CQSString.h>
#include <CQWString.h>
#include <CSystemCall.h>
#include <Orvo/CQPath.h>
#include <OrvoAssert.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <utility>

namespace
{

struct Entry {
    QString name; // of the member of CQPath
    QString path;
};

/// What the members of CQPath take, as the command line gives it.
struct Choice {
    QChar disc;
    QByteArray root;
    QByteArray directory;
    unsigned int account;
    unsigned int index;
};

QString Text(const CQSString& text)
{
    return QString::fromUtf8(text.GetDataPtr(), text.GetLength());
}

/// A member of CQPath, by its name, with what it takes beside its result.
using Member = std::pair<const char*, std::function<void(CQSString&)>>;

/// The same for one whose result is a wide string.
Member Wide(const char* name, const std::function<void(CQWString&)>& get)
{
    return {name, [get](CQSString& out) {
                CQWString wide;
                get(wide);
                out = CQSString(wide);
            }};
}

/// Collects one path after the other.
class Layout
{
public:
    explicit Layout(const Choice& choice) : m_choice(choice) {}

    /// Paths of the client itself, which move to the chosen disc.
    void AddClient(std::initializer_list<Member> members)
    {
        for (const Member& member : members) {
            QString path = PathOf(member);
            if (path.startsWith(QChar(CSystemCall::GetInstallDisc()))) {
                path[0] = m_choice.disc;
            }
            m_entries.push_back({QString::fromLatin1(member.first), path});
        }
    }

    void AddAccount(std::initializer_list<Member> members)
    {
        for (const Member& member : members) {
            m_entries.push_back({QString::fromLatin1(member.first), PathOf(member)});
        }
    }

    const std::vector<Entry>& GetEntries() const { return m_entries; }

private:
    static QString PathOf(const Member& member)
    {
        CQSString path;
        member.second(path);
        return Text(path);
    }

    const Choice& m_choice;
    std::vector<Entry> m_entries;
};

void AddRoots(Layout& layout, const Choice& choice)
{
    layout.AddClient({
        {"GetAppDataRoot", CQPath::GetAppDataRoot},
        {"GetUserDataRoot", CQPath::GetUserDataRoot},
        {"GetBrowserRoot", CQPath::GetBrowserRoot},
        {"GetHttpCookiesRoot", CQPath::GetHttpCookiesRoot},
        {"GetDownloadRoot",
         [&](CQSString& out) { CQPath::GetDownloadRoot(out, choice.disc.toLatin1()); }},
        {"GetHttpTempRoot", CQPath::GetHttpTempRoot},
        {"GetConfigRoot", CQPath::GetConfigRoot},
    });
    layout.AddAccount({Wide("GetBrowserTmpPic", CQPath::GetBrowserTmpPic)});
}

void AddApplicationFiles(Layout& layout, const Choice& choice)
{
    const unsigned int account = choice.account;
    layout.AddClient({
        {"GetOperationGuideFile", CQPath::GetOperationGuideFile},
        {"GetRecentLoginFilePath", CQPath::GetRecentLoginFilePath},
        {"GetIAPFilePath", CQPath::GetIAPFilePath},
        {"GetPortalIdFilePath", CQPath::GetPortalIdFilePath},
        {"GetOLFileDownloadRecordFile", CQPath::GetOLFileDownloadRecordFile},
        {"GetBrowserDownloadRecordFile", CQPath::GetBrowserDownloadRecordFile},
        {"GetBrowserBookmarkFilePath", CQPath::GetBrowserBookmarkFilePath},
        {"GetBrowserHistoryFilePath", CQPath::GetBrowserHistoryFilePath},
        {"GetTrayIconInfoFile", CQPath::GetTrayIconInfoFile},
        {"GetLastLoginConfigFile", CQPath::GetLastLoginConfigFile},
        {"GetSkinConfigFile", CQPath::GetSkinConfigFile},
        {"GetSkinPath", CQPath::GetSkinPath},
        Wide("GetLastIMEIUploadLogFile",
             [&](CQWString& out) { CQPath::GetLastIMEIUploadLogFile(account, out); }),
        {"GetBrowserUrlRecordFilePath", CQPath::GetBrowserUrlRecordFilePath},
        {"GetGUIDFilePath", CQPath::GetGUIDFilePath},
        {"GetPVDataFilePath", CQPath::GetPVDataFilePath},
        {"GetBrowserOptionsFilePath", CQPath::GetBrowserOptionsFilePath},
        {"GetTolloLogCacheFilePath",
         [&](CQSString& out) { CQPath::GetTolloLogCacheFilePath(out, account); }},
        {"GetTolloLogDraftFilePath",
         [&](CQSString& out) { CQPath::GetTolloLogDraftFilePath(out, account); }},
        {"GetImageFilePath", CQPath::GetImageFilePath},
        {"GetFileRecvPath", CQPath::GetFileRecvPath},
        {"GetRecordAudioName",
         [&](CQSString& out) { CQPath::GetRecordAudioName(out, choice.index); }},
    });
}

void AddAccountFiles(Layout& layout, const Choice& choice)
{
    const char* const root = choice.root.constData();
    const char* const directory = choice.directory.constData();
    const unsigned int account = choice.account;
    const unsigned int index = choice.index;
    layout.AddAccount({
        {"GetMsgFilePath", [&](CQSString& out) { CQPath::GetMsgFilePath(out, root, account); }},
        {"GetLoginInfoFilePath",
         [&](CQSString& out) { CQPath::GetLoginInfoFilePath(out, root, account); }},
        {"GetCFFilePath",
         [&](CQSString& out) { CQPath::GetCFFilePath(out, root, account, index); }},
        {"GetFileTransInfoFilePath",
         [&](CQSString& out) {
             CQPath::GetFileTransInfoFilePath(out, root, account, static_cast<int>(index));
         }},
    });
    const auto inDirectory = [&](const char* name, void (*get)(CQSString&, const char*)) {
        return Member(name, [=](CQSString& out) { get(out, directory); });
    };
    layout.AddAccount({
        inDirectory("GetEnergySaveFilePath", CQPath::GetEnergySaveFilePath),
        inDirectory("GetSelfInfoFilePath", CQPath::GetSelfInfoFilePath),
        inDirectory("GetGroupListFilePath", CQPath::GetGroupListFilePath),
        inDirectory("GetGroupInfoOkFilePath", CQPath::GetGroupInfoOkFilePath),
        inDirectory("GetGroupMaskFilePath", CQPath::GetGroupMaskFilePath),
        {"GetGroupMemberFilePath",
         [&](CQSString& out) { CQPath::GetGroupMemberFilePath(out, directory, index); }},
        inDirectory("GetLastLogOutTimeFilePath", CQPath::GetLastLogOutTimeFilePath),
        inDirectory("GetBuddyRefreshListFilePath", CQPath::GetBuddyRefreshListFilePath),
        inDirectory("GetBuddylistFilePath", CQPath::GetBuddylistFilePath),
        inDirectory("GetCFStamplistFilePath", CQPath::GetCFStamplistFilePath),
        inDirectory("GetBuddyTeamRefreshFilePath", CQPath::GetBuddyTeamRefreshFilePath),
        inDirectory("GetBuddyTeamFilePath", CQPath::GetBuddyTeamFilePath),
        inDirectory("GetRecentListFilePath", CQPath::GetRecentListFilePath),
        inDirectory("GetBlackListFilePath", CQPath::GetBlackListFilePath),
    });
}

Choice ParseChoice(const QCommandLineParser& parser)
{
    const QString disc = parser.value(QStringLiteral("disc"));
    if (disc.size() != 1 || disc[0].unicode() >= 0x80) {
        throw UsageError(QStringLiteral("--disc takes one ASCII character, got '%1'").arg(disc));
    }
    Choice choice{};
    choice.disc = disc[0];
    choice.account = static_cast<unsigned int>(ParseNumber(
        parser.value(QStringLiteral("account")), QStringLiteral("--account"), 0, 4294967295LL));
    choice.index = static_cast<unsigned int>(ParseNumber(
        parser.value(QStringLiteral("index")), QStringLiteral("--index"), 0, 2147483647LL));
    choice.root = parser.isSet(QStringLiteral("root"))
                      ? parser.value(QStringLiteral("root")).toUtf8()
                      : disc.toUtf8() + "opt/orvoapp/";
    if (!choice.root.endsWith('/')) {
        choice.root += '/';
    }
    choice.directory = choice.root + QByteArray::number(choice.account);
    return choice;
}

void PrintTable(const std::vector<Entry>& entries)
{
    for (const Entry& entry : entries) {
        const QFileInfo info(entry.path);
        const QString state = !info.exists() ? QStringLiteral("-")
                              : info.isDir() ? QStringLiteral("directory")
                                             : QString::number(info.size());
        std::printf("%-28s %12s  %s\n", qUtf8Printable(entry.name), qUtf8Printable(state),
                    qUtf8Printable(entry.path));
    }
}

void PrintJson(const std::vector<Entry>& entries)
{
    QJsonArray rows;
    for (const Entry& entry : entries) {
        const QFileInfo info(entry.path);
        QJsonObject row{{QStringLiteral("name"), entry.name},
                        {QStringLiteral("path"), entry.path},
                        {QStringLiteral("exists"), info.exists()},
                        {QStringLiteral("directory"), info.isDir()}};
        if (info.isFile()) {
            row.insert(QStringLiteral("bytes"), info.size());
        }
        rows.append(row);
    }
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}

void Declare(QCommandLineParser& parser)
{
    parser.addOptions({
        {QStringLiteral("disc"), QStringLiteral("Install disc of the client (default /)."),
         QStringLiteral("CHAR"), QStringLiteral("/")},
        {QStringLiteral("account"), QStringLiteral("Number of the account (default 10001)."),
         QStringLiteral("NUMBER"), QStringLiteral("10001")},
        {QStringLiteral("root"),
         QStringLiteral("Directory of all accounts (default opt/orvoapp on the disc)."),
         QStringLiteral("DIR")},
        {QStringLiteral("index"),
         QStringLiteral("Number of the group, picture or recording (default 1)."),
         QStringLiteral("NUMBER"), QStringLiteral("1")},
    });
    DeclareJson(parser);
}

int Run(const QCommandLineParser& parser)
{
    RequireArguments(parser, 0, 0);
    const Choice choice = ParseChoice(parser);
    Layout layout(choice);
    // Two members assert that no client calls them; a listing wants their paths all the same.
    const OrvoAssertHandler handler = OrvoSetAssertHandler([](const char*, const char*, int) {});
    AddRoots(layout, choice);
    AddApplicationFiles(layout, choice);
    OrvoSetAssertHandler(handler);
    AddAccountFiles(layout, choice);
    if (parser.isSet(QStringLiteral("json"))) {
        PrintJson(layout.GetEntries());
    } else {
        PrintTable(layout.GetEntries());
    }
    return 0;
}

} // namespace

const Command commandPaths = {"paths",
                              "",
                              "Print the client's data layout and what of it exists.",
                              "orvotool paths --root build/demo --account 10001",
                              Declare,
                              Run};
