// Examples of the reference: scheduler, timers, registry.

#include "Require.h"

#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQInstance.h>
#include <CQSchedulerEvent.h>
#include <CQTimer.h>
#include <CQTimerObserver.h>
#include <CTimeOutTimer.h>
#include <MTimeOutNotifier.h>

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <memory>

namespace
{

//! [CQActive]
/// Work for the scheduler's worker thread.
class Saver : public CQActive
{
public:
    Saver() : CQActive(2) {} // 0 runs last, 4 first
    void DoCancel() override {}
    void RunL(int status) override { m_saved = status; }
    std::atomic<int> m_saved{0};
};
//! [CQActive]

//! [CQSchedulerEvent]
/// Learns on the main thread that an object has run.
class RunReports : public QObject
{
protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::User) {
            m_last = static_cast<CQSchedulerEvent*>(event)->GetActive();
            QCoreApplication::quit();
        }
        return false;
    }

public:
    CQActive* m_last = nullptr;
};
//! [CQSchedulerEvent]

void Scheduler()
{
    RunReports reports;
    //! [CQActiveScheduler]
    CQActiveScheduler* const scheduler = CQActiveScheduler::instance(); // on the main thread
    scheduler->installEventFilter(&reports);
    auto* const saver = new Saver; // stays with the scheduler for the life of the process
    scheduler->Add(saver);
    saver->Complete(7);
    QCoreApplication::exec(); // the report of the run comes through the event loop
    REQUIRE(saver->m_saved == 7);
    //! [CQActiveScheduler]
    REQUIRE(reports.m_last == saver);
}

//! [CTimeOutTimer]
struct Alarm : MTimeOutNotifier {
    void OnTimeOut() override { QCoreApplication::quit(); }
};

void WaitALittle()
{
    Alarm alarm;
    const std::unique_ptr<CTimeOutTimer> timer(CTimeOutTimer::NewL(alarm));
    timer->After(20 * 1000); // microseconds, counted in whole milliseconds
    QCoreApplication::exec();
    REQUIRE(!timer->IsActive());
}
//! [CTimeOutTimer]

//! [CQTimer]
struct Beat : CQTimerObserver {
    void OnPeriodTask() override
    {
        if (++m_beats == 3) {
            QCoreApplication::quit();
        }
    }
    int m_beats = 0;
};

// The timer's own time-outs reach nobody: a clock of the client's drives the observer.
void ThreeBeats()
{
    Beat beat;
    CQTimer timer;
    timer.StartTimer(&beat, 1, 1000, 0);
    QTimer clock;
    QObject::connect(&clock, SIGNAL(timeout()), &timer, SLOT(DoPeriodTask()));
    clock.start(5);
    QCoreApplication::exec();
    REQUIRE(beat.m_beats == 3);
    timer.StopTimer();
}
//! [CQTimer]

void Registry()
{
    //! [CQInstance]
    int settings = 1;
    CQInstance::AddWithUid(&settings, 0x2001);
    REQUIRE(CQInstance::GetByUid(0x2001) == &settings);
    CQInstance::RemoveByUid(0x2001);
    REQUIRE(CQInstance::GetByUid(0x2001) == nullptr);
    //! [CQInstance]
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    Scheduler();
    WaitALittle();
    ThreeBeats();
    Registry();
}
