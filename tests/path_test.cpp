#include "AssertRecorder.h"

#include <CQSString.h>
#include <CQWString.h>
#include <Orvo/CQPath.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

constexpr char root[] = "/home/u/";
constexpr char dir[] = "/home/u\\10001";

/// What a member that takes the string and \a arguments writes into it.
template <typename... Parameters, typename... Arguments>
std::string Path(void (*member)(CQSString&, Parameters...), Arguments... arguments)
{
    CQSString out;
    out.SetData("old");
    member(out, arguments...);
    return out.IsEmpty() ? "" : out.GetDataPtr();
}

CQSString Bytes(const std::string& bytes)
{
    CQSString result;
    result.SetData(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())),
                   static_cast<int>(bytes.size()));
    return result;
}

} // namespace

TEST(Path, OfTheApplication)
{
    const struct {
        void (*member)(CQSString&);
        const char* expected;
    } rows[] = {
        {CQPath::GetAppDataRoot, "/opt/orvoapp/"},
        {CQPath::GetUserDataRoot, "/opt/orvoapp/"},
        {CQPath::GetBrowserRoot, "/opt/orvoapp/Browser/"},
        {CQPath::GetHttpCookiesRoot, "/opt/orvoapp/Browser/Cookies/"},
        {CQPath::GetHttpTempRoot, "tmp/orvoapptemp"},
        {CQPath::GetOperationGuideFile, "/opt/orvoapp/OpGuide.info"},
        {CQPath::GetRecentLoginFilePath, "/opt/orvoapp/recentLoginUser.info"},
        {CQPath::GetIAPFilePath, "/opt/orvoapp/OrvoIap.info"},
        {CQPath::GetPortalIdFilePath, "/opt/orvoapp/portalid.info"},
        {CQPath::GetOLFileDownloadRecordFile, "/opt/orvoapp/OL.dat"},
        {CQPath::GetBrowserDownloadRecordFile, "/opt/orvoapp/Dl.dat"},
        {CQPath::GetBrowserBookmarkFilePath, "/opt/orvoapp/bookmark.info"},
        {CQPath::GetBrowserHistoryFilePath, "/opt/orvoapp/history.info"},
        {CQPath::GetBrowserUrlRecordFilePath, "/opt/orvoapp/Browser/UserURL.dat"},
        {CQPath::GetGUIDFilePath, "/opt/orvoapp/Browser/guid.info"},
        {CQPath::GetPVDataFilePath, "/opt/orvoapp/Browser/PVData.info"},
        {CQPath::GetImageFilePath, "/tmp/orvoappdownload/Image/"},
        {CQPath::GetFileRecvPath, "/tmp/orvoappdownload/FileRecv/"},
        {CQPath::GetTrayIconInfoFile, "/opt/orvoapp/TrayIcon.info"},
        {CQPath::GetLastLoginConfigFile, "/opt/orvoapp/LstConf.dat"},
        {CQPath::GetSkinConfigFile, "/opt/orvoapp/skin/config.dat"},
        {CQPath::GetSkinPath, "/opt/orvoapp/skin/"},
        {CQPath::GetAutoReplyFileName, "autoreply.cfg"},
        {CQPath::GetCommanPhraseFileName, "phrase.cfg"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, Path(row.member));
    }
    EXPECT_EQ("/tmp/orvoappdownload/", Path(CQPath::GetDownloadRoot, '\0'));
    EXPECT_EQ("etmp/orvoappdownload/", Path(CQPath::GetDownloadRoot, 'e'));
}

TEST(Path, InADirectoryOfTheCaller)
{
    const struct {
        void (*member)(CQSString&, const char*);
        const char* file;
    } rows[] = {
        {CQPath::GetEnergySaveFilePath, "EnergySave.dat"},
        {CQPath::GetSelfInfoFilePath, "selfinfo.info"},
        {CQPath::GetGroupListFilePath, "grouplist.info"},
        {CQPath::GetGroupInfoOkFilePath, "groupinfook.info"},
        {CQPath::GetGroupMaskFilePath, "groupmask.info"},
        {CQPath::GetLastLogOutTimeFilePath, "LastLogOutTime.info"},
        {CQPath::GetBuddyRefreshListFilePath, "BuddyListRefresh.info"},
        {CQPath::GetBuddylistFilePath, "buddylist.info"},
        {CQPath::GetCFStamplistFilePath, "CFStamplist.info"},
        {CQPath::GetBuddyTeamRefreshFilePath, "BuddyListTeamRefresh.info"},
        {CQPath::GetBuddyTeamFilePath, "buddylistTeam.info"},
        {CQPath::GetRecentListFilePath, "recentlist.info"},
        {CQPath::GetBlackListFilePath, "blacklist.info"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(std::string("/home/u/10001/") + row.file, Path(row.member, dir));
    }
    EXPECT_EQ("/home/u/10001/groupmem4294967295.info",
              Path(CQPath::GetGroupMemberFilePath, dir, 4294967295U));
    EXPECT_EQ("/buddylist.info", Path(CQPath::GetBuddylistFilePath, nullptr));
    CQSString out = Bytes("/d");
    CQPath::GetBuddylistFilePath(out, out.GetDataPtr());
    EXPECT_STREQ("/d/buddylist.info", out.GetDataPtr());
}

TEST(Path, OfAnAccount)
{
    EXPECT_EQ("/home/u//10001/msg.info", Path(CQPath::GetMsgFilePath, root, 10001U));
    EXPECT_EQ("/home/u/10001/loginInfo.info", Path(CQPath::GetLoginInfoFilePath, root, 10001U));
    EXPECT_EQ("/home/u/10001/10001_0000000005.png", Path(CQPath::GetCFFilePath, root, 10001U, 5U));
    EXPECT_EQ("/home/u/4000000000/-7.fmsg",
              Path(CQPath::GetFileTransInfoFilePath, root, 4000000000U, -7));
    EXPECT_EQ("10001_0000000005.png", Path(CQPath::GetCFFileName, 10001U, 5U));
    EXPECT_EQ("1_-000000001.png", Path(CQPath::GetCFFileName, 1U, 4294967295U));
    EXPECT_EQ("/opt/orvoapp/Browser/tollocache_10001.info",
              Path(CQPath::GetTolloLogCacheFilePath, 10001U));
    EXPECT_EQ("/opt/orvoapp/Browser/tollodraft_10001.info",
              Path(CQPath::GetTolloLogDraftFilePath, 10001U));
}

TEST(Path, RecordingsAreNumberedByTheLow32BitsSigned)
{
    const auto name = [](unsigned long long stamp) {
        CQSString out;
        CQPath::GetRecordAudioName(out, stamp);
        return std::string(out.GetDataPtr());
    };
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo0000012345.amr", name(12345));
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo0000000007.amr", name(4294967296ULL + 7));
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo-000000002.amr", name(0x1FFFFFFFEULL));
    EXPECT_EQ("/tmp/orvoappdownload/Audio/Orvo-2147483648.amr", name(0x80000000ULL));
}

TEST(Path, InWideText)
{
    CQWString out;
    CQPath::GetBrowserTmpPic(out);
    EXPECT_EQ(0, out.Compare(L"/opt/orvoapp/meegotmp/TmpOpen.pic"));
    CQPath::GetLastIMEIUploadLogFile(10001, out);
    EXPECT_EQ(0, out.Compare(L"/opt/orvoapp/10001/hwUl.info"));
}

TEST(Path, ThoseNotToBeCalledAssertAndThenAnswer)
{
    AssertRecorder recorder;
    EXPECT_EQ("/opt/orvoapp/config/clientsettings/", Path(CQPath::GetConfigRoot));
    EXPECT_EQ("/opt/orvoapp/Browser/option.info", Path(CQPath::GetBrowserOptionsFilePath));
    const auto reports = recorder.Take();
    ASSERT_EQ(2U, reports.size());
    EXPECT_TRUE(reports[0].Is("0", "Orvo/CQPath", 59));
    EXPECT_TRUE(reports[1].Is("0", "Orvo/CQPath", 352));
}

TEST(DecodeFileName, OpensEnvelopesUnderTheProgramsKey)
{
    // Envelopes from an implementation of the format in Python: "buddylist.info", and nothing.
    const std::string buddyList("\x4c\xa6\x06\xc2\x22\x61\x83\xc1\x57\x41\x7d\xbd"
                                "\xbe\xae\xd4\xf2\xbd\x4e\xfd\x39\x9e\x60\xcf\x68",
                                24);
    CQSString name = Bytes(buddyList);
    EXPECT_EQ(1, CQPath::DecodeFileName(name));
    EXPECT_STREQ("buddylist.info", name.GetDataPtr());

    name = Bytes("\x24\x0b\x64\x8b\x8f\x22\x26\xfa\xb2\xe7\xb3\x30\x84\x23\x2d\xd4");
    EXPECT_EQ(1, CQPath::DecodeFileName(name));
    EXPECT_TRUE(name.IsEmpty()) << "deciphered to nothing, not left as it was";

    EXPECT_EQ(0, CQPath::DecodeFileName(name));
    for (std::string bad : {std::string("plain text"), buddyList.substr(8), std::string(272, 'x'),
                            buddyList.substr(0, 23) + 'x'}) {
        name = Bytes(bad);
        EXPECT_EQ(0, CQPath::DecodeFileName(name));
        EXPECT_STREQ(bad.c_str(), name.GetDataPtr());
    }
}
