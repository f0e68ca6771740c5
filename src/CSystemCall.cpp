#include "CSystemCall.h"

#include "CQWString.h"
#include "PathText.h"
#include "SystemTime.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>

namespace
{

/// Starts a process that does not outlive the call. It is ended here as QProcess's destructor
/// would end it, but without the warning that it prints.
void StartAndEnd(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished();
    }
}

} // namespace

CSystemCall::CSystemCall() = default;

CSystemCall::~CSystemCall() = default;

int CSystemCall::GetCurrentTime()
{
    return SystemTime::Seconds(QDateTime::currentDateTimeUtc());
}

unsigned long long CSystemCall::GetCurrentTimeStamp()
{
    return SystemTime::WrappedStamp(QDateTime::currentDateTime());
}

int CSystemCall::GetCurrentTimeToInt()
{
    return SystemTime::CoarseSeconds(QDateTime::currentDateTime());
}

int CSystemCall::GetSysTimeBymmSec()
{
    return SystemTime::SecondInMilliseconds(QTime::currentTime());
}

QSize CSystemCall::GetScreenSizeInPixel()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->virtualGeometry().size() : QSize(0, 0);
}

void CSystemCall::FileSizeExchange(unsigned int bytes, double& value, CQWString& unit,
                                   bool shortUnit)
{
    constexpr unsigned int Kilobyte = 1024;
    constexpr double PerKilobyte = 1.0 / Kilobyte;
    value = bytes;
    if (bytes < Kilobyte) {
        unit.SetData(L"B");
    } else if (bytes <= Kilobyte * Kilobyte) {
        value *= PerKilobyte;
        unit.SetData(shortUnit ? L"K" : L"KB");
    } else {
        value *= PerKilobyte * PerKilobyte;
        unit.SetData(shortUnit ? L"M" : L"MB");
    }
}

unsigned short CSystemCall::GetInstallDisc()
{
    const QString path = QCoreApplication::applicationDirPath();
    if (path.isEmpty()) {
        // The empty string's own index assertion is what callers see.
        return static_cast<unsigned short>(CQWString()[0]);
    }
    return path.at(0).unicode();
}

int CSystemCall::OpenResource(CQWString const&)
{
    return 0;
}

int CSystemCall::LaunchAppByName(CQWString const& name, CQWString const& dir)
{
    StartAndEnd(PathText::FromWide(dir.GetDataPtr()) + QLatin1Char('/') +
                    PathText::FromWide(name.GetDataPtr()),
                {});
    return 1;
}

int CSystemCall::LaunchSysApp(CQWString* command)
{
    if (command == nullptr) {
        return 1;
    }
    QStringList arguments = QProcess::splitCommand(PathText::FromWide(command->GetDataPtr()));
    if (!arguments.isEmpty()) {
        const QString program = arguments.takeFirst();
        StartAndEnd(program, arguments);
    }
    return 1;
}

int CSystemCall::OpenFileByPhone(CQWString* command)
{
    return LaunchSysApp(command);
}

int CSystemCall::OpenInfoWin(CQWString const&, CQWString const&)
{
    return 1;
}

int CSystemCall::OpenQueryWin(CQWString const&, CQWString const&)
{
    return 1;
}

int CSystemCall::OpenQueryWin(CQWString const&, CQWString const&, CQWString const&,
                              CQWString const&)
{
    return 1;
}

int CSystemCall::OpenQueryWinEx(CQWString&, int, CQWString&, CQWString&)
{
    return 1;
}

int CSystemCall::LaunchSysApp(int, CQWString*)
{
    return 1;
}

int CSystemCall::OpenFileByPhone(int kind, CQWString* command)
{
    return LaunchSysApp(kind, command);
}

int CSystemCall::MoveToSysDir(int, CQWString*, CQWString*, CQWString&)
{
    return 1;
}

int CSystemCall::OpenMemorySelDialog(int, CQWString&)
{
    return 1;
}

bool CSystemCall::IsClipBoardEmpty()
{
    return true;
}

bool CSystemCall::IsInTimespace(long, long)
{
    return true;
}

int CSystemCall::LaunchAppByMIME(CQSString const&, CQWString const&)
{
    return 0;
}

int CSystemCall::GetMachineUID()
{
    return 0;
}

int CSystemCall::GetDefaultTextColorForSystemTheme()
{
    return 0;
}

bool CSystemCall::ProcessIsExist(CQWString const&)
{
    return false;
}

bool CSystemCall::IsQwertyKeyboardSupported()
{
    return false;
}

int CSystemCall::GetDefaultFrameColorForSystemTheme()
{
    return 0xFF0000;
}

void CSystemCall::OpenNoteDlgWithDuration(CQWString&, bool, bool) {}

void CSystemCall::SetTextToClipBoardL(CQWString&) {}

void CSystemCall::GetTextFromClipBoardL(CQWString&) {}

void CSystemCall::MakePhoneDail(CQWString&) {}

void CSystemCall::CloseResource(int) {}

void CSystemCall::GetSysDateTimeString(CQWString&) {}

void CSystemCall::GetSysDateTimeString2(CQWString&) {}

void CSystemCall::GetDateTimeString(unsigned int, CQWString&) {}

void CSystemCall::GetPhoneNameString(CQSString&) {}

void CSystemCall::GetFileSizeString(double, QString&, CQWString&, int) {}

void CSystemCall::GetFileSizeString(double, CQWString&, CQWString&, int) {}

void CSystemCall::GetStringFromSize(unsigned int, CQWString&) {}
