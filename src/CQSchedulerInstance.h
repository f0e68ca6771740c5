#pragma once

#include "OrvoExport.h"

#include <QList>
#include <QMutex>
#include <QThread>

class CQActive;

/// The worker thread of the active scheduler. Clients reach it through CQActiveScheduler.
class ORVO_EXPORT CQSchedulerInstance : public QThread
{
public:
    /// A worker with five empty lists, not started. Every run is reported to \a receiver,
    /// which must outlive the worker.
    explicit CQSchedulerInstance(QObject* receiver);
    /// Neither stops the worker nor frees its lists and mutex: a worker is made for the life
    /// of the process.
    ~CQSchedulerInstance() override;

    /// Appends \a active to the list of its priority. Null, or a priority outside 0 to 4, is
    /// silently ignored. Any thread, and any RunL().
    void Add(CQActive* active);

    /// One pass over \a list on the calling thread: runs each object whose ready flag is
    /// exactly 1, lowers the flag and posts one CQSchedulerEvent. An object appended during
    /// the pass is reached in the same pass. The list is looked at under the worker's mutex,
    /// which is free while an object runs. What RunL() throws leaves the pass there and then.
    /// A null list is empty.
    void RunActiveList(QList<CQActive*>* list);

protected:
    /// Forever: one pass over each list, priority 4 first, then 100 milliseconds of sleep.
    void run() override;

private:
    QList<CQActive*>* m_pLists[5]; // by priority
    QMutex* m_pMutex;              // guards the lists, not the objects in them
    QObject* m_pReceiver;
};
