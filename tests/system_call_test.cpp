#include "AssertRecorder.h"
#include "TestPrelude.h"

#include <CQSString.h>
#include <CQWString.h>
#include <CSystemCall.h>
#include <SystemTime.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>

#include <ctime>
#include <type_traits>

#include <sys/resource.h>
#include <unistd.h>

TEST(SystemTime, CoarseSecondsCountMonthsAndDaysFromOne)
{
    const auto at = [](QDate date, QTime time) { return SystemTime::CoarseSeconds({date, time}); };
    EXPECT_EQ(2678400, at(QDate(1970, 1, 1), QTime(0, 0, 0, 999)));
    // (2012 - 1970) x 31536000 + 2 x 2592000 + 29 x 86400 + 13 x 3600 + 5 x 60 + 7
    EXPECT_EQ(1332248707, at(QDate(2012, 2, 29), QTime(13, 5, 7)));
    // 2170454400 - 2^32: the count wraps as 32 bits do.
    EXPECT_EQ(-2124512896, at(QDate(2038, 10, 1), QTime(0, 0)));
    EXPECT_EQ(59000, SystemTime::SecondInMilliseconds(QTime(23, 59, 59, 999)));
}

TEST(SystemTime, StampWrapsTheProductButNotTheSum)
{
    const auto at = [](qint64 msecs) { return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC); };
    EXPECT_EQ(4294967999U, SystemTime::WrappedStamp(at(4294967999))) << "999 added in 64 bits";
    EXPECT_EQ(705U, SystemTime::WrappedStamp(at(4294968001))) << "4294968000 - 2^32, and 1";
    EXPECT_EQ(-2147483647 - 1, SystemTime::Seconds(at(2147483648000))) << "January 2038";
}

TEST(SystemCall, ClockOperationsFollowTheClock)
{
    // Far from UTC, so that its calendar cannot pass for the local one.
    qputenv("TZ", "LOC-5:45");
    tzset();
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime local = QDateTime::currentDateTimeUtc().addSecs(5 * 3600 + 45 * 60);
    EXPECT_NEAR(SystemTime::CoarseSeconds(local), CSystemCall::GetCurrentTimeToInt(), 5);
    EXPECT_NEAR(SystemTime::Seconds(now), CSystemCall::GetCurrentTime(), 5);
    EXPECT_LE(CSystemCall::GetCurrentTimeStamp() - SystemTime::WrappedStamp(now), 5000U);
    EXPECT_EQ(0, CSystemCall::GetSysTimeBymmSec() % 1000);
}

TEST(SystemCall, ScreenAndInstallDiscNeedAnApplication)
{
    EXPECT_EQ(QGuiApplication::primaryScreen()->virtualGeometry().size(),
              CSystemCall::GetScreenSizeInPixel());
    EXPECT_EQ('/', CSystemCall::GetInstallDisc());
    EXPECT_EXIT(
        {
            // main() owns the application; this process never gets back there.
            QCoreApplication::instance()->~QCoreApplication();
            const QSize size = CSystemCall::GetScreenSizeInPixel();
            AssertRecorder recorder;
            const unsigned short disc = CSystemCall::GetInstallDisc();
            const AssertReports reports(1, {"nIndex < m_nDataLen", "src/CQWString"});
            const bool asserted = recorder.Take() == reports;
            _exit(size == QSize(0, 0) && disc == 0 && asserted ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(SystemCall, LaunchingStartsAProcessAnswers1AndReturnsAtOnce)
{
    // How many children have been waited for is not told; that there was one, their memory tells.
    const auto hadChild = [] {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return usage.ru_maxrss > 0;
    };
#ifdef __arm__
    constexpr bool isTold = false; // not by the emulator
#else
    constexpr bool isTold = true;
#endif
    QElapsedTimer timer;
    timer.start();
    const auto launches = [&](bool starts, auto launch) {
        const auto inChild = [&] {
            _exit(!hadChild() && launch() == 1 && hadChild() == (starts && isTold) ? 0 : 1);
        };
        EXPECT_EXIT(inChild(), testing::ExitedWithCode(0), "");
    };
    CQWString command, dir;
    for (const wchar_t* const text : {L"/bin/sleep 60", L"/no/such/program", L"  "}) {
        command.SetData(text);
        launches(text[0] == '/', [&] { return CSystemCall::LaunchSysApp(&command); });
        launches(text[0] == '/', [&] { return CSystemCall::OpenFileByPhone(&command); });
    }
    command.SetData(L"cat");
    dir.SetData(L"/bin");
    launches(true, [&] { return CSystemCall::LaunchAppByName(command, dir); });
    EXPECT_EQ(1, CSystemCall::LaunchSysApp(nullptr));
    EXPECT_LT(timer.elapsed(), 20000) << "neither the sleeper nor the reader was waited for";
}

TEST(SystemCall, FixedResults)
{
    using S = CSystemCall;
    CQWString text;
    QString size = "kept";
    ExpectAll(1, {S::OpenInfoWin(text, text), S::OpenQueryWin(text, text),
                  S::OpenQueryWin(text, text, text, text), S::OpenQueryWinEx(text, 0, text, text),
                  S::LaunchSysApp(0, nullptr), S::OpenFileByPhone(0, nullptr),
                  S::MoveToSysDir(0, &text, &text, text), S::OpenMemorySelDialog(0, text)});
    EXPECT_EACH(S::IsClipBoardEmpty(), S::IsInTimespace(2, 1));
    EXPECT_NONE(S::ProcessIsExist(text), S::IsQwertyKeyboardSupported());
    EXPECT_EQ(0, S::OpenResource(text) | S::LaunchAppByMIME(CQSString(), text) |
                     S::GetMachineUID() | S::GetDefaultTextColorForSystemTheme());
    EXPECT_EQ(0xFF0000, S::GetDefaultFrameColorForSystemTheme());
    S::GetFileSizeString(1.0, size, text, 1);
    S::GetTextFromClipBoardL(text);
    EXPECT_EACH(text.IsEmpty(), size == "kept");
    static_assert(std::has_virtual_destructor_v<S> && sizeof(S) == sizeof(void*));
}
