#include "AssertRecorder.h"

#include <CQSString.h>
#include <CQWString.h>
#include <Orvo/CQPath.h>

#include <gtest/gtest.h>

#include <string>

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

/// What members write that take the string alone, each followed by a blank.
template <typename... Members>
std::string Names(Members... members)
{
    return (... + (Path(members) + ' '));
}

/// The same of members that take a directory, too.
template <typename... Members>
std::string NamesIn(const char* dir, Members... members)
{
    return (... + (Path(members, dir) + ' '));
}

CQSString Bytes(std::string bytes)
{
    CQSString result;
    result.SetData(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    return result;
}

} // namespace

TEST(Path, OfTheApplication)
{
    const std::string names = Names(
        P::GetAppDataRoot, P::GetUserDataRoot, P::GetBrowserRoot, P::GetHttpCookiesRoot,
        P::GetOperationGuideFile, P::GetRecentLoginFilePath, P::GetIAPFilePath,
        P::GetPortalIdFilePath, P::GetOLFileDownloadRecordFile, P::GetBrowserDownloadRecordFile,
        P::GetBrowserBookmarkFilePath, P::GetBrowserHistoryFilePath, P::GetTrayIconInfoFile,
        P::GetLastLoginConfigFile, P::GetSkinConfigFile, P::GetSkinPath,
        P::GetBrowserUrlRecordFilePath, P::GetGUIDFilePath, P::GetPVDataFilePath);
    EXPECT_EQ("~ ~ ~Browser/ ~Browser/Cookies/ ~OpGuide.info ~recentLoginUser.info "
              "~OrvoIap.info ~portalid.info ~OL.dat ~Dl.dat ~bookmark.info ~history.info "
              "~TrayIcon.info ~LstConf.dat ~skin/config.dat ~skin/ ~Browser/UserURL.dat "
              "~Browser/guid.info ~Browser/PVData.info ",
              QString::fromStdString(names).replace("/opt/orvoapp/", "~"));
    EXPECT_EQ("tmp/orvoapptemp autoreply.cfg phrase.cfg ",
              Names(P::GetHttpTempRoot, P::GetAutoReplyFileName, P::GetCommanPhraseFileName));
    EXPECT_EQ("/tmp/orvoappdownload/Image/ /tmp/orvoappdownload/FileRecv/ ",
              Names(P::GetImageFilePath, P::GetFileRecvPath));
    EXPECT_EQ("/tmp/orvoappdownload/", Path(P::GetDownloadRoot, '\0'));
    EXPECT_EQ("etmp/orvoappdownload/", Path(P::GetDownloadRoot, 'e'));
    EXPECT_EQ("/opt/orvoapp/Browser/tollocache_10001.info",
              Path(P::GetTolloLogCacheFilePath, 10001U));
    EXPECT_EQ("/opt/orvoapp/Browser/tollodraft_10001.info",
              Path(P::GetTolloLogDraftFilePath, 10001U));
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
              NamesIn("d", P::GetEnergySaveFilePath, P::GetSelfInfoFilePath,
                      P::GetGroupListFilePath, P::GetGroupInfoOkFilePath, P::GetGroupMaskFilePath,
                      P::GetLastLogOutTimeFilePath, P::GetBuddyRefreshListFilePath,
                      P::GetBuddylistFilePath, P::GetCFStamplistFilePath,
                      P::GetBuddyTeamRefreshFilePath, P::GetBuddyTeamFilePath,
                      P::GetRecentListFilePath, P::GetBlackListFilePath));
    EXPECT_EQ("/u/1/buddylist.info", Path(P::GetBuddylistFilePath, "/u\\1"));
    EXPECT_EQ("d/groupmem4294967295.info", Path(P::GetGroupMemberFilePath, "d", 4294967295U));
    EXPECT_EQ("/buddylist.info", Path(P::GetBuddylistFilePath, nullptr));
    CQSString out = Bytes("/d");
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
    ASSERT_EQ(2U, recorder.Reports().size());
    EXPECT_TRUE(recorder.Reports()[0].Is("0", "Orvo/CQPath", 59));
    EXPECT_TRUE(recorder.Reports()[1].Is("0", "Orvo/CQPath", 352));
}

TEST(Path, DecodeFileNameOpensEnvelopesUnderTheProgramsKey)
{
    // Envelopes from an implementation of the format in Python: "buddylist.info", and nothing.
    const std::string buddyList = "\x4c\xa6\x06\xc2\x22\x61\x83\xc1\x57\x41\x7d\xbd"
                                  "\xbe\xae\xd4\xf2\xbd\x4e\xfd\x39\x9e\x60\xcf\x68";
    CQSString name = Bytes(buddyList);
    EXPECT_EQ(1, P::DecodeFileName(name));
    EXPECT_STREQ("buddylist.info", name);
    name = Bytes("\x24\x0b\x64\x8b\x8f\x22\x26\xfa\xb2\xe7\xb3\x30\x84\x23\x2d\xd4");
    EXPECT_EQ(1, P::DecodeFileName(name));
    EXPECT_TRUE(name.IsEmpty()) << "deciphered to nothing, not left as it was";
    EXPECT_EQ(0, P::DecodeFileName(name));
    const std::string altered = buddyList.substr(0, 23) + 'x';
    for (const std::string& bad : {altered, buddyList.substr(8), std::string(272, 'x')}) {
        name = Bytes(bad);
        EXPECT_EQ(0, P::DecodeFileName(name));
        EXPECT_STREQ(bad.c_str(), name);
    }
}
