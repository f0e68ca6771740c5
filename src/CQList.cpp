#include "CQList.h"

#include "OrvoAssert.h"

#include <QtGlobal>

#include <limits>
#include <new>

CQPlex* Create(CQPlex** head, unsigned int nMax, unsigned int cbElement)
{
    if (head == nullptr) {
        return nullptr;
    }
    if (!OrvoAssert(nMax > 0 && cbElement > 0, "nMax > 0 && cbElement > 0", "src/CQList", 36)) {
        return nullptr;
    }
    // Neither the product nor the sum can overflow 64 bits.
    const quint64 size = quint64{nMax} * cbElement + sizeof(CQPlex);
    if (size > std::numeric_limits<quint32>::max()) {
        return nullptr;
    }
    auto* const memory = new (std::nothrow) unsigned char[static_cast<std::size_t>(size)];
    if (memory == nullptr) {
        return nullptr;
    }
    *head = new (memory) CQPlex{*head};
    return *head;
}

void CQPlex::FreeDataChain()
{
    CQPlex* block = this;
    while (block != nullptr) {
        CQPlex* const next = block->m_pNext;
        delete[] reinterpret_cast<unsigned char*>(block);
        block = next;
    }
}
