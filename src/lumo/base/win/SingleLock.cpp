// win::CSingleLock: acquires its sync object on Lock and releases it on Unlock and in a
// destructor that swallows any failure.
#include <lumo/base/win/SingleLock.h>

#include <lumo/base/Exception.h>

namespace lumo {
namespace base {
namespace win {

CSingleLock::CSingleLock(CSyncObject* object, bool lockNow) : m_object(object), m_locked(false) {
    if (object == nullptr)
        throw CIllegalArgumentException("lumo/base/win/SingleLock", __LINE__,
                                        "Invalid sync object.");
    if (lockNow)
        Lock();
}

CSingleLock::~CSingleLock() {
    try {
        Unlock();
    } catch (...) {
        // A destructor must not throw; the object stays as the failed release left it.
    }
}

void CSingleLock::Lock() {
    m_object->Acquire();
    m_locked = true;
}

bool CSingleLock::Lock(unsigned long timeout) {
    bool const acquired = m_object->TryAcquire(timeout);
    if (acquired)
        m_locked = true;
    return acquired;
}

void CSingleLock::Unlock() {
    if (m_locked) {
        m_object->Release();
        m_locked = false;
    }
}

} // namespace win
} // namespace base
} // namespace lumo
