#pragma once

#include "OrvoExport.h"

#include <QObject>

class CQActive;
class CQSchedulerInstance;

/// The process's active scheduler: runs the active objects that were added to it.
///
///     CQActiveScheduler::instance()->Add(new Saver);   // class Saver : public CQActive
///
/// It owns one worker thread, which polls the objects every 100 milliseconds, higher
/// priorities first and in the order of Add() within one, and runs the ready ones. After each
/// run it posts a CQSchedulerEvent to this object, which wakes the event loop of the thread
/// that created the scheduler. A client that wants to know on that thread that an object has
/// run installs an event filter on the scheduler.
///
/// That thread has to run its event loop: without one the notices are never delivered and pile up,
/// some 60 bytes a run.
///
/// Scheduler and worker live until the process ends. exit() on the main thread, or the end of
/// main(), lets a run that has begun end first, but waits for at most two seconds; then the worker
/// is at rest before any static object is destroyed, the client's and Qt's. When another thread
/// calls exit(), objects with static storage that were made after the scheduler are destroyed
/// before that wait, so RunL() must not depend on them. The main thread must not end by
/// pthread_exit(), which puts the worker to rest too. Once an application object has been
/// destroyed, no more events are posted until there is another; the objects still run.
///
/// Without memory instance() and Add() throw `std::bad_alloc`, and the worker, which then cannot
/// report a run, ends the process.
///
/// In a forked child there is no worker: objects can be added but do not run.
class ORVO_EXPORT CQActiveScheduler : public QObject
{
    Q_OBJECT

public:
    /// Returns the scheduler; makes it and starts the worker on the first call, which must
    /// be over before another thread can make one: call it on the main thread at start-up.
    /// Not to be deleted.
    static CQActiveScheduler* instance();

    /// A scheduler with a worker of its own, already started. Clients use instance().
    CQActiveScheduler();
    /// Neither stops the worker nor frees what it uses, so it is not to be called.
    ~CQActiveScheduler() override;

    /// Has \a active polled from now on, for the life of the process; it is not owned. Null,
    /// or a priority outside 0 to 4, is silently ignored. Any thread, and any RunL().
    void Add(CQActive* active);

    /// Returns true and does nothing, whatever \a e is: a notice only wakes the event loop.
    /// Callers rely on every other event being swallowed too, so deleteLater() and queued
    /// calls have no effect on the scheduler.
    bool event(QEvent* e) override;

private:
    CQSchedulerInstance* m_pWorker;
    static CQActiveScheduler* self;
};
