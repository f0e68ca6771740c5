#include "AssertRecorder.h"
#include "StringContent.h"
#include "TestPrelude.h"

#include <CSystemCall.h>
#include <SystemTime.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>

#include <ctime>
#include <type_traits>

#include <fcntl.h>
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
            AssertRecorder recorder;
            const bool isNothing = CSystemCall::GetScreenSizeInPixel() == QSize(0, 0) &&
                                   CSystemCall::GetInstallDisc() == 0;
            const AssertReports reports(1, {"nIndex < m_nDataLen", "src/CQWString"});
            _exit(isNothing && recorder.Take() == reports ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// What a child is given to run comes here, and is told; what runs is something long.
int started[2];
extern "C" __attribute__((visibility("default"))) int execv(const char* path, char* const* args)
{
    // No more of the stack than this: the child has a page of its parent's.
    for (const char* text = path; text != nullptr; text = *++args) {
        if ((text != path && write(started[1], "|", 1) < 0) ||
            write(started[1], text, strlen(text)) < 0) {
            _exit(1);
        }
    }
    char sleep[] = "sleep", minute[] = "60";
    char* const nap[] = {sleep, minute, nullptr};
    return execve("/bin/sleep", nap, environ);
}

TEST(SystemCall, LaunchingStartsAProcessAnswers1AndReturnsAtOnce)
{
    ASSERT_EQ(0, pipe2(started, O_NONBLOCK));
    const auto launched = [](auto launch) {
        char text[80] = "";
        // A child may be ended before it gets here.
        for (int i = 0; i < 100 && read(started[0], text, sizeof text) <= 0; ++i) {
            EXPECT_EQ(1, launch());
        }
        return std::string(text);
    };
    QElapsedTimer timer;
    timer.start();
    CQWString line = Wide(L"/bin/x \"1 2\" 3"), blank = Wide(L"  "), dir = Wide(L"/a b"),
              name = Wide(L"c d");
    EXPECT_EQ("/bin/x|1 2|3", launched([&] { return CSystemCall::LaunchSysApp(&line); }));
    EXPECT_EQ("/bin/x|1 2|3", launched([&] { return CSystemCall::OpenFileByPhone(&line); }));
    EXPECT_EQ("/a b/c d", launched([&] { return CSystemCall::LaunchAppByName(name, dir); }));
    EXPECT_EQ("", launched([&] { return CSystemCall::LaunchSysApp(&blank); }));
    EXPECT_EQ("", launched([&] { return CSystemCall::LaunchSysApp(nullptr); }));
    EXPECT_LT(timer.elapsed(), 20000) << "the sleepers were not waited for";
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
