#pragma once

#include "OrvoExport.h"

#include <QEvent>

class CQActive;

/// The notice that an active object has run: type 1000 (QEvent::User), posted to the
/// CQActiveScheduler after each run, when the ready flag is down again. The scheduler discards
/// it; an event filter on the scheduler sees it first, on the thread that made the scheduler.
class ORVO_EXPORT CQSchedulerEvent : public QEvent
{
public:
    /// \param active  the object that has just run; not owned.
    explicit CQSchedulerEvent(CQActive* active);
    ~CQSchedulerEvent() override;

    /// The object that has just run.
    CQActive* GetActive() const { return m_pActive; }

private:
    CQActive* m_pActive;
};
