// Internal: the one scoped-hold template of the library: acquires any lock with
// Acquire/Release for the life of a scope.
#ifndef LUMO_BASE_DETAIL_SCOPEDHOLD_H
#define LUMO_BASE_DETAIL_SCOPEDHOLD_H

namespace lumo {
namespace detail {

template <class Lock> class ScopedHold {
public:
    explicit ScopedHold(Lock& lock) : m_lock(lock) { m_lock.Acquire(); }
    ~ScopedHold() { m_lock.Release(); }
    ScopedHold(ScopedHold const&) = delete;
    ScopedHold& operator=(ScopedHold const&) = delete;

private:
    Lock& m_lock;
};

} // namespace detail
} // namespace lumo

#endif
