#pragma once

#include "OrvoExport.h"

#include <QObject>

class MTimeOutNotifier;

/// A one-shot time-out: armed with a time in microseconds, it calls its MTimeOutNotifier once
/// when that has passed.
///
///     CTimeOutTimer* timer = CTimeOutTimer::NewL(*this);
///     timer->After(1500 * 1000);
///
/// Use it on the thread that owns it; that thread's event loop makes it fire. Making and arming one
/// throws `std::bad_alloc` without memory.
class ORVO_EXPORT CTimeOutTimer : public QObject
{
public:
    /// Makes an idle timer; the caller owns it. \a notifier must outlive it. The two are the
    /// same: there is no cleanup stack.
    /// @{
    static CTimeOutTimer* NewL(MTimeOutNotifier& notifier);
    static CTimeOutTimer* NewLC(MTimeOutNotifier& notifier);
    /// @}

    /// An idle timer without a parent. \a notifier must outlive it.
    explicit CTimeOutTimer(MTimeOutNotifier& notifier);
    /// Discards the armed timers, so the notifier is not called any more.
    ~CTimeOutTimer() override;

    /// The second phase of NewL(): marks the timer idle.
    void ConstructL();

    /// Arms the timer, which never fires before its time. The longest is 2^31 - 1 microseconds: 35
    /// minutes and 47 seconds. The time counts in whole milliseconds, truncated toward zero: below
    /// 1000 microseconds it fires as soon as the event loop runs. -1000 and less is refused by
    /// Qt with a warning, and IsActive() is then true without anything to wait for.
    ///
    /// An armed timer is not replaced: the older one keeps running, fires too, and can no
    /// longer be cancelled. Callers Cancel() first unless they want both.
    void After(int microseconds);

    /// Disarms what the last After() armed; the notifier is not called for it. Harmless on a
    /// timer that is idle.
    void Cancel();

    /// True from After() until an expiry or Cancel().
    bool IsActive() const;

protected:
    /// An expiry: ends the timer that \a event carries, then calls the notifier, which may
    /// arm the timer again.
    void timerEvent(QTimerEvent* event) override;

private:
    MTimeOutNotifier& m_rNotifier;
    bool m_bActive;
    qint32 m_nTimerId;
};
