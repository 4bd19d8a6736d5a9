// CLazyLock: a lock meant to create its critical section on first use; it keeps the
// original library's inverted test, so it never gets one and Acquire always throws.
#ifndef LUMO_BASE_LAZYLOCK_H
#define LUMO_BASE_LAZYLOCK_H

#include <lumo/base/SpinLock.h>

namespace lumo {
namespace base {

namespace detail {
struct SystemCriticalSection;
}

/// A lock meant to make its critical section on first use, guarded by a spin lock.
///
/// Defined behaviour, kept from the original library: the creation step tests the
/// implementation pointer the wrong way round and makes a critical section only
/// when one already exists, so a lazy lock never gets one. Acquire and TryAcquire
/// therefore throw CSynchronizationException "Failed to enter critical section."
/// (source "lumo/base/LockImplWin"), and Release does nothing.
class LUMO_API CLazyLock : public ILockable {
public:
    CLazyLock();
    ~CLazyLock() override;

    void Acquire() override;
    bool TryAcquire(unsigned long timeout) override;
    void Release() override;

    CLazyLock(CLazyLock const&) = delete;
    CLazyLock& operator=(CLazyLock const&) = delete;

private:
    void Create();

    CSpinLock m_guard;
    detail::SystemCriticalSection* m_impl;
};

} // namespace base
} // namespace lumo

#endif
