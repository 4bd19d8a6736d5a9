// Thread-local slots of the kernel-object emulation, over pthread keys.
#include "KernelObjectCore_POSIX.h"

#include <pthread.h>

namespace lumo {
namespace base {
namespace win {
namespace kernel {

using core::SetError;

unsigned long TlsNewIndex() {
    pthread_key_t key;
    int rc = pthread_key_create(&key, nullptr);
    if (rc != 0) {
        SetError(static_cast<unsigned long>(rc));
        return TlsOutOfIndexes;
    }
    return static_cast<unsigned long>(key);
}

bool TlsFreeIndex(unsigned long index) {
    int rc = pthread_key_delete(static_cast<pthread_key_t>(index));
    if (rc != 0) {
        SetError(static_cast<unsigned long>(rc));
        return false;
    }
    return true;
}

void* TlsGet(unsigned long index) {
    SetError(0);
    return pthread_getspecific(static_cast<pthread_key_t>(index));
}

bool TlsSet(unsigned long index, void* value) {
    int rc = pthread_setspecific(static_cast<pthread_key_t>(index), value);
    if (rc != 0) {
        SetError(static_cast<unsigned long>(rc));
        return false;
    }
    return true;
}

} // namespace kernel
} // namespace win
} // namespace base
} // namespace lumo
