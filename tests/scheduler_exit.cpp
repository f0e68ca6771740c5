// A process must end cleanly whatever the scheduler's worker is doing. Each scenario is played
// by forked children at different moments of the worker's cycle. A child that crashes, hangs or
// is stopped by a sanitizer does not end with 0. Usage: scheduler_exit SCENARIO

#include <CQActive.h>
#include <CQActiveScheduler.h>

#include <QGuiApplication>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
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

struct Active : CQActive {
    Active(std::function<void()> work, int nPriority) : CQActive(nPriority), m_work(std::move(work))
    {
    }
    void DoCancel() override {}
    void RunL(int) override { m_work(); }
    std::function<void()> m_work;
};

/// Owns the active objects as a static object of a client may: when it is destroyed, the worker
/// must have come to rest, and exit() must not have waited in vain.
struct StaticOwner {
    ~StaticOwner()
    {
        if (running || Clock::now() > latestEnd) {
            _exit(3);
        }
    }
    std::atomic<bool> running{false};
    Clock::time_point latestEnd = Clock::time_point::max();
    std::vector<std::unique_ptr<Active>> actives;
} owner;

Active& Add(std::function<void()> work, int nPriority = 0)
{
    owner.actives.push_back(std::make_unique<Active>(std::move(work), nPriority));
    CQActiveScheduler::instance()->Add(owner.actives.back().get());
    return *owner.actives.back();
}

/// Keeps the worker running objects for about half of the time.
void KeepBusy()
{
    const auto raiseAll = [] {
        for (const auto& active : owner.actives) {
            active->Complete(0);
        }
    };
    const auto run = [] {
        owner.running = true;
        sleep_for(2ms);
        owner.running = false;
    };
    Active& first = Add(raiseAll, 2);
    for (int i = 0; i < 40; ++i) {
        Add(run, 1);
    }
    Add([&first] { first.Complete(0); }).Complete(0);
}

void ApplicationIsDestroyed(Clock::duration moment)
{
    {
        const QGuiApplication application(argCount, args);
        KeepBusy();
        sleep_for(moment);
    }
    sleep_for(moment);
}

void ExitWithNoticesPending(Clock::duration moment)
{
    const QGuiApplication application(argCount, args);
    KeepBusy();
    sleep_for(moment);
    std::exit(0);
}

void RunNeverEnds(Clock::duration)
{
    static std::atomic<bool> begun{false};
    Add([] {
        begun = true;
        sleep_for(1h);
    }).Complete(0);
    while (!begun) {
        sleep_for(1ms);
    }
}

void RunCallsExit(Clock::duration)
{
    Add([] {
        owner.latestEnd = Clock::now() + 1s;
        std::exit(0);
    }).Complete(0);
    sleep_for(1h);
}

// Notices stop with one application object and start again with the next.
void SecondApplication(Clock::duration)
{
    struct : QObject {
        bool eventFilter(QObject*, QEvent*) override { return ++notices > 0; }
        int notices = 0;
    } filter;
    CQActiveScheduler::instance()->installEventFilter(&filter);
    std::make_unique<QGuiApplication>(argCount, args).reset();
    Add([] {}).Complete(0);
    sleep_for(300ms); // at least two polls
    const QGuiApplication second(argCount, args);
    Add([] {}).Complete(0);
    sleep_for(300ms);
    QCoreApplication::sendPostedEvents();
    if (filter.notices != 1) {
        _exit(4);
    }
}

constexpr struct {
    std::string_view name;
    void (*play)(Clock::duration moment);
    int children;
} scenarios[] = {
    {"ApplicationIsDestroyed", ApplicationIsDestroyed, 24},
    {"ExitWithNoticesPending", ExitWithNoticesPending, 24},
    {"RunNeverEnds", RunNeverEnds, 1},
    {"RunCallsExit", RunCallsExit, 1},
    {"SecondApplication", SecondApplication, 1},
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int result = 2; // no such scenario
    for (const auto& scenario : scenarios) {
        for (int i = 0; scenario.name == argv[argc - 1] && i < scenario.children; ++i) {
            if (fork() == 0) {
                alarm(60);
                scenario.play(200ms * i / scenario.children);
                return 0;
            }
            result = 0;
        }
    }
    for (int status = 0; wait(&status) > 0;) {
        result |= status != 0 ? 1 : 0;
    }
    return result;
}
