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

// How long exit() waits for a run that does not end, for example one that waits for the
// thread that called exit().
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
    const auto deadline = std::chrono::steady_clock::now() + exitPatience;
    while (workersAwake > awakeAtLeast && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
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
    [[maybe_unused]] static const int registered = std::atexit(AwaitWorkers);
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
        Run(active);
    }
}

void CQSchedulerInstance::Run(CQActive* active)
{
    active->RunL(__atomic_load_n(&active->m_nStatus, __ATOMIC_RELAXED));
    // exit() may have given up waiting for this run, and the object be gone.
    ParkIfProcessEnds();
    // Lowered whoever raised it meanwhile; publishes what the run wrote to IsReady().
    __atomic_store_n(&active->m_nReady, 0, __ATOMIC_RELEASE);
    PostNotice(m_pReceiver, std::make_unique<CQSchedulerEvent>(active));
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
