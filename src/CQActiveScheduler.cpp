#include "CQActiveScheduler.h"

#include "CQSchedulerInstance.h"

CQActiveScheduler* CQActiveScheduler::self = nullptr;

CQActiveScheduler* CQActiveScheduler::instance()
{
    if (self == nullptr) {
        self = new CQActiveScheduler;
    }
    return self;
}

CQActiveScheduler::CQActiveScheduler() : m_pWorker(new CQSchedulerInstance(this))
{
    m_pWorker->start(QThread::InheritPriority);
}

CQActiveScheduler::~CQActiveScheduler() = default;

void CQActiveScheduler::Add(CQActive* active)
{
    m_pWorker->Add(active);
}

bool CQActiveScheduler::event(QEvent*)
{
    return true;
}
