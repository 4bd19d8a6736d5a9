// win::CDualLock: CMultiLock's scoped wait for exactly two waitable sync objects, held
// in members so that it needs no allocation.
#ifndef LUMO_BASE_WIN_DUALLOCK_H
#define LUMO_BASE_WIN_DUALLOCK_H

#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace win {

/// CMultiLock for exactly two waitable sync objects, without allocation.
class LUMO_API CDualLock : public CBase {
public:
    /// CIllegalArgumentException "Sync object 1 is invalid." / "Sync object 2 is
    /// invalid." for a null object, "Sync object 1 is not waitable." / "Sync object 2
    /// is not waitable." for one without wait handle (a critical section). lockNow
    /// calls Lock(false, CSyncObject::Timeout_Infinite).
    CDualLock(CSyncObject* first, CSyncObject* second, bool lockNow = false);
    ~CDualLock();

    /// As CMultiLock::Lock with two objects.
    unsigned long Lock(bool waitAll, unsigned long timeout);
    /// Releases each object that is held.
    void Unlock();
    /// CArrayIndexOutOfBoundsException for an index other than 0 and 1.
    bool IsLocked(unsigned long index) const;

    CDualLock(CDualLock const&) = delete;
    CDualLock& operator=(CDualLock const&) = delete;

private:
    CSyncObject* m_objects[2];
    bool m_locked[2];
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
