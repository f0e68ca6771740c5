#pragma once

#include "OrvoExport.h"

/// Receives the periodic calls of a CQTimer.
class ORVO_EXPORT CQTimerObserver
{
public:
    /// One period has passed. Called on the thread that owns the timer.
    virtual void OnPeriodTask() = 0;

protected:
    // Not virtual: clients depend on OnPeriodTask() being the first virtual operation, so
    // observers are not deleted through this interface.
    ~CQTimerObserver() = default;
};
