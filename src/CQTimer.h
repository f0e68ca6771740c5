#pragma once

#include "OrvoExport.h"

#include <QObject>

class CQTimerObserver;
class QTimer;

/// A periodic timer that calls a CQTimerObserver through its private slot DoPeriodTask().
///
/// StartTimer() asks for the connection before its QTimer exists, so Qt refuses it and the
/// time-outs reach no slot. Clients rely on that: they drive the observer themselves, through
/// a string-based connection to DoPeriodTask() or through the meta-object.
///
///     timer.StartTimer(&observer, 1, 500, 0);
///     QObject::connect(&clock, SIGNAL(timeout()), &timer, SLOT(DoPeriodTask()));
///
/// Use it on the thread that owns it. Making and starting one throws `std::bad_alloc` without
/// memory.
class ORVO_EXPORT CQTimer : public QObject
{
    Q_OBJECT

public:
    /// A stopped timer without an observer and without a parent.
    CQTimer();
    ~CQTimer() override;

    /// Stores \a observer (not owned) and starts a repeating QTimer, with a warning from Qt
    /// about the refused connection. Does nothing, silently, if \a observer is null, \a count
    /// or \a interval is not above 0, or the timer has been started already.
    ///
    /// \param count     only has to be above 0; it does not limit the calls.
    /// \param interval  the period in milliseconds.
    /// \param reserved  ignored.
    void StartTimer(CQTimerObserver* observer, int count, int interval, int reserved);

    /// Deletes the timer, if it has been started, and forgets the observer.
    void StopTimer();

private Q_SLOTS:
    /// Calls OnPeriodTask() on the observer; nothing while the timer is stopped.
    void DoPeriodTask();

private:
    QTimer* m_pTimer;
    CQTimerObserver* m_pObserver;
};
