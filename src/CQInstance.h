#pragma once

#include "OrvoExport.h"

#include <QList>

/// The process-wide registry of shared objects: parts of a client find an object by a
/// well-known number, its UID.
///
/// Entries are only appended. A removal leaves a tombstone, a null pointer with the UID -1, so
/// that indices never shift; the registry never shrinks. Every look-up takes the first entry
/// that matches. The registered objects are not owned. For one thread, the main thread: there
/// is no lock.
class ORVO_EXPORT CQInstance
{
public:
    /// Clears the registry; the registered objects are not deleted.
    virtual ~CQInstance();

    /// Returns the registry, made on the first call; null if there is no memory for it.
    static CQInstance* Instance();

    /// Appends an entry, whether or not \a uid or \a object is registered already. Returns the
    /// index of the first entry that holds \a object: an older one if there is one, and for
    /// null the first tombstone. -1 only if there is no memory for the registry; `std::bad_alloc`,
    /// with nothing added, if there is none for the entry.
    static int AddWithUid(void* object, int uid);

    /// Returns the object of the oldest entry with \a uid, or null. -1 finds a tombstone.
    static void* GetByUid(int uid);

    /// Turns the oldest entry with \a uid into a tombstone and returns its object; null if
    /// there is none. A younger entry with the same UID comes to light.
    static void* RemoveByUid(int uid);

    /// Deletes the registry, if it has been made. This is the last call of the process's
    /// life: the registry is not made again, and no operation may be called afterwards.
    static void ResetAndDestroy();

    CQInstance(const CQInstance&) = delete;
    CQInstance& operator=(const CQInstance&) = delete;

private:
    CQInstance() = default;

    QList<void*> m_Objects; // entry i is the pair m_Uids[i], m_Objects[i]
    QList<int> m_Uids;

    static CQInstance* s_pInstance;
};
