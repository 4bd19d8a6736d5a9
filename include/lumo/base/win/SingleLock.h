// win::CSingleLock: scoped acquisition of one sync object (not owned), released by the
// destructor when held.
#ifndef LUMO_BASE_WIN_SINGLELOCK_H
#define LUMO_BASE_WIN_SINGLELOCK_H

#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace win {

/// Scoped acquisition of one sync object (not owned); the destructor releases it
/// when it is held. Belongs to one thread.
class LUMO_API CSingleLock : public CBase {
public:
    /// A null object throws CIllegalArgumentException "Invalid sync object.".
    explicit CSingleLock(CSyncObject* object, bool lockNow = false);
    ~CSingleLock();

    /// The object's Acquire; then locked.
    void Lock();
    /// The object's TryAcquire(timeout); locked when it succeeds.
    bool Lock(unsigned long timeout);
    /// Releases the object once, if locked.
    void Unlock();
    /// True while the object is held through this lock.
    bool IsLocked() const { return m_locked; }

    CSingleLock(CSingleLock const&) = delete;
    CSingleLock& operator=(CSingleLock const&) = delete;

private:
    CSyncObject* m_object;
    bool m_locked;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
