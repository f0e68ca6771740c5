#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQSchedulerEvent.h>
#include <CQSchedulerInstance.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

struct Active : CQActive {
    explicit Active(std::function<void(int)> work, int nPriority = 0)
        : CQActive(nPriority), m_work(std::move(work))
    {
    }
    void DoCancel() override { ++m_nCancels; }
    void RunL(int status) override { m_work(status); }
    void SetFlag(int nReady) { m_nReady = nReady; }

    std::function<void(int)> m_work;
    int m_nCancels = 0;
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
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    std::vector<CQActive*> m_actives;
};

/// A list that the test passes over itself.
class SchedulerPass : public ::testing::Test
{
protected:
    void SetUp() override { s_worker = new CQSchedulerInstance(&notices); }
    void Pass() { s_worker->RunActiveList(&list); }

    Notices notices;
    QList<CQActive*> list;
    inline static CQSchedulerInstance* s_worker; // for the life of the process, as any worker
};

} // namespace

TEST_F(SchedulerPass, RunsFlagsOfExactlyOneInOrderLowersThemAndReportsEachRunOnce)
{
    std::vector<int> ran;
    const auto record = [&](int status) { ran.push_back(status); };
    Active first(record), two(record), cancelled(record);
    Active last([&](int status) {
        record(status);
        EXPECT_TRUE(last.IsReady()); // lowered only after the run
    });
    list = {&first, &two, &cancelled, &last};
    last.Complete(8);
    first.Complete(6);
    first.Complete(7);
    two.SetFlag(2);
    cancelled.Cancel(); // not up: no DoCancel()
    cancelled.Complete(9);
    cancelled.Cancel();
    EXPECT_EQ(1, cancelled.m_nCancels);
    Pass();
    Pass();
    EXPECT_EQ((std::vector<int>{7, 8}), ran);
    QCoreApplication::sendPostedEvents(&notices);
    EXPECT_EQ((std::vector<CQActive*>{&first, &last}), notices.m_actives);
}

TEST_F(SchedulerPass, ReachesWhatARunAppendsOrRaisesBehindItAndLosesARaiseOfItself)
{
    std::string ran;
    Active appended([&](int) { ran += 'a'; });
    Active before([&](int) { ran += 'b'; });
    Active raiser([&](int) {
        ran += 'r';
        s_worker->Add(&appended); // would not return if the lock were held
        list.append(&appended);
        for (auto* active : {&appended, &before, &raiser}) {
            active->Complete(0);
        }
    });
    list = {&before, &raiser};
    raiser.Complete(0);
    Pass();
    EXPECT_EQ("ra", ran);
    Pass();
    EXPECT_EQ("rab", ran);
}

// What makes the pattern work that Complete() recommends against lost raises. It hangs if a run
// is reported before its flag is down.
TEST_F(SchedulerPass, HandsPlainDataToTheRunAndBackAndReportsItWhenTheFlagIsDown)
{
    std::size_t question = 0; // plain words: the flag alone orders the accesses
    std::size_t answer = 0;
    std::atomic<bool> stop{false};
    Active active([&](int status) { answer = question + static_cast<std::size_t>(status); });
    list = {&active};
    std::thread passes([&] {
        while (!stop) {
            Pass();
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    });
    for (question = 0; question < 300; ++question) {
        active.Complete(3);
        notices.Await(question + 1);
        EXPECT_EQ(question + 3, answer);
    }
    stop = true;
    passes.join();
}

TEST(Scheduler, RunsHigherPrioritiesFirstOnAThreadOfItsOwn)
{
    Notices notices;
    auto* const scheduler = CQActiveScheduler::instance();
    ASSERT_EQ(scheduler, CQActiveScheduler::instance());
    scheduler->installEventFilter(&notices);
    std::vector<int> ran;
    for (const int nPriority : {0, 0, 2, 1, 5, -1, 3, 4}) {
        const int number = nPriority * 10 + static_cast<int>(added.size());
        const auto record = [&, number](int) { ran.push_back(number); };
        added.push_back(std::make_unique<Active>(record, nPriority));
        added.back()->Complete(0);
    }
    // The starter adds the others while its own priority, the first, is being passed.
    const auto mainThread = std::this_thread::get_id();
    const auto addOthers = [&](int) {
        EXPECT_NE(mainThread, std::this_thread::get_id());
        scheduler->Add(nullptr);
        for (std::size_t i = 0; i < 8; ++i) {
            scheduler->Add(added[i].get());
        }
    };
    added.push_back(std::make_unique<Active>(addOthers, 4));
    added.push_back(std::make_unique<Active>([](int) {}));
    scheduler->Add(added[8].get());
    added[8]->Complete(0);
    notices.Await(7);
    EXPECT_EQ((std::vector<int>{47, 36, 22, 13, 0, 1}), ran);

    // Another cycle, in which nothing runs but what is raised again or added meanwhile.
    std::thread([&] { scheduler->Add(added[9].get()); }).join();
    added[9]->Complete(0);
    notices.Await(8);
    EXPECT_EQ(added[9].get(), notices.m_actives.back());
    EXPECT_EQ(6u, ran.size());
}

TEST(Scheduler, SwallowsEveryEventDeferredDeletionIncluded)
{
    auto* const scheduler = CQActiveScheduler::instance();
    QEvent other(QEvent::LanguageChange);
    EXPECT_TRUE(scheduler->event(&other));
    bool destroyed = false;
    QObject::connect(scheduler, &QObject::destroyed, [&] { destroyed = true; });
    scheduler->deleteLater();
    QCoreApplication::sendPostedEvents(scheduler, QEvent::DeferredDelete);
    EXPECT_FALSE(destroyed);
}
