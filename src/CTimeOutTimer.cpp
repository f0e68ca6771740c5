#include "CTimeOutTimer.h"

#include "MTimeOutNotifier.h"

#include <QTimerEvent>

CTimeOutTimer* CTimeOutTimer::NewL(MTimeOutNotifier& notifier)
{
    return NewLC(notifier);
}

CTimeOutTimer* CTimeOutTimer::NewLC(MTimeOutNotifier& notifier)
{
    auto* const timer = new CTimeOutTimer(notifier);
    timer->ConstructL();
    return timer;
}

CTimeOutTimer::CTimeOutTimer(MTimeOutNotifier& notifier)
    : m_rNotifier(notifier), m_bActive(false), m_nTimerId(0)
{
}

CTimeOutTimer::~CTimeOutTimer() = default;

void CTimeOutTimer::ConstructL()
{
    m_bActive = false;
}

void CTimeOutTimer::After(int microseconds)
{
    // A coarse timer, which is Qt's default, may fire up to 5% early.
    m_nTimerId = startTimer(microseconds / 1000, Qt::PreciseTimer);
    m_bActive = true;
}

void CTimeOutTimer::Cancel()
{
    m_bActive = false;
    killTimer(m_nTimerId);
    m_nTimerId = 0;
}

bool CTimeOutTimer::IsActive() const
{
    return m_bActive;
}

void CTimeOutTimer::timerEvent(QTimerEvent* event)
{
    m_bActive = false;
    killTimer(event->timerId());
    // Qt warns about an id that is no longer running, and clients cancel before they re-arm.
    if (m_nTimerId == event->timerId()) {
        m_nTimerId = 0;
    }
    m_rNotifier.OnTimeOut();
}
