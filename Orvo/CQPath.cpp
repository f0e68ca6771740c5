#include "CQPath.h"

#include "BaseUtil.h"
#include "CCrypt.h"
#include "CQSString.h"
#include "CQSStringBuffer.h"
#include "CQWString.h"
#include "CSystemCall.h"
#include "OrvoAssert.h"

#include <array>

namespace
{

constexpr char Source[] = "Orvo/CQPath";

constexpr char AppRoot[] = "opt/orvoapp";
constexpr char BrowserRoot[] = "opt/orvoapp\\Browser";
constexpr char DownloadRoot[] = "tmp/orvoappdownload";

// "opt/orvoapp/config/clientsettings/" in the envelope that DecodeFileName() opens: enciphered
// once, under FileNameKey(), by a script that implements the envelope independently.
constexpr unsigned char ConfigRoot[48] = {
    0x6b, 0xa1, 0xff, 0x86, 0xac, 0xe3, 0xd6, 0x68, 0x74, 0xe6, 0x2e, 0x23, 0xfc, 0x76, 0x3a, 0xa4,
    0xb0, 0xd6, 0x45, 0xb6, 0xcc, 0x01, 0xd2, 0xe6, 0xb6, 0xb6, 0x32, 0x08, 0xab, 0x93, 0x3e, 0x43,
    0x62, 0xe3, 0x5e, 0x1c, 0x07, 0x05, 0x67, 0xd4, 0x1c, 0xb0, 0x7e, 0x4c, 0x3f, 0x2f, 0xec, 0xe7,
};

/// The install disc as a path's first character: its low 8 bits.
int Disc()
{
    return CSystemCall::GetInstallDisc() & 0xFF;
}

void FormatDirectory(CQSString& out, const char* root, const char* directory)
{
    CBaseUtil::FormatString(out, "%c%s\\%s\\", Disc(), root, directory);
}

void FormatAppFile(CQSString& out, const char* file)
{
    CBaseUtil::FormatString(out, "%c%s\\%s", Disc(), AppRoot, file);
}

void FormatBrowserFile(CQSString& out, const char* file)
{
    CBaseUtil::FormatString(out, "%c%s\\%s", Disc(), BrowserRoot, file);
}

void FormatFileIn(CQSString& out, const char* dir, const char* file)
{
    CBaseUtil::FormatString(out, "%s\\%s", dir, file);
}

constexpr int enLongestStoredName = 256;

/// Made at run time, so that the key does not stand in the program as it is.
std::array<unsigned char, 16> FileNameKey()
{
    std::array<unsigned char, 16> key{};
    unsigned int value = 0x3D;
    for (unsigned char& byte : key) {
        value = (value * 73 + 41) & 0xFF;
        byte = static_cast<unsigned char>(value);
    }
    return key;
}

/// Unlike the string's own setters it leaves \a name alone without memory; 0 then.
int Replace(CQSString& name, const unsigned char* bytes, int length)
{
    char* const fresh = CQSStringBuffer::NewCopy(reinterpret_cast<const char*>(bytes), length);
    return fresh != nullptr ? CQSStringBuffer::Adopt(name, fresh, length) : 0;
}

} // namespace

void CQPath::GetAppDataRoot(CQSString& out)
{
    CBaseUtil::FormatString(out, "%c%s\\", Disc(), AppRoot);
}

void CQPath::GetUserDataRoot(CQSString& out)
{
    GetAppDataRoot(out);
}

void CQPath::GetBrowserRoot(CQSString& out)
{
    FormatDirectory(out, AppRoot, "Browser");
}

void CQPath::GetHttpCookiesRoot(CQSString& out)
{
    FormatDirectory(out, BrowserRoot, "Cookies");
}

void CQPath::GetDownloadRoot(CQSString& out, char disc)
{
    CBaseUtil::FormatString(out, "%c%s\\", disc != 0 ? disc : Disc(), DownloadRoot);
}

void CQPath::GetHttpTempRoot(CQSString& out)
{
    out.SetData("tmp/orvoapptemp");
}

void CQPath::GetConfigRoot(CQSString& out)
{
    OrvoAssert(false, "0", Source, 59);
    CQSString name;
    name.SetData(const_cast<unsigned char*>(ConfigRoot), sizeof ConfigRoot);
    if (DecodeFileName(name)) {
        CBaseUtil::FormatString(out, "%c%s", Disc(), name.GetDataPtr());
    } else {
        out.Empty();
    }
}

void CQPath::GetBrowserTmpPic(CQWString& out)
{
    out.SetData(L"/opt/orvoapp/meegotmp/TmpOpen.pic");
}

void CQPath::GetOperationGuideFile(CQSString& out)
{
    FormatAppFile(out, "OpGuide.info");
}

void CQPath::GetRecentLoginFilePath(CQSString& out)
{
    FormatAppFile(out, "recentLoginUser.info");
}

void CQPath::GetIAPFilePath(CQSString& out)
{
    FormatAppFile(out, "OrvoIap.info");
}

void CQPath::GetPortalIdFilePath(CQSString& out)
{
    FormatAppFile(out, "portalid.info");
}

void CQPath::GetOLFileDownloadRecordFile(CQSString& out)
{
    FormatAppFile(out, "OL.dat");
}

void CQPath::GetBrowserDownloadRecordFile(CQSString& out)
{
    FormatAppFile(out, "Dl.dat");
}

void CQPath::GetBrowserBookmarkFilePath(CQSString& out)
{
    FormatAppFile(out, "bookmark.info");
}

void CQPath::GetBrowserHistoryFilePath(CQSString& out)
{
    FormatAppFile(out, "history.info");
}

void CQPath::GetTrayIconInfoFile(CQSString& out)
{
    FormatAppFile(out, "TrayIcon.info");
}

void CQPath::GetLastLoginConfigFile(CQSString& out)
{
    FormatAppFile(out, "LstConf.dat");
}

void CQPath::GetSkinConfigFile(CQSString& out)
{
    FormatAppFile(out, "skin\\config.dat");
}

void CQPath::GetSkinPath(CQSString& out)
{
    FormatAppFile(out, "skin\\");
}

void CQPath::GetLastIMEIUploadLogFile(unsigned int account, CQWString& out)
{
    CQSString path;
    CBaseUtil::FormatString(path, "%c%s\\%u\\hwUl.info", Disc(), AppRoot, account);
    // By the constructor: assigning a byte string would pack two characters into a unit.
    out = CQWString(path);
}

void CQPath::GetBrowserUrlRecordFilePath(CQSString& out)
{
    FormatBrowserFile(out, "UserURL.dat");
}

void CQPath::GetGUIDFilePath(CQSString& out)
{
    FormatBrowserFile(out, "guid.info");
}

void CQPath::GetPVDataFilePath(CQSString& out)
{
    FormatBrowserFile(out, "PVData.info");
}

void CQPath::GetBrowserOptionsFilePath(CQSString& out)
{
    OrvoAssert(false, "0", Source, 352);
    FormatBrowserFile(out, "option.info");
}

void CQPath::GetTolloLogCacheFilePath(CQSString& out, unsigned int account)
{
    CBaseUtil::FormatString(out, "%c%s\\tollocache_%u.info", Disc(), BrowserRoot, account);
}

void CQPath::GetTolloLogDraftFilePath(CQSString& out, unsigned int account)
{
    CBaseUtil::FormatString(out, "%c%s\\tollodraft_%u.info", Disc(), BrowserRoot, account);
}

void CQPath::GetImageFilePath(CQSString& out)
{
    FormatDirectory(out, DownloadRoot, "Image");
}

void CQPath::GetFileRecvPath(CQSString& out)
{
    FormatDirectory(out, DownloadRoot, "FileRecv");
}

void CQPath::GetRecordAudioName(CQSString& out, unsigned long long const& stamp)
{
    CBaseUtil::FormatString(out, "%c%s\\Audio\\Orvo%010d.amr", Disc(), DownloadRoot,
                            static_cast<int>(stamp));
}

void CQPath::GetMsgFilePath(CQSString& out, char const* root, unsigned int account)
{
    CBaseUtil::FormatString(out, "%s\\%u\\msg.info", root, account);
}

void CQPath::GetLoginInfoFilePath(CQSString& out, char const* root, unsigned int account)
{
    CBaseUtil::FormatString(out, "%s%u\\loginInfo.info", root, account);
}

void CQPath::GetCFFilePath(CQSString& out, char const* root, unsigned int account,
                           unsigned int index)
{
    CBaseUtil::FormatString(out, "%s%u\\%u_%010d.png", root, account, account,
                            static_cast<int>(index));
}

void CQPath::GetFileTransInfoFilePath(CQSString& out, char const* root, unsigned int account,
                                      int index)
{
    CBaseUtil::FormatString(out, "%s%u\\%d.fmsg", root, account, index);
}

void CQPath::GetCFFileName(CQSString& out, unsigned int account, unsigned int index)
{
    CBaseUtil::FormatString(out, "%u_%010d.png", account, static_cast<int>(index));
}

void CQPath::GetEnergySaveFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "EnergySave.dat");
}

void CQPath::GetSelfInfoFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "selfinfo.info");
}

void CQPath::GetGroupListFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "grouplist.info");
}

void CQPath::GetGroupInfoOkFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "groupinfook.info");
}

void CQPath::GetGroupMaskFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "groupmask.info");
}

void CQPath::GetGroupMemberFilePath(CQSString& out, char const* dir, unsigned int group)
{
    CBaseUtil::FormatString(out, "%s\\groupmem%u.info", dir, group);
}

void CQPath::GetLastLogOutTimeFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "LastLogOutTime.info");
}

void CQPath::GetBuddyRefreshListFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "BuddyListRefresh.info");
}

void CQPath::GetBuddylistFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "buddylist.info");
}

void CQPath::GetCFStamplistFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "CFStamplist.info");
}

void CQPath::GetBuddyTeamRefreshFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "BuddyListTeamRefresh.info");
}

void CQPath::GetBuddyTeamFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "buddylistTeam.info");
}

void CQPath::GetRecentListFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "recentlist.info");
}

void CQPath::GetBlackListFilePath(CQSString& out, char const* dir)
{
    FormatFileIn(out, dir, "blacklist.info");
}

void CQPath::GetAutoReplyFileName(CQSString& out)
{
    out.SetData("autoreply.cfg");
}

void CQPath::GetCommanPhraseFileName(CQSString& out)
{
    out.SetData("phrase.cfg");
}

int CQPath::DecodeFileName(CQSString& name)
{
    std::array<unsigned char, 16> key = FileNameKey();
    CCrypt cipher(key.data(), 0, 0);
    std::array<unsigned char, enLongestStoredName> plain;
    int plainLength = static_cast<int>(plain.size());
    if (!cipher.Decrypt(reinterpret_cast<const unsigned char*>(name.GetDataPtr()), name.GetLength(),
                        plain.data(), plainLength)) {
        return 0;
    }
    if (plainLength == 0) {
        name.Empty(); // setting no bytes would leave the old ones
        return 1;
    }
    return Replace(name, plain.data(), plainLength);
}

int CQPath::EncodeFileName(CQSString& name)
{
    if (name.IsEmpty() || name.GetLength() > enLongestStoredName) {
        return 0;
    }
    std::array<unsigned char, 16> key = FileNameKey();
    const CCrypt cipher(key.data(), 0, 0);
    std::array<unsigned char, enLongestStoredName + 24> envelope;
    int length = 0;
    cipher.Encrypt(reinterpret_cast<const unsigned char*>(name.GetDataPtr()), name.GetLength(),
                   envelope.data(), length);
    return Replace(name, envelope.data(), length);
}
