#include "CQActive.h"

CQActive::CQActive(int nPriority)
    : m_nReserved(0), m_nPriority(nPriority), m_nReady(0), m_nStatus(0)
{
}

CQActive::~CQActive() = default;

void CQActive::Complete(int nStatus)
{
    __atomic_store_n(&m_nStatus, nStatus, __ATOMIC_RELAXED);
    // Publishes the status, and whatever else the caller prepared for the run.
    __atomic_store_n(&m_nReady, 1, __ATOMIC_RELEASE);
}

void CQActive::Cancel()
{
    if (__atomic_exchange_n(&m_nReady, 0, __ATOMIC_ACQ_REL) == 1) {
        DoCancel();
    }
}
