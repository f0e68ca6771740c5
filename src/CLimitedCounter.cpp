#include "CLimitedCounter.h"

#include <algorithm>
#include <limits>

CLimitedCounter::CLimitedCounter() : m_nCount(0), m_nMaxCount(0) {}

CLimitedCounter::~CLimitedCounter() = default;

void CLimitedCounter::SetMaxCount(int max, int count)
{
    m_nMaxCount = max;
    m_nCount = std::min(count, max);
}

void CLimitedCounter::ReCount()
{
    m_nCount = 0;
}

void CLimitedCounter::IncreaseOne()
{
    if (m_nCount < std::numeric_limits<qint32>::max()) {
        ++m_nCount;
    }
}

void CLimitedCounter::DecreaseOne()
{
    m_nCount = m_nCount > 0 ? m_nCount - 1 : 0;
}

bool CLimitedCounter::IsUpMax() const
{
    return m_nCount >= m_nMaxCount;
}

int CLimitedCounter::GetMaxCount() const
{
    return m_nMaxCount;
}
