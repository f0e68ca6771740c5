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
    explicit Active(void (*work)()) : CQActive(0), m_work(work) {}
    void DoCancel() override {}
    void RunL(int) override { m_work(); }
    void (*m_work)();
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

void AddReady(void (*work)())
{
    owner.actives.push_back(std::make_unique<Active>(work));
    CQActiveScheduler::instance()->Add(owner.actives.back().get());
    owner.actives.back()->Complete(0);
}

/// Gives the worker objects to run for 200 milliseconds.
void KeepBusy()
{
    for (int i = 0; i < 100; ++i) {
        AddReady([] {
            owner.running = true;
            sleep_for(2ms);
            owner.running = false;
        });
    }
}

void Play(std::string_view scenario, Clock::duration moment)
{
    auto application = std::make_unique<QGuiApplication>(argCount, args);
    if (scenario == "ApplicationIsDestroyed") {
        KeepBusy();
        sleep_for(moment);
        application.reset();
        sleep_for(moment);
    } else if (scenario == "ExitWithNoticesPending") {
        KeepBusy();
        sleep_for(moment);
        std::exit(0);
    } else if (scenario == "RunNeverEnds") {
        static std::atomic<bool> begun{false};
        AddReady([] {
            begun = true;
            sleep_for(1h);
        });
        while (!begun) { // a run that has begun may still be there when its object goes
            sleep_for(1ms);
        }
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
    for (int i = 0; i < children; ++i) {
        if (fork() == 0) {
            alarm(60);
            Play(argv[1], 200ms * i / children);
            return 0;
        }
    }
    int result = 0;
    for (int status = 0; wait(&status) > 0;) {
        result |= status != 0 ? 1 : 0;
    }
    return result;
}
