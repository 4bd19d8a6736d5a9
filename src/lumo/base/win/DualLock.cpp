// win::CDualLock: checks that both objects are waitable, then waits on their two handles
// and releases what it took, all without allocation.
#include <lumo/base/win/DualLock.h>

#include <lumo/base/Exception.h>

namespace lumo {
namespace base {
namespace win {

CDualLock::CDualLock(CSyncObject* first, CSyncObject* second, bool lockNow)
    : m_objects{first, second}, m_locked{false, false} {
    if (first == nullptr)
        throw CIllegalArgumentException("lumo/base/win/DualLock", __LINE__,
                                        "Sync object 1 is invalid.");
    if (first->GetHandle() == nullptr)
        throw CIllegalArgumentException("lumo/base/win/DualLock", __LINE__,
                                        "Sync object 1 is not waitable.");
    if (second == nullptr)
        throw CIllegalArgumentException("lumo/base/win/DualLock", __LINE__,
                                        "Sync object 2 is invalid.");
    if (second->GetHandle() == nullptr)
        throw CIllegalArgumentException("lumo/base/win/DualLock", __LINE__,
                                        "Sync object 2 is not waitable.");
    if (lockNow)
        Lock(false, CSyncObject::Timeout_Infinite);
}

CDualLock::~CDualLock() {
    try {
        Unlock();
    } catch (...) {
        // A destructor must not throw.
    }
}

unsigned long CDualLock::Lock(bool waitAll, unsigned long timeout) {
    CSyncObject::Handle const handles[2] = {m_objects[0]->GetHandle(), m_objects[1]->GetHandle()};
    unsigned long const result =
        CSyncObject::WaitForMultipleSyncObject(2, handles, waitAll, timeout);
    if (result < CSyncObject::Wait_Object_0 + 2) {
        if (waitAll)
            m_locked[0] = m_locked[1] = true;
        else
            m_locked[result - CSyncObject::Wait_Object_0] = true;
    }
    return result;
}

void CDualLock::Unlock() {
    for (int i = 0; i < 2; ++i) {
        if (m_locked[i]) {
            m_objects[i]->Release();
            m_locked[i] = false;
        }
    }
}

bool CDualLock::IsLocked(unsigned long index) const {
    if (index >= 2)
        throw CArrayIndexOutOfBoundsException("lumo/base/win/DualLock", __LINE__);
    return m_locked[index];
}

} // namespace win
} // namespace base
} // namespace lumo
