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

/// Collects one path after the other; those of the client itself move to the chosen disc.
class Layout
{
public:
    explicit Layout(const Choice& choice) : m_choice(choice) {}

    void AddClient(const char* name, const std::function<void(CQSString&)>& get)
    {
        CQSString path;
        get(path);
        QString text = Text(path);
        if (text.startsWith(QChar(CSystemCall::GetInstallDisc()))) {
            text[0] = m_choice.disc;
        }
        m_entries.push_back({QString::fromLatin1(name), text});
    }

    void AddAccount(const char* name, const std::function<void(CQSString&)>& get)
    {
        CQSString path;
        get(path);
        m_entries.push_back({QString::fromLatin1(name), Text(path)});
    }

    const std::vector<Entry>& GetEntries() const { return m_entries; }

private:
    const Choice& m_choice;
    std::vector<Entry> m_entries;
};

void AddRoots(Layout& layout, const Choice& choice)
{
    layout.AddClient("GetAppDataRoot", CQPath::GetAppDataRoot);
    layout.AddClient("GetUserDataRoot", CQPath::GetUserDataRoot);
    layout.AddClient("GetBrowserRoot", CQPath::GetBrowserRoot);
    layout.AddClient("GetHttpCookiesRoot", CQPath::GetHttpCookiesRoot);
    layout.AddClient("GetDownloadRoot",
                     [&](CQSString& out) { CQPath::GetDownloadRoot(out, choice.disc.toLatin1()); });
    layout.AddClient("GetHttpTempRoot", CQPath::GetHttpTempRoot);
    layout.AddClient("GetConfigRoot", CQPath::GetConfigRoot);
    layout.AddAccount("GetBrowserTmpPic", [](CQSString& out) {
        CQWString wide;
        CQPath::GetBrowserTmpPic(wide);
        out = CQSString(wide);
    });
}

void AddApplicationFiles(Layout& layout, const Choice& choice)
{
    layout.AddClient("GetOperationGuideFile", CQPath::GetOperationGuideFile);
    layout.AddClient("GetRecentLoginFilePath", CQPath::GetRecentLoginFilePath);
    layout.AddClient("GetIAPFilePath", CQPath::GetIAPFilePath);
    layout.AddClient("GetPortalIdFilePath", CQPath::GetPortalIdFilePath);
    layout.AddClient("GetOLFileDownloadRecordFile", CQPath::GetOLFileDownloadRecordFile);
    layout.AddClient("GetBrowserDownloadRecordFile", CQPath::GetBrowserDownloadRecordFile);
    layout.AddClient("GetBrowserBookmarkFilePath", CQPath::GetBrowserBookmarkFilePath);
    layout.AddClient("GetBrowserHistoryFilePath", CQPath::GetBrowserHistoryFilePath);
    layout.AddClient("GetTrayIconInfoFile", CQPath::GetTrayIconInfoFile);
    layout.AddClient("GetLastLoginConfigFile", CQPath::GetLastLoginConfigFile);
    layout.AddClient("GetSkinConfigFile", CQPath::GetSkinConfigFile);
    layout.AddClient("GetSkinPath", CQPath::GetSkinPath);
    layout.AddClient("GetLastIMEIUploadLogFile", [&](CQSString& out) {
        CQWString wide;
        CQPath::GetLastIMEIUploadLogFile(choice.account, wide);
        out = CQSString(wide);
    });
    layout.AddClient("GetBrowserUrlRecordFilePath", CQPath::GetBrowserUrlRecordFilePath);
    layout.AddClient("GetGUIDFilePath", CQPath::GetGUIDFilePath);
    layout.AddClient("GetPVDataFilePath", CQPath::GetPVDataFilePath);
    layout.AddClient("GetBrowserOptionsFilePath", CQPath::GetBrowserOptionsFilePath);
    layout.AddClient("GetTolloLogCacheFilePath", [&](CQSString& out) {
        CQPath::GetTolloLogCacheFilePath(out, choice.account);
    });
    layout.AddClient("GetTolloLogDraftFilePath", [&](CQSString& out) {
        CQPath::GetTolloLogDraftFilePath(out, choice.account);
    });
    layout.AddClient("GetImageFilePath", CQPath::GetImageFilePath);
    layout.AddClient("GetFileRecvPath", CQPath::GetFileRecvPath);
    layout.AddClient("GetRecordAudioName",
                     [&](CQSString& out) { CQPath::GetRecordAudioName(out, choice.index); });
}

void AddAccountFiles(Layout& layout, const Choice& choice)
{
    const char* const root = choice.root.constData();
    const auto addBelowRoot = [&](const char* name, auto get) {
        layout.AddAccount(name, [&](CQSString& out) { get(out, root, choice.account); });
    };
    const auto addInDirectory = [&](const char* name, auto get) {
        layout.AddAccount(name, [&](CQSString& out) { get(out, choice.directory.constData()); });
    };
    addBelowRoot("GetMsgFilePath", CQPath::GetMsgFilePath);
    addBelowRoot("GetLoginInfoFilePath", CQPath::GetLoginInfoFilePath);
    layout.AddAccount("GetCFFilePath", [&](CQSString& out) {
        CQPath::GetCFFilePath(out, root, choice.account, choice.index);
    });
    layout.AddAccount("GetFileTransInfoFilePath", [&](CQSString& out) {
        CQPath::GetFileTransInfoFilePath(out, root, choice.account, static_cast<int>(choice.index));
    });
    addInDirectory("GetEnergySaveFilePath", CQPath::GetEnergySaveFilePath);
    addInDirectory("GetSelfInfoFilePath", CQPath::GetSelfInfoFilePath);
    addInDirectory("GetGroupListFilePath", CQPath::GetGroupListFilePath);
    addInDirectory("GetGroupInfoOkFilePath", CQPath::GetGroupInfoOkFilePath);
    addInDirectory("GetGroupMaskFilePath", CQPath::GetGroupMaskFilePath);
    layout.AddAccount("GetGroupMemberFilePath", [&](CQSString& out) {
        CQPath::GetGroupMemberFilePath(out, choice.directory.constData(), choice.index);
    });
    addInDirectory("GetLastLogOutTimeFilePath", CQPath::GetLastLogOutTimeFilePath);
    addInDirectory("GetBuddyRefreshListFilePath", CQPath::GetBuddyRefreshListFilePath);
    addInDirectory("GetBuddylistFilePath", CQPath::GetBuddylistFilePath);
    addInDirectory("GetCFStamplistFilePath", CQPath::GetCFStamplistFilePath);
    addInDirectory("GetBuddyTeamRefreshFilePath", CQPath::GetBuddyTeamRefreshFilePath);
    addInDirectory("GetBuddyTeamFilePath", CQPath::GetBuddyTeamFilePath);
    addInDirectory("GetRecentListFilePath", CQPath::GetRecentListFilePath);
    addInDirectory("GetBlackListFilePath", CQPath::GetBlackListFilePath);
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
