#pragma once

#include "OrvoExport.h"

class CQSString;
class CQWString;

/// Names every file and directory of the client on disk. Each member writes one path, with
/// slashes, into the caller's string; nothing here touches the disk.
///
/// Paths of the client itself begin with the install disc (CSystemCall::GetInstallDisc(), '/'
/// where the application has an absolute path), shown as '/' below, and lie under
/// /opt/orvoapp/ (the application root), /opt/orvoapp/Browser/ or /tmp/orvoappdownload/. Paths
/// of an account lie under a root or directory that the caller passes as UTF-8; null counts as
/// an empty text. The texts are formatted by CBaseUtil::FormatString(), so backslashes in what
/// the caller passes become slashes too, and bytes that are not UTF-8 become U+FFFD: directories
/// with such names cannot be used as roots. Arguments may lie in the string that is written.
///
/// The members do not fail, but leave an empty string without memory, and hold no state. They may
/// be called on any thread once the main thread has asked for the install disc, which Qt looks up
/// and keeps at the first request.
class ORVO_EXPORT CQPath
{
public:
    // Roots. Directories end with a slash where the comment shows one.

    /// /opt/orvoapp/
    static void GetAppDataRoot(CQSString& out);
    /// The same text as GetAppDataRoot(), kept as a member of its own.
    static void GetUserDataRoot(CQSString& out);
    /// /opt/orvoapp/Browser/
    static void GetBrowserRoot(CQSString& out);
    /// /opt/orvoapp/Browser/Cookies/
    static void GetHttpCookiesRoot(CQSString& out);
    /// /tmp/orvoappdownload/, with \a disc as its first character unless it is 0.
    static void GetDownloadRoot(CQSString& out, char disc);
    /// tmp/orvoapptemp and nothing else: no install disc and no closing slash, on purpose.
    static void GetHttpTempRoot(CQSString& out);
    /// Not to be called: asserts "0" (line 59). Then writes the configuration directory, whose
    /// name is stored enciphered; it ends with a slash.
    static void GetConfigRoot(CQSString& out);
    /// /opt/orvoapp/meegotmp/TmpOpen.pic, whatever the install disc.
    static void GetBrowserTmpPic(CQWString& out);

    // Files of the application, /opt/orvoapp/...

    /// OpGuide.info
    static void GetOperationGuideFile(CQSString& out);
    /// recentLoginUser.info
    static void GetRecentLoginFilePath(CQSString& out);
    /// OrvoIap.info
    static void GetIAPFilePath(CQSString& out);
    /// portalid.info
    static void GetPortalIdFilePath(CQSString& out);
    /// OL.dat
    static void GetOLFileDownloadRecordFile(CQSString& out);
    /// Dl.dat
    static void GetBrowserDownloadRecordFile(CQSString& out);
    /// bookmark.info: in the application root, not in its Browser directory.
    static void GetBrowserBookmarkFilePath(CQSString& out);
    /// history.info: in the application root, not in its Browser directory.
    static void GetBrowserHistoryFilePath(CQSString& out);
    /// TrayIcon.info
    static void GetTrayIconInfoFile(CQSString& out);
    /// LstConf.dat
    static void GetLastLoginConfigFile(CQSString& out);
    /// skin/config.dat
    static void GetSkinConfigFile(CQSString& out);
    /// skin/
    static void GetSkinPath(CQSString& out);
    /// ACCOUNT/hwUl.info
    static void GetLastIMEIUploadLogFile(unsigned int account, CQWString& out);

    // Files of the browser, /opt/orvoapp/Browser/...

    /// UserURL.dat
    static void GetBrowserUrlRecordFilePath(CQSString& out);
    /// guid.info
    static void GetGUIDFilePath(CQSString& out);
    /// PVData.info
    static void GetPVDataFilePath(CQSString& out);
    /// option.info. Not to be called: asserts "0" (line 352) first.
    static void GetBrowserOptionsFilePath(CQSString& out);
    /// tollocache_ACCOUNT.info
    static void GetTolloLogCacheFilePath(CQSString& out, unsigned int account);
    /// tollodraft_ACCOUNT.info
    static void GetTolloLogDraftFilePath(CQSString& out, unsigned int account);

    // Downloads, /tmp/orvoappdownload/...

    /// Image/
    static void GetImageFilePath(CQSString& out);
    /// FileRecv/
    static void GetFileRecvPath(CQSString& out);
    /// Audio/OrvoNNNNNNNNNN.amr: the low 32 bits of \a stamp as a signed number, padded with
    /// zeros to ten characters. The names of existing recordings depend on the truncation.
    static void GetRecordAudioName(CQSString& out, unsigned long long const& stamp);

    // Files of an account. Callers pass roots that end with a slash; only GetMsgFilePath() adds
    // one of its own, so that its paths hold a double slash.

    /// ROOT/ACCOUNT/msg.info
    static void GetMsgFilePath(CQSString& out, char const* root, unsigned int account);
    /// ROOTACCOUNT/loginInfo.info
    static void GetLoginInfoFilePath(CQSString& out, char const* root, unsigned int account);
    /// ROOTACCOUNT/ and the name of GetCFFileName().
    static void GetCFFilePath(CQSString& out, char const* root, unsigned int account,
                              unsigned int index);
    /// ROOTACCOUNT/INDEX.fmsg
    static void GetFileTransInfoFilePath(CQSString& out, char const* root, unsigned int account,
                                         int index);
    /// ACCOUNT_NNNNNNNNNN.png: the index as a signed number, padded with zeros to ten characters.
    static void GetCFFileName(CQSString& out, unsigned int account, unsigned int index);

    // Files in a directory that the caller names without a closing slash, DIR/...

    /// EnergySave.dat
    static void GetEnergySaveFilePath(CQSString& out, char const* dir);
    /// selfinfo.info
    static void GetSelfInfoFilePath(CQSString& out, char const* dir);
    /// grouplist.info
    static void GetGroupListFilePath(CQSString& out, char const* dir);
    /// groupinfook.info
    static void GetGroupInfoOkFilePath(CQSString& out, char const* dir);
    /// groupmask.info
    static void GetGroupMaskFilePath(CQSString& out, char const* dir);
    /// groupmemGROUP.info
    static void GetGroupMemberFilePath(CQSString& out, char const* dir, unsigned int group);
    /// LastLogOutTime.info
    static void GetLastLogOutTimeFilePath(CQSString& out, char const* dir);
    /// BuddyListRefresh.info
    static void GetBuddyRefreshListFilePath(CQSString& out, char const* dir);
    /// buddylist.info
    static void GetBuddylistFilePath(CQSString& out, char const* dir);
    /// CFStamplist.info
    static void GetCFStamplistFilePath(CQSString& out, char const* dir);
    /// BuddyListTeamRefresh.info
    static void GetBuddyTeamRefreshFilePath(CQSString& out, char const* dir);
    /// buddylistTeam.info
    static void GetBuddyTeamFilePath(CQSString& out, char const* dir);
    /// recentlist.info
    static void GetRecentListFilePath(CQSString& out, char const* dir);
    /// blacklist.info
    static void GetBlackListFilePath(CQSString& out, char const* dir);

    // File names alone

    /// autoreply.cfg
    static void GetAutoReplyFileName(CQSString& out);
    /// phrase.cfg; the spelling of the member is what callers use.
    static void GetCommanPhraseFileName(CQSString& out);

    /// Deciphers a stored name in place: the envelope of CCrypt, algorithm 0, under the
    /// program's own key, for names of up to 256 bytes.
    /// \return  1 when it was deciphered; 0 when not, or without memory, with \a name unchanged.
    static int DecodeFileName(CQSString& name);
    /// The counterpart, for tools that make stored names: puts a name of 1 to 256 bytes into an
    /// envelope that DecodeFileName() opens. Each call gives other bytes.
    /// \return  1; 0 for an empty or longer name and without memory, with \a name unchanged.
    static int EncodeFileName(CQSString& name);
};
