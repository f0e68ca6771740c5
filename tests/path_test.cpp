#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <Orvo/CQPath.h>

namespace
{

using P = CQPath;

constexpr unsigned int account = 0xFFFFFFFF;

/// What a member writes that takes the string and \a arguments.
template <typename... Parameters, typename... Arguments>
std::string Path(void (*member)(CQSString&, Parameters...), Arguments... arguments)
{
    CQSString out;
    member(out, arguments...);
    return Content(out);
}

/// What members write that take the string and perhaps a directory, each followed by a blank.
template <typename... Directory, typename... Members>
std::string Names(void (*first)(CQSString&, Directory...), Members... members)
{
    return ((Path(first, Directory("d")...) + ' ') + ... +
            (Path(members, Directory("d")...) + ' '));
}

} // namespace

TEST(Path, OfTheApplication)
{
    const std::string names =
        Names(P::GetAppDataRoot, P::GetUserDataRoot, P::GetBrowserRoot, P::GetHttpCookiesRoot,
              P::GetOperationGuideFile, P::GetRecentLoginFilePath, P::GetIAPFilePath,
              P::GetPortalIdFilePath, P::GetOLFileDownloadRecordFile,
              P::GetBrowserDownloadRecordFile, P::GetBrowserBookmarkFilePath,
              P::GetBrowserHistoryFilePath, P::GetTrayIconInfoFile, P::GetLastLoginConfigFile,
              P::GetSkinConfigFile, P::GetSkinPath, P::GetBrowserUrlRecordFilePath,
              P::GetGUIDFilePath, P::GetPVDataFilePath, P::GetHttpTempRoot, P::GetAutoReplyFileName,
              P::GetCommanPhraseFileName, P::GetImageFilePath, P::GetFileRecvPath);
    EXPECT_EQ("~ ~ ~Browser/ ~Browser/Cookies/ ~OpGuide.info ~recentLoginUser.info "
              "~OrvoIap.info ~portalid.info ~OL.dat ~Dl.dat ~bookmark.info ~history.info "
              "~TrayIcon.info ~LstConf.dat ~skin/config.dat ~skin/ ~Browser/UserURL.dat "
              "~Browser/guid.info ~Browser/PVData.info tmp/orvoapptemp autoreply.cfg phrase.cfg "
              "/tmp/orvoappdownload/Image/ /tmp/orvoappdownload/FileRecv/ ",
              QString::fromStdString(names).replace("/opt/orvoapp/", "~"));
    EXPECT_EQ("/tmp/orvoappdownload/", Path(P::GetDownloadRoot, '\0'));
    EXPECT_EQ("etmp/orvoappdownload/", Path(P::GetDownloadRoot, 'e'));
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo0000012345.amr",
              Path(P::GetRecordAudioName, (5ULL << 32) + 12345));
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo-000000001.amr", Path(P::GetRecordAudioName, ~0ULL));
    CQWString wide;
    P::GetBrowserTmpPic(wide);
    EXPECT_STREQ(L"/opt/orvoapp/meegotmp/TmpOpen.pic", wide);
    P::GetLastIMEIUploadLogFile(account, wide);
    EXPECT_STREQ(L"/opt/orvoapp/4294967295/hwUl.info", wide);
}

TEST(Path, OfAnAccountAndInADirectoryOfTheCaller)
{
    const std::string tollo = "/opt/orvoapp/Browser/tollo";
    EXPECT_EQ(tollo + "cache_4294967295.info", Path(P::GetTolloLogCacheFilePath, account));
    EXPECT_EQ(tollo + "draft_4294967295.info", Path(P::GetTolloLogDraftFilePath, account));
    EXPECT_EQ("4294967295_0000000005.png", Path(P::GetCFFileName, account, 5U));
    const char* const root = "\xE4\xB8\xAD\\";
    const std::string own = "\xE4\xB8\xAD/4294967295/";
    EXPECT_EQ(own + "4294967295_-000000002.png",
              Path(P::GetCFFilePath, root, account, account - 1));
    EXPECT_EQ(own + "loginInfo.info", Path(P::GetLoginInfoFilePath, root, account));
    EXPECT_EQ(own + "-7.fmsg", Path(P::GetFileTransInfoFilePath, root, account, -7));
    EXPECT_EQ("\xE4\xB8\xAD//4294967295/msg.info", Path(P::GetMsgFilePath, root, account));
    EXPECT_EQ("d/groupmem4294967295.info", Path(P::GetGroupMemberFilePath, "d", account));
    EXPECT_EQ("d/EnergySave.dat d/selfinfo.info d/grouplist.info d/groupinfook.info "
              "d/groupmask.info d/LastLogOutTime.info d/BuddyListRefresh.info d/buddylist.info "
              "d/CFStamplist.info d/BuddyListTeamRefresh.info d/buddylistTeam.info "
              "d/recentlist.info d/blacklist.info ",
              Names(P::GetEnergySaveFilePath, P::GetSelfInfoFilePath, P::GetGroupListFilePath,
                    P::GetGroupInfoOkFilePath, P::GetGroupMaskFilePath,
                    P::GetLastLogOutTimeFilePath, P::GetBuddyRefreshListFilePath,
                    P::GetBuddylistFilePath, P::GetCFStamplistFilePath,
                    P::GetBuddyTeamRefreshFilePath, P::GetBuddyTeamFilePath,
                    P::GetRecentListFilePath, P::GetBlackListFilePath));
    EXPECT_EQ("/buddylist.info", Path(P::GetBuddylistFilePath, nullptr));
    CQSString out = Make<CQSString>("/d");
    P::GetBuddylistFilePath(out, out);
    EXPECT_STREQ("/d/buddylist.info", out);
}

TEST(Path, ThoseNotToBeCalledAssertAndThenAnswer)
{
    AssertRecorder recorder;
    EXPECT_EQ("/opt/orvoapp/config/clientsettings/", Path(P::GetConfigRoot));
    EXPECT_EQ("/opt/orvoapp/Browser/option.info", Path(P::GetBrowserOptionsFilePath));
    EXPECT_EQ((AssertReports{{"0", "Orvo/CQPath", 59}, {"0", "Orvo/CQPath", 352}}),
              recorder.Take());
}
