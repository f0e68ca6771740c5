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

struct Active : CQActive {
    explicit Active(void (*work)()) : CQActive(0), m_work(work) {}
    void DoCancel() override {}
    void RunL(int) override;
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
    std::atomic<bool> running{false};
    std::atomic<int> runs{0};
    Clock::time_point latestEnd = Clock::time_point::max();
    std::vector<std::unique_ptr<Active>> actives;
} owner;

void Active::RunL(int)
{
    void (*const work)() = m_work;
    ++owner.runs; // from here on the object may be gone, if the run outlives it
    work();
}

void AddReady(void (*work)())
{
    owner.actives.push_back(std::make_unique<Active>(work));
    CQActiveScheduler::instance()->Add(owner.actives.back().get());
    owner.actives.back()->Complete(0);
}

void AwaitRun()
{
    while (owner.runs == 0) {
        sleep_for(1ms);
    }
}

/// Gives the worker objects to run for 3 seconds, which is longer than exit() waits.
void KeepBusy()
{
    for (int i = 0; i < 1500; ++i) {
        AddReady([] {
            owner.running = true;
            sleep_for(2ms);
            owner.running = false;
        });
    }
}

/// Gives the worker notices to post, one right after the other, and lets it begin.
void Flood()
{
    for (int i = 0; i < 20000; ++i) {
        AddReady([] {});
    }
    AwaitRun();
}

/// A child forked while the worker posts, which ends as the scenario's process itself does.
void PlayForkedChild(std::unique_ptr<QGuiApplication> application)
{
    for (int i = 0; i < 2; ++i) {
        if (fork() == 0) {
            alarm(60);
            application.reset();
            owner.latestEnd = Clock::now() + 1900ms;
            std::exit(0);
        }
    }
    for (int status = 0; wait(&status) > 0;) {
        if (status != 0) {
            _exit(4);
        }
    }
}

void Play(std::string_view scenario, Clock::duration moment)
{
    CQActiveScheduler::instance(); // before the application makes any of Qt's statics
    auto application = std::make_unique<QGuiApplication>(argCount, args);
    if (scenario == "ApplicationIsDestroyed") {
        Flood();
        sleep_for(moment / 10);
        application.reset();
        sleep_for(moment);
    } else if (scenario == "ForkedChild") {
        Flood();
        sleep_for(moment / 20);
        PlayForkedChild(std::move(application));
    } else if (scenario == "ExitWithNoticesPending") {
        KeepBusy();
        sleep_for(moment);
        std::exit(0);
    } else if (scenario == "RunUsesLocale") {
        AddReady([] {
            for (const auto end = Clock::now() + 500ms; Clock::now() < end;) {
                QLocale().toString(QTimeZone::systemTimeZone().offsetFromUtc({}));
            }
        });
        AwaitRun();
        sleep_for(moment);
    } else if (scenario == "RunNeverEnds") {
        AddReady([] { sleep_for(1h); });
        AwaitRun(); // a run that has begun may still be there when its object goes
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
