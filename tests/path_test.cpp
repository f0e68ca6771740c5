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

CQSString Bytes(std::string bytes)
{
    CQSString result;
    result.SetData(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    return result;
}

} // namespace

TEST(Path, OfTheApplication)
{
    const struct {
        void (*member)(CQSString&);
        const char* file;
    } rows[] = {{P::GetAppDataRoot, ""},
                {P::GetUserDataRoot, ""},
                {P::GetBrowserRoot, "Browser/"},
                {P::GetHttpCookiesRoot, "Browser/Cookies/"},
                {P::GetOperationGuideFile, "OpGuide.info"},
                {P::GetRecentLoginFilePath, "recentLoginUser.info"},
                {P::GetIAPFilePath, "OrvoIap.info"},
                {P::GetPortalIdFilePath, "portalid.info"},
                {P::GetOLFileDownloadRecordFile, "OL.dat"},
                {P::GetBrowserDownloadRecordFile, "Dl.dat"},
                {P::GetBrowserBookmarkFilePath, "bookmark.info"},
                {P::GetBrowserHistoryFilePath, "history.info"},
                {P::GetBrowserUrlRecordFilePath, "Browser/UserURL.dat"},
                {P::GetGUIDFilePath, "Browser/guid.info"},
                {P::GetPVDataFilePath, "Browser/PVData.info"},
                {P::GetTrayIconInfoFile, "TrayIcon.info"},
                {P::GetLastLoginConfigFile, "LstConf.dat"},
                {P::GetSkinConfigFile, "skin/config.dat"},
                {P::GetSkinPath, "skin/"}};
    for (const auto& row : rows) {
        EXPECT_EQ(std::string("/opt/orvoapp/") + row.file, Path(row.member));
    }
    EXPECT_EQ("tmp/orvoapptemp", Path(P::GetHttpTempRoot));
    EXPECT_EQ("/tmp/orvoappdownload/Image/", Path(P::GetImageFilePath));
    EXPECT_EQ("/tmp/orvoappdownload/FileRecv/", Path(P::GetFileRecvPath));
    EXPECT_EQ("/tmp/orvoappdownload/", Path(P::GetDownloadRoot, '\0'));
    EXPECT_EQ("etmp/orvoappdownload/", Path(P::GetDownloadRoot, 'e'));
    EXPECT_EQ("autoreply.cfg", Path(P::GetAutoReplyFileName));
    EXPECT_EQ("phrase.cfg", Path(P::GetCommanPhraseFileName));

    CQWString wide;
    P::GetBrowserTmpPic(wide);
    EXPECT_EQ(0, wide.Compare(L"/opt/orvoapp/meegotmp/TmpOpen.pic"));
    P::GetLastIMEIUploadLogFile(10001, wide);
    EXPECT_EQ(0, wide.Compare(L"/opt/orvoapp/10001/hwUl.info"));
}

TEST(Path, InADirectoryOfTheCaller)
{
    const struct {
        void (*member)(CQSString&, const char*);
        const char* file;
    } rows[] = {{P::GetEnergySaveFilePath, "EnergySave.dat"},
                {P::GetSelfInfoFilePath, "selfinfo.info"},
                {P::GetGroupListFilePath, "grouplist.info"},
                {P::GetGroupInfoOkFilePath, "groupinfook.info"},
                {P::GetGroupMaskFilePath, "groupmask.info"},
                {P::GetLastLogOutTimeFilePath, "LastLogOutTime.info"},
                {P::GetBuddyRefreshListFilePath, "BuddyListRefresh.info"},
                {P::GetBuddylistFilePath, "buddylist.info"},
                {P::GetCFStamplistFilePath, "CFStamplist.info"},
                {P::GetBuddyTeamRefreshFilePath, "BuddyListTeamRefresh.info"},
                {P::GetBuddyTeamFilePath, "buddylistTeam.info"},
                {P::GetRecentListFilePath, "recentlist.info"},
                {P::GetBlackListFilePath, "blacklist.info"}};
    for (const auto& row : rows) {
        EXPECT_EQ(std::string("/u/10001/") + row.file, Path(row.member, "/u\\10001"));
    }
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
    const std::string browser = "/opt/orvoapp/Browser/";
    const std::string audio = "/tmp/orvoappdownload/Audio/";
    EXPECT_EQ(browser + "tollocache_10001.info", Path(P::GetTolloLogCacheFilePath, 10001U));
    EXPECT_EQ(browser + "tollodraft_10001.info", Path(P::GetTolloLogDraftFilePath, 10001U));
    // The low 32 bits of a stamp, signed.
    EXPECT_EQ(audio + "Orvo0000012345.amr", Path(P::GetRecordAudioName, 4294967296ULL + 12345));
    EXPECT_EQ(audio + "Orvo-000000002.amr", Path(P::GetRecordAudioName, 0x1FFFFFFFEULL));
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

TEST(DecodeFileName, OpensEnvelopesUnderTheProgramsKey)
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
