#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

/// An active object: a piece of work that the active scheduler runs when it is due.
///
/// Derive from it, do the work in RunL(), hand the object to CQActiveScheduler::Add() once,
/// and call Complete() whenever the work is due. The scheduler's worker looks at the object
/// every 100 milliseconds and runs it on its own thread.
///
/// The scheduler keeps every object for the life of the process: an object that has been
/// added must never be destroyed while the process runs.
///
/// The order of the virtual operations and of the data words is fixed; clients depend on it.
class ORVO_EXPORT CQActive
{
public:
    virtual ~CQActive();

    /// Called by Cancel(), on its thread, for a request that it withdrew: undo here what was
    /// started to complete it.
    virtual void DoCancel() = 0;

    /// The work. Called on the worker thread with the status that was given to Complete().
    /// It may add objects to the scheduler and complete other objects. What it throws is not
    /// caught and ends the process. Work on GUI objects belongs on the main thread.
    virtual void RunL(int status) = 0;

    /// Stores \a nStatus, then raises the ready flag: the object runs once, within about 100
    /// milliseconds. Raising a flag that is already up only replaces the status. Any thread.
    ///
    /// The worker lowers the flag after RunL() has returned, whoever raised it. So a raise
    /// made while RunL() runs, by RunL() itself or by another thread, is lost. Keep the work
    /// in a queue under a lock of its own; put work in first, then call Complete() only while
    /// IsReady() is false; and look at the queue again on the main thread when the scheduler
    /// reports the run (see CQSchedulerEvent), which it does after the flag is down. That
    /// loses nothing.
    void Complete(int nStatus);

    /// True from Complete() until the run has ended or Cancel() withdrew it. Once it is false
    /// after a run, all that the run wrote is visible to the caller. Any thread.
    bool IsReady() const { return __atomic_load_n(&m_nReady, __ATOMIC_ACQUIRE) == 1; }

    /// Lowers the ready flag, and calls DoCancel() if it was up. Any thread.
    ///
    /// A run that has begun, or that the worker is about to begin, is not held up: DoCancel() is
    /// called beside it, the run ends as usual and is reported, and IsReady() is false though it
    /// may still go on. A Complete() that follows while it does is lost as any other raise then.
    void Cancel();

    CQActive(const CQActive&) = delete;
    CQActive& operator=(const CQActive&) = delete;

protected:
    /// \param nPriority  0 (runs last) to 4 (runs first); fixed when the object is added.
    ///                   An object of any other priority never runs.
    explicit CQActive(int nPriority);

    /// The scheduler's words. After Add() another thread reads and writes them: a derived
    /// class that does not go through Complete(), IsReady() and Cancel() must access them
    /// atomically, and store the status before it raises the flag, with release order.
    /// @{
    qint32 m_nReserved; ///< not used
    qint32 m_nPriority; ///< read once, by Add()
    qint32 m_nReady;    ///< exactly 1 asks for a run; any other value does not
    qint32 m_nStatus;   ///< what RunL() is given
    /// @}

private:
    friend class CQSchedulerInstance;
};
