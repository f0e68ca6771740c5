// A process must end cleanly whatever the scheduler's worker is doing. Each scenario is played
// by forked children at different moments of the worker's cycle. A child that crashes, hangs or
// is stopped by a sanitizer does not end with 0. Usage: scheduler_exit SCENARIO

#include <CQActive.h>
#include <CQActiveScheduler.h>

#include <QGuiApplication>
#include <QLocale>
#include <QTimeZone>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using std::this_thread::sleep_for;

int argCount = 1;
char argName[] = "scheduler_exit";
char* args[] = {argName, nullptr};

std::atomic<bool> running{false};
std::atomic<int> runs{0};

struct Active : CQActive {
    explicit Active(void (*work)()) : CQActive(0), m_work(work) {}
    void DoCancel() override {}
    void RunL(int) override
    {
        void (*const work)() = m_work;
        ++runs; // from here on the object may be gone, if the run outlives it
        work();
    }
    void (*m_work)();
};

/// Owns the active objects as a static object of a client may: when it is destroyed, the worker
/// must have come to rest for good, and exit() must not have waited in vain.
struct StaticOwner {
    ~StaticOwner()
    {
        if (running || Clock::now() > latestEnd) {
            _exit(3);
        }
        const int runsBefore = runs;
        for (const auto& active : actives) {
            active->Complete(0);
        }
        sleep_for(150ms); // more than a poll
        if (runs != runsBefore) {
            _exit(5);
        }
    }
    Clock::time_point latestEnd = Clock::time_point::max();
    std::vector<std::unique_ptr<Active>> actives;
} owner;

void AddReady(void (*work)(), int count = 1)
{
    for (; count > 0; --count) {
        owner.actives.push_back(std::make_unique<Active>(work));
        CQActiveScheduler::instance()->Add(owner.actives.back().get());
        owner.actives.back()->Complete(0);
    }
}

/// The same, and lets the first run begin.
void Begin(void (*work)(), int count = 1)
{
    AddReady(work, count);
    while (runs == 0) {
        sleep_for(1ms);
    }
}

/// Whether children that each do the work, and then exit, all end with 0.
bool ChildrenEndWell(int count, auto work)
{
    for (int i = 0; i < count; ++i) {
        if (fork() == 0) {
            alarm(60);
            work(i);
            std::exit(0);
        }
    }
    bool endWell = true;
    for (int status = 0; wait(&status) > 0;) {
        endWell = endWell && status == 0;
    }
    return endWell;
}

void Play(std::string_view scenario, Clock::duration moment)
{
    CQActiveScheduler::instance(); // before the application makes any of Qt's statics
    auto application = std::make_unique<QGuiApplication>(argCount, args);
    if (scenario == "ApplicationIsDestroyed") {
        Begin([] {}, 20000); // notices, one right after the other
        sleep_for(moment / 10);
        application.reset();
        sleep_for(moment);
    } else if (scenario == "ForkedChild") {
        Begin([] {}, 20000);
        sleep_for(moment / 20);
        // Forked while the worker posts, they end as the scenario's process itself does.
        const auto end = [&](int) {
            application.reset();
            AddReady([] {}); // which takes a lock that the worker may have held
            owner.latestEnd = Clock::now() + 1900ms;
        };
        if (!ChildrenEndWell(2, end)) {
            _exit(4);
        }
    } else if (scenario == "ExitWithNoticesPending") {
        // For 3 seconds, which is longer than exit() waits.
        const auto work = [] {
            running = true;
            sleep_for(2ms);
            running = false;
        };
        AddReady(work, 1500);
        sleep_for(moment);
        std::thread([] { std::exit(0); }).join();
    } else if (scenario == "RunUsesLocale") {
        Begin([] {
            for (const auto end = Clock::now() + 500ms; Clock::now() < end;) {
                QLocale().toString(QTimeZone::systemTimeZone().offsetFromUtc({}));
            }
        });
        sleep_for(moment);
    } else if (scenario == "RunNeverEnds") {
        // A run that has begun may still be there when its object goes.
        Begin([] { sleep_for(1h); });
        owner.latestEnd = Clock::now() + 3500ms; // after a single wait
    } else if (scenario == "RunCallsExit") {
        AddReady([] {
            owner.latestEnd = Clock::now() + 1900ms;
            std::exit(0);
        });
        sleep_for(1h);
    } else if (scenario == "SecondApplication") {
        // Notices stop with one application object and start again with the next.
        struct : QObject {
            bool eventFilter(QObject*, QEvent*) override { return ++notices > 0; }
            int notices = 0;
        } filter;
        CQActiveScheduler::instance()->installEventFilter(&filter);
        application.reset();
        AddReady([] {});
        sleep_for(600ms); // some polls
        application = std::make_unique<QGuiApplication>(argCount, args);
        AddReady([] {});
        sleep_for(600ms);
        QCoreApplication::sendPostedEvents();
        if (filter.notices != 1) {
            _exit(4);
        }
    } else {
        _exit(2);
    }
}

} // namespace

int main(int, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    constexpr int children = 24;
    const auto play = [&](int i) { Play(argv[1], 200ms * i / children); };
    return ChildrenEndWell(children, play) ? 0 : 1;
}
