#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <Orvo/CQPath.h>

namespace
{

using P = CQPath;

/// What a member writes that takes the string and \a arguments.
template <typename... Parameters, typename... Arguments>
std::string Path(void (*member)(CQSString&, Parameters...), Arguments... arguments)
{
    CQSString out;
    member(out, arguments...);
    return out.IsEmpty() ? "" : out.GetDataPtr();
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
    const std::string tollo = "/opt/orvoapp/Browser/tollo";
    EXPECT_EQ(tollo + "cache_10001.info", Path(P::GetTolloLogCacheFilePath, 10001U));
    EXPECT_EQ(tollo + "draft_10001.info", Path(P::GetTolloLogDraftFilePath, 10001U));
    CQWString wide;
    P::GetBrowserTmpPic(wide);
    EXPECT_STREQ(L"/opt/orvoapp/meegotmp/TmpOpen.pic", wide);
    P::GetLastIMEIUploadLogFile(10001, wide);
    EXPECT_STREQ(L"/opt/orvoapp/10001/hwUl.info", wide);
}

TEST(Path, InADirectoryOfTheCaller)
{
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
    EXPECT_EQ("/u/1/buddylist.info", Path(P::GetBuddylistFilePath, "/u\\1"));
    EXPECT_EQ("d/groupmem4294967295.info", Path(P::GetGroupMemberFilePath, "d", 4294967295U));
    EXPECT_EQ("/buddylist.info", Path(P::GetBuddylistFilePath, nullptr));
    CQSString out = Make<CQSString>("/d");
    P::GetBuddylistFilePath(out, out);
    EXPECT_STREQ("/d/buddylist.info", out);
}

TEST(Path, OfAnAccount)
{
    EXPECT_EQ("/u//10001/msg.info", Path(P::GetMsgFilePath, "/u/", 10001U));
    EXPECT_EQ("/u/10001/loginInfo.info", Path(P::GetLoginInfoFilePath, "/u/", 10001U));
    EXPECT_EQ("/u/10001/10001_0000000005.png", Path(P::GetCFFilePath, "/u/", 10001U, 5U));
    EXPECT_EQ("/u/4000000000/-7.fmsg", Path(P::GetFileTransInfoFilePath, "/u/", 4000000000U, -7));
    EXPECT_EQ("1_-000000001.png", Path(P::GetCFFileName, 1U, 4294967295U));
    // The low 32 bits of a stamp, signed.
    const std::string audio = "/tmp/orvoappdownload/Audio/Orvo";
    EXPECT_EQ(audio + "0000012345.amr", Path(P::GetRecordAudioName, 4294967296ULL + 12345));
    EXPECT_EQ(audio + "-000000002.amr", Path(P::GetRecordAudioName, 0x1FFFFFFFEULL));
}

TEST(Path, ThoseNotToBeCalledAssertAndThenAnswer)
{
    AssertRecorder recorder;
    EXPECT_EQ("/opt/orvoapp/config/clientsettings/", Path(P::GetConfigRoot));
    EXPECT_EQ("/opt/orvoapp/Browser/option.info", Path(P::GetBrowserOptionsFilePath));
    EXPECT_EQ((AssertReports{{"0", "Orvo/CQPath", 59}, {"0", "Orvo/CQPath", 352}}),
              recorder.Take());
}

TEST(Path, DecodeFileNameOpensEnvelopesUnderTheProgramsKey)
{
    // Envelopes from an implementation of the format in Python: "buddylist.info", and nothing.
    const std::string buddyList = "\x4c\xa6\x06\xc2\x22\x61\x83\xc1\x57\x41\x7d\xbd"
                                  "\xbe\xae\xd4\xf2\xbd\x4e\xfd\x39\x9e\x60\xcf\x68";
    CQSString name = Make<CQSString>(buddyList);
    EXPECT_EQ(1, P::DecodeFileName(name));
    EXPECT_STREQ("buddylist.info", name);
    name = Make<CQSString>("\x24\x0b\x64\x8b\x8f\x22\x26\xfa\xb2\xe7\xb3\x30\x84\x23\x2d\xd4");
    EXPECT_EQ(1, P::DecodeFileName(name));
    EXPECT_TRUE(name.IsEmpty()) << "deciphered to nothing, not left as it was";
    EXPECT_EQ(0, P::DecodeFileName(name));
    const std::string altered = buddyList.substr(0, 23) + 'x';
    for (const std::string& bad : {altered, buddyList.substr(8), std::string(272, 'x')}) {
        name = Make<CQSString>(bad);
        EXPECT_EQ(0, P::DecodeFileName(name));
        EXPECT_STREQ(bad.c_str(), name);
    }
}
