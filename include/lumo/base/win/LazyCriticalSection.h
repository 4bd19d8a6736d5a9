// win::CLazyCriticalSection: a critical section meant to be made on first use; like
// CLazyLock it keeps the original's inverted test, so none is made and Acquire throws.
#ifndef LUMO_BASE_WIN_LAZYCRITICALSECTION_H
#define LUMO_BASE_WIN_LAZYCRITICALSECTION_H

#include <lumo/base/SpinLock.h>
#include <lumo/base/win/SyncObject.h>

namespace lumo {
namespace base {
namespace detail {
struct SystemCriticalSection;
}
namespace win {

/// A critical section meant to be made on first use, guarded by a spin lock.
///
/// Defined behaviour, kept from the original library (as for CLazyLock): the creation
/// step tests the stored pointer the wrong way round and makes a critical section
/// only when one already exists, so none is ever made. Acquire therefore throws
/// CSynchronizationException "Failed to enter critical section."; TryAcquire, which
/// in the original faults on the missing section, throws the same exception here;
/// Release does nothing.
class LUMO_API CLazyCriticalSection : public CSyncObject {
    LUMO_DECLARE_CLASS(CLazyCriticalSection);

public:
    CLazyCriticalSection();
    ~CLazyCriticalSection() override;

    bool IsTimeoutSupported() const override;
    void Acquire() override;
    bool TryAcquire(unsigned long timeout) override;
    void Release() override;

private:
    void Create();

    CSpinLock m_guard;
    detail::SystemCriticalSection* m_section;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
