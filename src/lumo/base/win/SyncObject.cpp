// win::CSyncObject: owns and closes its kernel handle, and the waits on one or several
// handles, whose result constants are checked against the kernel layer's.
#include <lumo/base/win/SyncObject.h>

#include <lumo/base/Exception.h>

#include "../os/KernelObject.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CSyncObject, "lumo::base::win::CSyncObject", "lumo::base::CObject");

static_assert(CSyncObject::Wait_Object_0 == kernel::WaitObject0 &&
                  CSyncObject::Wait_Abandoned_0 == kernel::WaitAbandoned0 &&
                  CSyncObject::Wait_Timeout == kernel::WaitTimeout &&
                  CSyncObject::Wait_Failed == kernel::WaitFailed &&
                  CSyncObject::Timeout_Infinite == kernel::Infinite &&
                  CSyncObject::Maximum_Wait_Objects == kernel::MaximumWaitObjects,
              "the wait constants are the kernel's");

CSyncObject::CSyncObject(char const* name) : m_name(name), m_handle(nullptr) {}

CSyncObject::~CSyncObject() {
    if (m_handle != nullptr)
        kernel::CloseObject(m_handle);
}

bool CSyncObject::IsTimeoutSupported() const {
    return false;
}

unsigned long CSyncObject::WaitForSingleSyncObject(Handle handle, unsigned long timeout) {
    if (handle == nullptr)
        throw CIllegalArgumentException("lumo/base/win/SyncObject", __LINE__,
                                        "Invalid wait handle.");
    return kernel::WaitForOne(handle, timeout);
}

unsigned long CSyncObject::WaitForMultipleSyncObject(unsigned long count, Handle const* handles,
                                                     bool waitAll, unsigned long timeout) {
    if (count < 2 || count > Maximum_Wait_Objects)
        throw CIllegalArgumentException("lumo/base/win/SyncObject", __LINE__,
                                        "Invalid wait handle count.");
    if (handles == nullptr)
        throw CIllegalArgumentException("lumo/base/win/SyncObject", __LINE__,
                                        "Invalid wait handle array.");
    for (unsigned long i = 0; i < count; ++i) {
        if (handles[i] == nullptr)
            throw CIllegalArgumentException("lumo/base/win/SyncObject", __LINE__,
                                            "Invalid wait handle.");
        // The kernel refuses an array that names an object twice.
        for (unsigned long j = 0; j < i; ++j)
            if (handles[j] == handles[i])
                throw CIllegalArgumentException("lumo/base/win/SyncObject", __LINE__,
                                                "Invalid wait handle array.");
    }
    return kernel::WaitForMany(count, handles, waitAll, timeout);
}

unsigned long CSyncObject::GetKernelObjectCount() {
    return kernel::LiveObjectCount();
}

} // namespace win
} // namespace base
} // namespace lumo
