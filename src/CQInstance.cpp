#include "CQInstance.h"

#include <new>

CQInstance* CQInstance::s_pInstance = nullptr;

CQInstance::~CQInstance() = default;

CQInstance* CQInstance::Instance()
{
    if (s_pInstance == nullptr) {
        s_pInstance = new (std::nothrow) CQInstance;
    }
    return s_pInstance;
}

int CQInstance::AddWithUid(void* object, int uid)
{
    CQInstance* const registry = Instance();
    if (registry == nullptr) {
        return -1;
    }
    registry->m_Objects.append(object);
    try {
        registry->m_Uids.append(uid);
    } catch (...) {
        registry->m_Objects.removeLast(); // the lists keep the same length
        throw;
    }
    return static_cast<int>(registry->m_Objects.indexOf(object));
}

void* CQInstance::GetByUid(int uid)
{
    CQInstance* const registry = Instance();
    const auto index = registry != nullptr ? registry->m_Uids.indexOf(uid) : -1;
    return index >= 0 ? registry->m_Objects.at(index) : nullptr;
}

void* CQInstance::RemoveByUid(int uid)
{
    CQInstance* const registry = Instance();
    const auto index = registry != nullptr ? registry->m_Uids.indexOf(uid) : -1;
    if (index < 0) {
        return nullptr;
    }
    void* const object = registry->m_Objects.at(index);
    registry->m_Objects[index] = nullptr;
    registry->m_Uids[index] = -1;
    return object;
}

void CQInstance::ResetAndDestroy()
{
    // The pointer stays as it is: after this call there is no registry to ask for.
    delete s_pInstance;
}
