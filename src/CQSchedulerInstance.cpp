#include "CQSchedulerInstance.h"

#include "CQActive.h"
#include "CQSchedulerEvent.h"

#include <QCoreApplication>
#include <QMutexLocker>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <pthread.h>
#include <unistd.h>

using ActiveList = QList<CQActive*>;

// The end of the application object. Posting wakes the event dispatcher, which dies with the
// application: a notice is posted before that begins, or not at all.
namespace
{

std::mutex noticeMutex;
bool applicationEnded = false;

void SetApplicationEnded(bool ended)
{
    const std::lock_guard lock(noticeMutex);
    applicationEnded = ended;
}

void PostNotice(QObject* receiver, std::unique_ptr<CQSchedulerEvent> notice)
{
    const std::lock_guard lock(noticeMutex);
    if (!applicationEnded) {
        QCoreApplication::postEvent(receiver, notice.release());
    }
}

void OnApplicationStart()
{
    SetApplicationEnded(false);
    qAddPostRoutine([] { SetApplicationEnded(true); });
}
Q_COREAPP_STARTUP_FUNCTION(OnApplicationStart)

} // namespace

// The end of the process. A worker never returns, but while static objects are destroyed it
// must touch neither them nor the client's objects. Everything here is without a destructor,
// because the worker may still look at it then.
namespace
{

// How long exit() waits in all for a run that does not end, for example one that waits for
// the thread that called exit().
constexpr std::chrono::seconds exitPatience{2};

std::atomic<int> workersAwake{0};
std::atomic<bool> processEnds{false};
thread_local bool isAwakeWorker = false;

void FallAsleep()
{
    isAwakeWorker = false;
    --workersAwake;
}

void ParkIfProcessEnds()
{
    if (isAwakeWorker && processEnds) {
        FallAsleep();
        for (;;) {
            std::this_thread::sleep_for(std::chrono::hours(1));
        }
    }
}

// Counts itself first and looks second, where AwaitWorkers() announces first and counts
// second: one of the two sees the other.
void WakeUp()
{
    isAwakeWorker = true;
    ++workersAwake;
    ParkIfProcessEnds();
}

void AwaitWorkers()
{
    processEnds = true;
    // RunL() itself may have called exit().
    const int awakeAtLeast = isAwakeWorker ? 1 : 0;
    // One deadline for all the waits of the process.
    static const auto deadline = std::chrono::steady_clock::now() + exitPatience;
    while (workersAwake > awakeAtLeast && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

struct MainThreadEnd {
    ~MainThreadEnd() { AwaitWorkers(); }
};

// Registered twice. What Qt makes when it is first needed, its locale data for one, is destroyed
// before atexit() comes to what was registered earlier; an object of the thread that calls exit()
// is destroyed before any static one. A thread other than the main one has no such object: it may
// end while the process goes on.
void AwaitWorkersAtExit()
{
    [[maybe_unused]] static const int registered = std::atexit(AwaitWorkers);
    if (gettid() == getpid()) {
        [[maybe_unused]] thread_local const MainThreadEnd mainThreadEnd;
    }
}

} // namespace

// A forked child, which has the forking thread alone. All locks are held over the fork, so that
// the child inherits none from a thread that it does not have, nor those of Qt inside a post.
namespace
{

// Of all workers, and never destroyed, as they are not.
std::vector<QMutex*>& ListMutexes()
{
    static auto& mutexes = *new std::vector<QMutex*>;
    return mutexes;
}

void LockAll()
{
    noticeMutex.lock();
    for (QMutex* mutex : ListMutexes()) {
        mutex->lock();
    }
}

void UnlockAll()
{
    for (QMutex* mutex : ListMutexes()) {
        mutex->unlock();
    }
    noticeMutex.unlock();
}

void BeginChild()
{
    workersAwake = isAwakeWorker ? 1 : 0;
    UnlockAll();
}

void LockOverForks(QMutex* mutex)
{
    [[maybe_unused]] static const int registered = pthread_atfork(LockAll, UnlockAll, BeginChild);
    const std::lock_guard lock(noticeMutex);
    ListMutexes().push_back(mutex);
}

} // namespace

namespace
{

constexpr unsigned long pollMilliseconds = 100;

// Returns the first ready object at nNext or behind it, and moves nNext behind that object;
// null at the end of the list. One hold of the lock serves a whole stretch of idle objects.
CQActive* NextReady(const ActiveList& list, QMutex* mutex, ActiveList::size_type& nNext)
{
    const QMutexLocker locker(mutex);
    while (nNext < list.size()) {
        CQActive* const active = list.at(nNext++);
        if (active->IsReady()) {
            return active;
        }
    }
    return nullptr;
}

} // namespace

CQSchedulerInstance::CQSchedulerInstance(QObject* receiver)
    : m_pLists{new ActiveList, new ActiveList, new ActiveList, new ActiveList, new ActiveList},
      m_pMutex(new QMutex), m_pReceiver(receiver)
{
    LockOverForks(m_pMutex);
    AwaitWorkersAtExit();
}

CQSchedulerInstance::~CQSchedulerInstance() = default;

void CQSchedulerInstance::Add(CQActive* active)
{
    if (active == nullptr) {
        return;
    }
    const qint32 nPriority = active->m_nPriority;
    if (nPriority < 0 || nPriority >= static_cast<qint32>(std::size(m_pLists))) {
        return;
    }
    const QMutexLocker locker(m_pMutex);
    m_pLists[nPriority]->append(active);
}

void CQSchedulerInstance::RunActiveList(QList<CQActive*>* list)
{
    if (list == nullptr) {
        return;
    }
    ActiveList::size_type nNext = 0;
    while (CQActive* const active = NextReady(*list, m_pMutex, nNext)) {
        active->RunL(__atomic_load_n(&active->m_nStatus, __ATOMIC_RELAXED));
        // exit() may have given up waiting for this run, and the object be gone.
        ParkIfProcessEnds();
        // Lowered whoever raised it meanwhile; publishes what the run wrote to IsReady().
        __atomic_store_n(&active->m_nReady, 0, __ATOMIC_RELEASE);
        PostNotice(m_pReceiver, std::make_unique<CQSchedulerEvent>(active));
    }
}

void CQSchedulerInstance::run()
{
    for (;;) {
        WakeUp();
        for (auto list = std::rbegin(m_pLists); list != std::rend(m_pLists); ++list) {
            RunActiveList(*list);
        }
        FallAsleep();
        QThread::msleep(pollMilliseconds);
    }
}
