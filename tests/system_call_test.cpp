#include "AssertRecorder.h"

#include <CQSString.h>
#include <CQWString.h>
#include <CSystemCall.h>
#include <SystemTime.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

#include <ctime>
#include <type_traits>

#include <unistd.h>

namespace
{

QDateTime LocalTime(int year, int month, int day, int hour, int minute, int second, int msec)
{
    return {QDate(year, month, day), QTime(hour, minute, second, msec)};
}

} // namespace

TEST(SystemTime, CoarseSecondsCountMonthsAndDaysFromOne)
{
    EXPECT_EQ(2678400, SystemTime::CoarseSeconds(LocalTime(1970, 1, 1, 0, 0, 0, 999)));
    // (2012 - 1970) x 31536000 + 2 x 2592000 + 29 x 86400 + 13 x 3600 + 5 x 60 + 7
    EXPECT_EQ(1332248707, SystemTime::CoarseSeconds(LocalTime(2012, 2, 29, 13, 5, 7, 0)));
    // 2170454400 - 2^32: the count wraps as 32 bits do.
    EXPECT_EQ(-2124512896, SystemTime::CoarseSeconds(LocalTime(2038, 10, 1, 0, 0, 0, 0)));
}

TEST(SystemTime, StampWrapsTheProductButNotTheSum)
{
    const auto stampAt = [](qint64 msecs) {
        return SystemTime::WrappedStamp(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
    };
    EXPECT_EQ(4294967999ULL, stampAt(4294967999)) << "the largest product, and 999 in 64 bits";
    EXPECT_EQ(704ULL + 1, stampAt(4294968001)) << "4294968000 - 2^32, and one millisecond";
    // 1355270400 x 1000 modulo 2^32, computed in Python.
    EXPECT_EQ(2355701760ULL + 250, stampAt(1355270400250));
}

TEST(SystemTime, MillisecondsNeverReachTheSecondCount)
{
    EXPECT_EQ(59000, SystemTime::SecondInMilliseconds(QTime(23, 59, 59, 999)));
}

TEST(SystemCall, ClockOperationsFollowTheClock)
{
    const auto before = static_cast<int>(std::time(nullptr));
    const int now = CSystemCall::GetCurrentTime();
    EXPECT_LE(before, now);
    EXPECT_LE(now, static_cast<int>(std::time(nullptr)));

    const QDateTime from = QDateTime::currentDateTime();
    const int coarse = CSystemCall::GetCurrentTimeToInt();
    EXPECT_LE(SystemTime::CoarseSeconds(from), coarse);
    EXPECT_LE(coarse, SystemTime::CoarseSeconds(from) + 5);
    const unsigned long long stamp = CSystemCall::GetCurrentTimeStamp();
    EXPECT_LE(stamp - SystemTime::WrappedStamp(from), 5000U);
    EXPECT_EQ(0, CSystemCall::GetSysTimeBymmSec() % 1000);
}

TEST(SystemCall, FileSizesChangeUnitAboveAMegabyte)
{
    const struct {
        unsigned int bytes;
        double value;
        const wchar_t* unit;
        const wchar_t* shortUnit;
    } rows[] = {
        {0, 0, L"B", L"B"},
        {1023, 1023, L"B", L"B"},
        {1024, 1, L"KB", L"K"},
        {1048576, 1024, L"KB", L"K"},
        {1048577, 1048577 / 1048576.0, L"MB", L"M"},
        {4294967295, 4294967295 / 1048576.0, L"MB", L"M"},
    };
    for (const auto& row : rows) {
        double value = -1;
        CQWString unit;
        CSystemCall::FileSizeExchange(row.bytes, value, unit, false);
        EXPECT_EQ(row.value, value) << row.bytes;
        EXPECT_EQ(0, unit.Compare(row.unit)) << row.bytes;
        CSystemCall::FileSizeExchange(row.bytes, value, unit, true);
        EXPECT_EQ(row.value, value) << row.bytes;
        EXPECT_EQ(0, unit.Compare(row.shortUnit)) << row.bytes;
    }
}

TEST(SystemCall, ScreenAndInstallDiscComeFromTheApplication)
{
    EXPECT_EQ(QGuiApplication::primaryScreen()->virtualGeometry().size(),
              CSystemCall::GetScreenSizeInPixel());
    EXPECT_EQ('/', CSystemCall::GetInstallDisc());
}

TEST(SystemCall, WithoutAnApplicationThereIsNoScreenAndNoDisc)
{
    EXPECT_EXIT(
        {
            // main() owns the application; this process never gets back there.
            QCoreApplication::instance()->~QCoreApplication();
            const QSize size = CSystemCall::GetScreenSizeInPixel();
            AssertRecorder recorder;
            const unsigned short disc = CSystemCall::GetInstallDisc();
            const bool asserted = recorder.Reports().size() == 1 &&
                                  recorder.Reports()[0].Is("nIndex < m_nDataLen", "src/CQWString");
            _exit(size == QSize(0, 0) && disc == 0 && asserted ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(SystemCall, LaunchingAnswers1AndReturnsAtOnce)
{
    QElapsedTimer timer;
    timer.start();
    CQWString command;
    command.SetData(L"/bin/sleep \"60\"");
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(&command));
    EXPECT_EQ(1, CSystemCall::OpenFileByPhone(&command));
    command.SetData(L"/no/such/program");
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(&command));
    command.SetData(L"  ");
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(&command));
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(nullptr));

    CQWString name;
    CQWString dir;
    EXPECT_EQ(1, CSystemCall::LaunchAppByName(name, dir));
    name.SetData(L"cat");
    dir.SetData(L"/bin");
    EXPECT_EQ(1, CSystemCall::LaunchAppByName(name, dir));
    EXPECT_LT(timer.elapsed(), 20000) << "neither the sleeper nor the reader was waited for";
}

TEST(SystemCall, FixedResults)
{
    CQWString text;
    text.SetData(L"kept");
    CQSString bytes;
    bytes.SetData("kept");
    QString size = "kept";
    EXPECT_EQ(1, CSystemCall::OpenInfoWin(text, text));
    EXPECT_EQ(1, CSystemCall::OpenQueryWin(text, text));
    EXPECT_EQ(1, CSystemCall::OpenQueryWin(text, text, text, text));
    EXPECT_EQ(1, CSystemCall::OpenQueryWinEx(text, 0, text, text));
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(0, nullptr));
    EXPECT_EQ(1, CSystemCall::OpenFileByPhone(0, nullptr));
    EXPECT_EQ(1, CSystemCall::MoveToSysDir(0, &text, &text, text));
    EXPECT_EQ(1, CSystemCall::OpenMemorySelDialog(0, text));
    EXPECT_TRUE(CSystemCall::IsClipBoardEmpty());
    EXPECT_TRUE(CSystemCall::IsInTimespace(2, 1));
    EXPECT_EQ(0, CSystemCall::OpenResource(text));
    EXPECT_EQ(0, CSystemCall::LaunchAppByMIME(bytes, text));
    EXPECT_EQ(0, CSystemCall::GetMachineUID());
    EXPECT_EQ(0, CSystemCall::GetDefaultTextColorForSystemTheme());
    EXPECT_EQ(0xFF0000, CSystemCall::GetDefaultFrameColorForSystemTheme());
    EXPECT_FALSE(CSystemCall::ProcessIsExist(text));
    EXPECT_FALSE(CSystemCall::IsQwertyKeyboardSupported());
    CSystemCall::OpenNoteDlgWithDuration(text, true, true);
    CSystemCall::SetTextToClipBoardL(text);
    CSystemCall::GetTextFromClipBoardL(text);
    CSystemCall::MakePhoneDail(text);
    CSystemCall::CloseResource(1);
    CSystemCall::GetSysDateTimeString(text);
    CSystemCall::GetSysDateTimeString2(text);
    CSystemCall::GetDateTimeString(1, text);
    CSystemCall::GetPhoneNameString(bytes);
    CSystemCall::GetFileSizeString(1.0, size, text, 1);
    CSystemCall::GetFileSizeString(1.0, text, text, 1);
    CSystemCall::GetStringFromSize(1, text);
    EXPECT_EQ(0, text.Compare(L"kept"));
    EXPECT_STREQ("kept", bytes.GetDataPtr());
    EXPECT_EQ("kept", size);
    static_assert(std::has_virtual_destructor_v<CSystemCall>);
    static_assert(sizeof(CSystemCall) == sizeof(void*));
}
