// win::CMultiLock: scoped acquisition of several waitable sync objects (not owned) by one
// wait for any or all of them, releasing what it took in index order.
#ifndef LUMO_BASE_WIN_MULTILOCK_H
#define LUMO_BASE_WIN_MULTILOCK_H

#include <lumo/base/win/SyncObject.h>

#include <memory>

namespace lumo {
namespace base {
namespace win {

/// Scoped acquisition of several waitable sync objects (not owned) by one wait. The
/// wait itself takes the objects (a mutex's ownership, an auto-reset event's
/// signal); their own Acquire is not called. Belongs to one thread.
class LUMO_API CMultiLock : public CBase {
public:
    /// A count of 0 or above CSyncObject::Maximum_Wait_Objects throws
    /// CIllegalArgumentException "Invalid sync object count."; a null array "Invalid
    /// sync object array."; a null object in it "Invalid sync object.". lockNow calls
    /// Lock(false, CSyncObject::Timeout_Infinite), as CDualLock does.
    CMultiLock(unsigned long count, CSyncObject* const* objects, bool lockNow = false);
    /// Unlock.
    ~CMultiLock();

    /// Waits for one (waitAll false) or all of the objects and returns the wait result
    /// (see CSyncObject::WaitForMultipleSyncObject, whose argument errors it passes
    /// on). Only a result Wait_Object_0 + i is recorded: with waitAll every flag is
    /// set, otherwise the flag of object i. Defined behaviour: a time-out or an
    /// abandoned result sets no flag and raises nothing, so mutexes taken by an
    /// abandoned result are not released by Unlock.
    unsigned long Lock(bool waitAll, unsigned long timeout);
    /// Releases every flagged object in index order and clears the flags.
    void Unlock();
    /// CArrayIndexOutOfBoundsException for an index at or past the count.
    bool IsLocked(unsigned long index) const;

    CMultiLock(CMultiLock const&) = delete;
    CMultiLock& operator=(CMultiLock const&) = delete;

private:
    unsigned long m_count;
    std::unique_ptr<CSyncObject*[]> m_objects;
    std::unique_ptr<CSyncObject::Handle[]> m_handles;
    std::unique_ptr<bool[]> m_locked;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
