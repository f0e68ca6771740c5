#include <CQTimer.h>
#include <CQTimerObserver.h>
#include <CTimeOutTimer.h>
#include <MTimeOutNotifier.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

namespace
{

struct Observer : CQTimerObserver, MTimeOutNotifier {
    void OnPeriodTask() override { ++m_nCalls; }
    void OnTimeOut() override
    {
        ++m_nCalls;
        m_onTimeOut();
    }
    int m_nCalls = 0;
    std::function<void()> m_onTimeOut = [] {};
};

class Timers : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString&) {
            s_warnings += type == QtWarningMsg ? 1 : 0;
        });
    }
    int CallsWithin(int milliseconds)
    {
        QElapsedTimer clock;
        clock.start();
        while (!clock.hasExpired(milliseconds)) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        return std::exchange(observer.m_nCalls, 0);
    }
    int CallsThroughMetaObject()
    {
        EXPECT_TRUE(QMetaObject::invokeMethod(&periodic, "DoPeriodTask", Qt::DirectConnection));
        return std::exchange(observer.m_nCalls, 0);
    }
    int ArmedInterval() const
    {
        return QAbstractEventDispatcher::instance()->registeredTimers(timeOut.get())[0].interval;
    }

    Observer observer;
    CQTimer periodic;
    std::unique_ptr<CTimeOutTimer> timeOut{CTimeOutTimer::NewL(observer)};
    inline static int s_warnings = 0;
};

} // namespace

TEST_F(Timers, PeriodicOneIsRefusedItsConnectionAndNeverCallsByItself)
{
    periodic.StopTimer();
    periodic.StartTimer(nullptr, 1, 100, 0);
    periodic.StartTimer(&observer, 0, 100, 0);
    periodic.StartTimer(&observer, 1, 0, 0);
    EXPECT_EQ(0, s_warnings); // declined silently
    EXPECT_EQ(0, CallsThroughMetaObject());

    Observer other;
    periodic.StartTimer(&observer, 1, 1, 0);
    EXPECT_EQ(1, s_warnings);
    EXPECT_EQ(0, CallsWithin(30));
    periodic.StartTimer(&other, 1, 1, 0); // already started: ignored
    EXPECT_EQ(1, s_warnings);
    EXPECT_EQ(1, CallsThroughMetaObject());
    EXPECT_EQ(1, CallsThroughMetaObject()); // a count of 1 limits nothing
    periodic.StopTimer();
    EXPECT_EQ(0, CallsThroughMetaObject());
    periodic.StartTimer(&observer, 1, 60000, 7);
    EXPECT_EQ(2, s_warnings);

    QTimer clock; // the connection that the client makes itself
    ASSERT_TRUE(QObject::connect(&clock, SIGNAL(timeout()), &periodic, SLOT(DoPeriodTask())));
    clock.start(2);
    EXPECT_LT(1, CallsWithin(50));
    EXPECT_EQ(0, other.m_nCalls);
}

TEST_F(Timers, TimeOutFiresOnceIsIdleInTheCallAndMayBeArmedThere)
{
    observer.m_onTimeOut = [&] {
        EXPECT_FALSE(timeOut->IsActive());
        if (observer.m_nCalls < 3) {
            timeOut->After(999);
            EXPECT_EQ(0, ArmedInterval());
        }
    };
    timeOut->After(2500);
    EXPECT_TRUE(timeOut->IsActive());
    EXPECT_EQ(2, ArmedInterval());
    EXPECT_EQ(3, CallsWithin(40));
}

TEST_F(Timers, TimeOutArmedTwiceFiresTwiceAndForgetsTheOlderTimer)
{
    timeOut->After(1000);
    timeOut->After(5000);
    EXPECT_EQ(2, CallsWithin(40));
    timeOut->After(1000);
    timeOut->After(5000);
    timeOut->Cancel();
    EXPECT_FALSE(timeOut->IsActive());
    EXPECT_EQ(1, CallsWithin(40));
}

TEST_F(Timers, TimeOutIsCancelledInAnyStateWithoutACallOrAWarning)
{
    timeOut->Cancel();
    timeOut->After(1000);
    timeOut->Cancel();
    EXPECT_EQ(0, CallsWithin(20));
    timeOut->After(-999); // truncates to 0
    EXPECT_EQ(1, CallsWithin(10));
    timeOut->Cancel(); // after the expiry
    EXPECT_EQ(0, s_warnings);
    timeOut->After(-1500); // rejected by Qt, and armed nevertheless
    EXPECT_EQ(1, s_warnings);
    EXPECT_TRUE(timeOut->IsActive());
    timeOut->After(1000);
    timeOut.reset();
    EXPECT_EQ(0, CallsWithin(20));
}
