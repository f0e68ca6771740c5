#pragma once

#include "OrvoExport.h"

#include <QSize>
#include <QString>

class CQSString;
class CQWString;

/// The services that the client asks of the phone: time, screen, launching, file-size texts.
///
/// Some do real work. The others are entry points of the older platform that have nothing behind
/// them here: they ignore their arguments, show nothing, change nothing, and give the fixed
/// results stated below, on which callers rely. None of them reports failure. None throws but
/// `std::bad_alloc`: launching, GetScreenSizeInPixel(), the first GetInstallDisc() and, on a 32-bit
/// host, the time operations.
class ORVO_EXPORT CSystemCall
{
public:
    /// An object of no use: every operation is static.
    CSystemCall();
    virtual ~CSystemCall();

    // Time

    /// Seconds since 1970-01-01 00:00:00 UTC as a 32-bit count: negative from January 2038 on.
    static int GetCurrentTime();
    /// A stamp that orders events within a run, not a calendar time: 1000 x GetCurrentTime()
    /// modulo 2^32, plus the milliseconds (0 to 999) of the current second.
    static unsigned long long GetCurrentTimeStamp();
    /// A coarse count of seconds from the local calendar: years since 1970 of 365 days, months of
    /// 30 days, with month and day taken from 1, modulo 2^32. 1970-01-01 00:00:00 is 2678400.
    static int GetCurrentTimeToInt();
    /// The second of the current minute x 1000: 0 to 59000. The milliseconds are divided by 1000
    /// before they are added, so they never count.
    static int GetSysTimeBymmSec();

    // Screen, files, application

    /// Width and height of the desktop in pixels, all screens together; (0, 0) when there is no
    /// QGuiApplication. GUI thread. Without memory the platform ends the process or throws.
    static QSize GetScreenSizeInPixel();
    /// Expresses a size for display. Up to 1023 bytes in "B"; up to and including 1048576 in "K"
    /// or "KB", so exactly one megabyte is 1024 K; above in "M" or "MB".
    /// \param unit       has no buffer afterwards when there is no memory for it.
    /// \param shortUnit  asks for "K" and "M".
    static void FileSizeExchange(unsigned int bytes, double& value, CQWString& unit,
                                 bool shortUnit);
    /// First character of the application's directory, '/' on this platform: what stands in a
    /// path where the older platform had a drive letter. Without an application object it
    /// asserts "nIndex < m_nDataLen" in src/CQWString; 0. The first call belongs on the main
    /// thread: Qt looks the directory up then and keeps it.
    static unsigned short GetInstallDisc();
    /// 0, always.
    static int OpenResource(CQWString const& name);

    // Launching. The process belongs to the call: it is ended when the call returns, as the
    // platform's process object does when it is destroyed. 1 whatever happens; without
    // memory the platform throws, waits for ever or ends the process.

    /// Starts the program \a dir + "/" + \a name, without arguments.
    static int LaunchAppByName(CQWString const& name, CQWString const& dir);
    /// Starts a command line, split at blanks, with quotes for arguments that hold some. Null
    /// starts nothing.
    /// @{
    static int LaunchSysApp(CQWString* command);
    static int OpenFileByPhone(CQWString* command);
    /// @}

    // Fixed results: every dialog answers yes.

    /// 1
    /// @{
    static int OpenInfoWin(CQWString const&, CQWString const&);
    static int OpenQueryWin(CQWString const&, CQWString const&);
    static int OpenQueryWin(CQWString const&, CQWString const&, CQWString const&, CQWString const&);
    static int OpenQueryWinEx(CQWString&, int, CQWString&, CQWString&);
    static int LaunchSysApp(int, CQWString*);
    static int OpenFileByPhone(int, CQWString*);
    static int MoveToSysDir(int, CQWString*, CQWString*, CQWString&);
    static int OpenMemorySelDialog(int, CQWString&);
    /// @}
    /// True
    /// @{
    static bool IsClipBoardEmpty();
    static bool IsInTimespace(long, long);
    /// @}
    /// 0
    /// @{
    static int LaunchAppByMIME(CQSString const&, CQWString const&);
    static int GetMachineUID();
    static int GetDefaultTextColorForSystemTheme();
    /// @}
    /// False
    /// @{
    static bool ProcessIsExist(CQWString const&);
    static bool IsQwertyKeyboardSupported();
    /// @}
    /// 0xFF0000
    static int GetDefaultFrameColorForSystemTheme();
    /// Nothing; a string argument stays as it was.
    /// @{
    static void OpenNoteDlgWithDuration(CQWString&, bool, bool);
    static void SetTextToClipBoardL(CQWString&);
    static void GetTextFromClipBoardL(CQWString&);
    static void MakePhoneDail(CQWString&);
    static void CloseResource(int);
    static void GetSysDateTimeString(CQWString&);
    static void GetSysDateTimeString2(CQWString&);
    static void GetDateTimeString(unsigned int, CQWString&);
    static void GetPhoneNameString(CQSString&);
    static void GetFileSizeString(double, QString&, CQWString&, int);
    static void GetFileSizeString(double, CQWString&, CQWString&, int);
    static void GetStringFromSize(unsigned int, CQWString&);
    /// @}
};
