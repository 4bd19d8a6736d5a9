// win::CMultiLock: validates the objects, keeps their handles and lock flags in owned
// arrays, waits for any or all, and releases the flagged ones in index order.
#include <lumo/base/win/MultiLock.h>

#include <lumo/base/Exception.h>

#include <new>

namespace lumo {
namespace base {
namespace win {

CMultiLock::CMultiLock(unsigned long count, CSyncObject* const* objects, bool lockNow)
    : m_count(count) {
    if (count == 0 || count > CSyncObject::Maximum_Wait_Objects)
        throw CIllegalArgumentException("lumo/base/win/MultiLock", __LINE__,
                                        "Invalid sync object count.");
    if (objects == nullptr)
        throw CIllegalArgumentException("lumo/base/win/MultiLock", __LINE__,
                                        "Invalid sync object array.");
    for (unsigned long i = 0; i < count; ++i)
        if (objects[i] == nullptr)
            throw CIllegalArgumentException("lumo/base/win/MultiLock", __LINE__,
                                            "Invalid sync object.");
    // Held by the members, so a failure below frees whatever was obtained.
    m_objects.reset(new (std::nothrow) CSyncObject*[count]);
    m_handles.reset(new (std::nothrow) CSyncObject::Handle[count]);
    m_locked.reset(new (std::nothrow) bool[count]);
    if (m_objects == nullptr || m_handles == nullptr || m_locked == nullptr)
        throw CMemoryException("lumo/base/win/MultiLock", __LINE__);
    for (unsigned long i = 0; i < count; ++i) {
        m_objects[i] = objects[i];
        m_handles[i] = objects[i]->GetHandle();
        m_locked[i] = false;
    }
    if (lockNow)
        Lock(false, CSyncObject::Timeout_Infinite);
}

CMultiLock::~CMultiLock() {
    try {
        Unlock();
    } catch (...) {
        // A destructor must not throw.
    }
}

unsigned long CMultiLock::Lock(bool waitAll, unsigned long timeout) {
    unsigned long const result =
        CSyncObject::WaitForMultipleSyncObject(m_count, m_handles.get(), waitAll, timeout);
    if (result < CSyncObject::Wait_Object_0 + m_count) {
        if (waitAll) {
            for (unsigned long i = 0; i < m_count; ++i)
                m_locked[i] = true;
        } else {
            m_locked[result - CSyncObject::Wait_Object_0] = true;
        }
    }
    return result;
}

void CMultiLock::Unlock() {
    for (unsigned long i = 0; i < m_count; ++i) {
        if (m_locked[i]) {
            m_objects[i]->Release();
            m_locked[i] = false;
        }
    }
}

bool CMultiLock::IsLocked(unsigned long index) const {
    if (index >= m_count)
        throw CArrayIndexOutOfBoundsException("lumo/base/win/MultiLock", __LINE__);
    return m_locked[index];
}

} // namespace win
} // namespace base
} // namespace lumo
