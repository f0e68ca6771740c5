#pragma once

#include "OrvoExport.h"

/// Receives the expiry of a CTimeOutTimer.
class ORVO_EXPORT MTimeOutNotifier
{
public:
    /// The time-out has expired. Called once per expiry, on the thread that owns the timer.
    virtual void OnTimeOut() = 0;

protected:
    // Not virtual: clients depend on OnTimeOut() being the first virtual operation, so
    // notifiers are not deleted through this interface.
    ~MTimeOutNotifier() = default;
};
