#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

/// A counter with a ceiling that it reports but does not enforce: counting up may pass the
/// maximum, and IsUpMax() tells.
class ORVO_EXPORT CLimitedCounter
{
public:
    /// Count and maximum are 0, so a fresh counter is at its maximum.
    CLimitedCounter();
    virtual ~CLimitedCounter();

    /// Sets the maximum, and the count to the smaller of \a count and \a max.
    void SetMaxCount(int max, int count);

    /// Sets the count to 0; the maximum stays.
    void ReCount();

    /// Counts up by one, beyond the maximum too: callers rely on the surplus being counted.
    /// Stays at 2^31 - 1.
    void IncreaseOne();

    /// Counts down by one, never to below 0; a negative count becomes 0.
    void DecreaseOne();

    /// True if the count has reached or passed the maximum.
    bool IsUpMax() const;

    /// The maximum of the last SetMaxCount().
    int GetMaxCount() const;

private:
    qint32 m_nCount;
    qint32 m_nMaxCount;
};
