#include "TestPrelude.h"

#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQInstance.h>
#include <CQSchedulerEvent.h>
#include <CQSchedulerInstance.h>
#include <CQTimer.h>
#include <CQTimerObserver.h>
#include <CTimeOutTimer.h>
#include <MTimeOutNotifier.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <numeric>
#include <thread>

using namespace std::chrono_literals;

namespace
{

std::string ran; // name and status of every run

struct Active : CQActive {
    explicit Active(char name, int nPriority = 0) : CQActive(nPriority), m_name(name) {}
    void DoCancel() override { ran += "-"; }
    void RunL(int status) override
    {
        (ran += m_name) += std::to_string(status);
        m_work();
    }
    // Where binary clients find it: in the third word behind the virtual table.
    qint32& Flag() { return reinterpret_cast<qint32*>(reinterpret_cast<void**>(this) + 1)[2]; }

    char m_name;
    std::function<void()> m_work = [] {};
};

// What a running worker polls must outlive it: made before main, destroyed after its end.
std::vector<std::unique_ptr<Active>> added;

/// Collects the notices that reach it, as receiver of a worker or as filter on the scheduler.
struct Notices : QObject {
    bool event(QEvent* e) override { return eventFilter(this, e); }
    bool eventFilter(QObject*, QEvent* e) override
    {
        EXPECT_EQ(1000, e->type());
        m_actives.push_back(static_cast<CQSchedulerEvent*>(e)->GetActive());
        EXPECT_FALSE(m_actives.back()->IsReady()); // and so the run's results may be read
        return false;
    }
    void Await(std::size_t count) const
    {
        while (m_actives.size() < count) {
            QCoreApplication::sendPostedEvents(); // at once: a flag may be lowered too late
        }
    }
    std::vector<CQActive*> m_actives;
};

/// A list that the test passes over itself.
struct SchedulerPass : testing::Test {
    void SetUp() override { s_worker = new CQSchedulerInstance(&notices); }
    void Pass() { s_worker->RunActiveList(&list); }

    Notices notices;
    QList<CQActive*> list;
    inline static CQSchedulerInstance* s_worker; // for the life of the process, as any worker
};

int warnings = 0;

struct Timers : testing::Test, CQTimerObserver, MTimeOutNotifier {
    void SetUp() override
    {
        qInstallMessageHandler([](auto type, auto&, auto&) { warnings += type == QtWarningMsg; });
    }
    void OnPeriodTask() override { ++m_nCalls; }
    void OnTimeOut() override
    {
        EXPECT_FALSE(timeOut->IsActive());
        if (++m_nCalls == 1) {
            timeOut->After(999);
        }
    }
    // The intervals of the armed time-outs; lets those expire that are due.
    std::vector<int> Intervals(int due = 0)
    {
        std::vector<int> intervals;
        for (auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(timeOut.get())) {
            EXPECT_EQ(Qt::PreciseTimer, timer.timerType) << "others may fire early";
            intervals.push_back(timer.interval);
            if (due-- > 0) {
                QTimerEvent expiry(timer.timerId);
                QCoreApplication::sendEvent(timeOut.get(), &expiry);
            }
        }
        return intervals;
    }
    // Of the timer, which is the first field behind the base.
    QPointer<QTimer> Inner()
    {
        return *reinterpret_cast<QTimer**>(static_cast<QObject*>(periodic.get()) + 1);
    }

    int m_nCalls = 0;
    std::unique_ptr<CQTimer> periodic = std::make_unique<CQTimer>();
    std::unique_ptr<CTimeOutTimer> timeOut{CTimeOutTimer::NewL(*this)};
};

} // namespace

TEST_F(SchedulerPass, RunsFlagsOfExactlyOneInOrderLowersThemAndReportsEachRunOnce)
{
    Active first('a'), two('b'), cancelled('c'), last('d');
    last.m_work = [&] { EXPECT_TRUE(last.IsReady()); }; // lowered only after the run
    list = {&first, &two, &cancelled, &last};
    last.Complete(8);
    first.Complete(6);
    first.Complete(7);
    two.Flag() = 2;
    cancelled.Cancel(); // not up: no DoCancel()
    cancelled.Complete(9);
    cancelled.Cancel();
    Pass();
    two.Flag() = 1;
    Pass();
    EXPECT_EQ("-a7d8b0", ran);
    QCoreApplication::sendPostedEvents(&notices);
    EXPECT_EQ((std::vector<CQActive*>{&first, &last, &two}), notices.m_actives);
}

TEST_F(SchedulerPass, ReachesWhatARunAppendsOrRaisesBehindItAndLosesARaiseOfItself)
{
    Active before('b'), raiser('r'), appended('a');
    raiser.m_work = [&] {
        s_worker->Add(&appended); // would not return if the lock were held
        list.append(&appended);
        for (auto* active : {&appended, &before, &raiser}) {
            active->Complete(0);
        }
    };
    list = {&before, &raiser};
    raiser.Complete(0);
    Pass();
    EXPECT_EQ("r0a0", ran);
    Pass();
    EXPECT_EQ("r0a0b0", ran);
}

// What makes the pattern work that Complete() recommends against lost raises. It hangs if a run
// is reported before its flag is down.
TEST_F(SchedulerPass, HandsPlainDataToTheRunAndBackAndReportsItWhenTheFlagIsDown)
{
    std::size_t question = 0, answer = 0; // plain words: the flag alone orders the accesses
    Active active('a');
    active.m_work = [&] { answer = question + 3; };
    list = {&active};
    std::thread passes([&] {
        for (std::size_t seen = 0; seen < 302; seen = answer) {
            Pass();
        }
    });
    for (; question < 300; ++question) {
        active.Complete(0);
        notices.Await(question + 1);
        EXPECT_EQ(question + 3, answer);
    }
    passes.join();
}

TEST(Scheduler, RunsHigherPrioritiesFirstOnAThreadOfItsOwn)
{
    Notices notices;
    auto* const scheduler = CQActiveScheduler::instance();
    ASSERT_EQ(scheduler, CQActiveScheduler::instance());
    scheduler->installEventFilter(&notices);
    for (const int nPriority : {0, 0, 2, 1, 5, -1, 3, 4, 4, 0}) {
        added.push_back(std::make_unique<Active>('p', nPriority));
        added.back()->Complete(static_cast<int>(added.size()));
    }
    // One adds the others while its own priority, the first, is being passed.
    added[8]->m_work = [&, mainThread = std::this_thread::get_id()] {
        EXPECT_NE(mainThread, std::this_thread::get_id());
        scheduler->Add(nullptr);
        for (std::size_t i = 0; i < 8; ++i) {
            scheduler->Add(added[i].get());
        }
    };
    scheduler->Add(added[8].get());
    notices.Await(7);
    EXPECT_EQ("p9p8p7p3p4p1p2", ran);
    // Other cycles, in which nothing runs but what is raised again or added meanwhile.
    std::thread([&] { scheduler->Add(added[9].get()); }).join();
    notices.Await(8);
    EXPECT_EQ(added[9].get(), notices.m_actives.back());
    std::array<std::chrono::steady_clock::duration, 5> waits;
    for (auto& wait : waits) {
        const auto start = std::chrono::steady_clock::now();
        added[9]->Complete(0);
        notices.Await(notices.m_actives.size() + 1);
        wait = std::chrono::steady_clock::now() - start;
    }
    // One a poll, and the first at the next: four intervals at least.
    EXPECT_LE(400ms, std::accumulate(waits.begin(), waits.end(), 0ns));
    EXPECT_GT(180ms, *std::min_element(waits.begin(), waits.end()));
    // Every event is swallowed, deferred deletion included.
    scheduler->removeEventFilter(&notices);
    const QPointer<QObject> alive(scheduler);
    scheduler->deleteLater();
    QCoreApplication::sendPostedEvents(scheduler, QEvent::DeferredDelete);
    EXPECT_FALSE(alive.isNull());
    QEvent other(QEvent::LanguageChange);
    EXPECT_TRUE(scheduler->event(&other));
}

TEST_F(Timers, PeriodicOneIsRefusedItsConnectionAndNeverCallsByItself)
{
    const auto calls = [&](QObject* object, const char* method) { // as a client does, twice
        EXPECT_TRUE(QMetaObject::invokeMethod(object, method));
        EXPECT_TRUE(QMetaObject::invokeMethod(object, method));
        return std::exchange(m_nCalls, 0);
    };
    periodic->StopTimer();
    periodic->StartTimer(nullptr, 1, 100, 0);
    periodic->StartTimer(this, 0, 100, 0);
    periodic->StartTimer(this, 1, 0, 0);
    EXPECT_EQ(0, calls(periodic.get(), "DoPeriodTask"));
    EXPECT_EQ(0, warnings); // declined silently
    periodic->StartTimer(this, 1, 60000, 7);
    periodic->StartTimer(this, 1, 1, 0); // already started: ignored
    EXPECT_EQ(1, warnings);
    EXPECT_EQ(2, calls(periodic.get(), "DoPeriodTask")); // a count of 1 limits nothing
    QPointer<QTimer> timer = Inner();
    EXPECT_EACH(timer->isActive(), !timer->isSingleShot(), timer->interval() == 60000,
                timer->parent() == nullptr);
    EXPECT_EQ(0, calls(timer, "timeout"));
    periodic->StopTimer();
    EXPECT_EQ(0, calls(periodic.get(), "DoPeriodTask"));
    EXPECT_TRUE(timer.isNull());
    periodic->StartTimer(this, 1, 1, 0);
    timer = Inner();
    periodic.reset();
    EXPECT_TRUE(timer.isNull());
}

TEST_F(Timers, TimeOutFiresOnceForEveryArmingButTheCancelledOne)
{
    using Armed = std::vector<int>;
    timeOut->Cancel(); // harmless in any state
    timeOut->After(INT_MAX);
    EXPECT_EQ(Armed{2147483}, Intervals());
    timeOut->Cancel();
    EXPECT_FALSE(timeOut->IsActive());
    timeOut->After(2500);
    EXPECT_TRUE(timeOut->IsActive());
    EXPECT_EQ(Armed{2}, Intervals(1));
    EXPECT_EQ(Armed{0}, Intervals(1)); // armed again by the call-back
    timeOut->Cancel();
    timeOut->After(-999); // truncates to 0
    timeOut->After(500);
    timeOut->After(5000); // the older timers are forgotten
    timeOut->Cancel();
    EXPECT_EQ((Armed{0, 0}), Intervals());
    QEventLoop().processEvents();
    EXPECT_EQ(Armed(), Intervals());
    EXPECT_EQ(4, m_nCalls);
    EXPECT_EQ(0, warnings);
    timeOut->After(-1500); // rejected by Qt, and armed nevertheless
    EXPECT_EQ(1, warnings);
    EXPECT_TRUE(timeOut->IsActive());
}

TEST(Registry, TakesTheOldestMatchAndLeavesTombstones)
{
    using I = CQInstance;
    int a = 0, b = 0;
    EXPECT_EACH(I::GetByUid(-1) == nullptr, I::RemoveByUid(7) == nullptr);
    EXPECT_EACH(I::AddWithUid(&a, 7) == 0, I::AddWithUid(&b, 7) == 1);
    EXPECT_EQ(0, I::AddWithUid(&a, 9)); // the first with this pointer
    EXPECT_EQ(&a, I::GetByUid(9));      // added nevertheless
    EXPECT_EACH(I::GetByUid(7) == &a, I::RemoveByUid(7) == &a, I::RemoveByUid(7) == &b);
    EXPECT_EQ(3, I::AddWithUid(&b, -1)); // indices do not shift
    EXPECT_EQ(nullptr, I::GetByUid(-1)); // the tombstone is older
    EXPECT_EQ(0, I::AddWithUid(nullptr, 3));
    // The list of objects is the first field, and shared with a copy until one of them goes.
    const QList<void*> copy(
        *reinterpret_cast<QList<void*>*>(reinterpret_cast<void**>(I::Instance()) + 1));
    I::ResetAndDestroy(); // the objects themselves are not touched
    EXPECT_TRUE(copy.isDetached());
}
