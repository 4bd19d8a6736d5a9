// CSemaphore: a counting semaphore usable as an ILockable, anonymous within the process
// or shared by name between processes, over a CSemaphoreImpl of the platform.
#ifndef LUMO_BASE_SEMAPHORE_H
#define LUMO_BASE_SEMAPHORE_H

#include <lumo/base/Lockable.h>

#include <type_traits>

namespace lumo {
namespace base {

/// What a CSemaphore runs on (lumo::base::win::CWinSemaphoreImpl and
/// CWinNamedSemaphoreImpl).
class LUMO_API CSemaphoreImpl : public CBase {
public:
    virtual ~CSemaphoreImpl();
    /// Made with a name.
    virtual bool IsNamed() const = 0;
    /// Shared with other processes.
    virtual bool IsShared() const = 0;
    /// Takes one from the count, waiting while it is 0.
    virtual void Acquire() = 0;
    /// As Acquire, waiting at most `timeout` milliseconds; false on time-out.
    virtual bool TryAcquire(unsigned long timeout) = 0;
    /// Gives one back to the count.
    virtual void Release() = 0;
};

/// A counting semaphore: Acquire takes one from the count, waiting while it is 0;
/// Release gives one back. As an ILockable it can guard a section that admits up to
/// its count of threads at once.
class LUMO_API CSemaphore : public ILockable {
public:
    /// An anonymous semaphore for this process. CIllegalArgumentException "Invalid
    /// initial count." when initialCount > maximumCount, "Invalid maximum count." when
    /// maximumCount is 0 or above 0x7FFFFFFF; CMemoryException when it cannot be made.
    CSemaphore(unsigned long initialCount, unsigned long maximumCount);
    /// Lets CSemaphore(0, 1) name this constructor rather than the named one.
    template <class N, class = typename std::enable_if<std::is_integral<N>::value>::type>
    CSemaphore(N initialCount, unsigned long maximumCount)
        : CSemaphore(static_cast<unsigned long>(initialCount), maximumCount) {}
    /// A semaphore shared by name between processes, with the maximum count
    /// 0x7FFFFFFF; opening one that exists keeps its count. A null or empty name, one
    /// with a '/' after its first character, or one longer than 250 characters
    /// throws CIllegalArgumentException "Invalid semaphore name."; an initial count
    /// above 0x7FFFFFFF "Invalid initial count."; CMemoryException when it cannot be
    /// made or opened.
    ///
    /// POSIX names it "/name". The object lives on after this process closes it as
    /// long as another process holds it open, but the process that created it
    /// removes the name when it closes it: later opens by name make a new semaphore.
    CSemaphore(char const* name, unsigned long initialCount);
    ~CSemaphore() override;

    /// True for a semaphore made with a name.
    bool IsNamed() const;
    /// True for a semaphore shared with other processes (the named ones).
    bool IsShared() const;

    /// Waits without limit. CSynchronizationException "Failed to acquire the
    /// semaphore." when the wait fails.
    void Acquire() override;
    /// Waits up to timeout milliseconds (0xFFFFFFFF: without limit); false on time-out.
    bool TryAcquire(unsigned long timeout) override;
    /// CSynchronizationException "Failed to release the semaphore." when the count
    /// would pass the maximum.
    void Release() override;

    /// Not copyable: the object is the semaphore.
    ///@{
    CSemaphore(CSemaphore const&) = delete;
    CSemaphore& operator=(CSemaphore const&) = delete;
    ///@}

private:
    CSemaphoreImpl* m_impl;
};

} // namespace base
} // namespace lumo

#endif
