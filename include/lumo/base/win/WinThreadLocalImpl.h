// win::CWinThreadLocalImpl: an operating-system thread-local slot (a pthread key here),
// behind CThreadLocal, freed by its destructor.
#ifndef LUMO_BASE_WIN_WINTHREADLOCALIMPL_H
#define LUMO_BASE_WIN_WINTHREADLOCALIMPL_H

#include <lumo/base/ThreadLocal.h>

namespace lumo {
namespace base {
namespace win {

/// A thread-local slot index of the operating system (a TLS index on Windows, a
/// pthread key on POSIX). Freed by the destructor when allocated.
class LUMO_API CWinThreadLocalImpl : public CThreadLocalImpl {
public:
    CWinThreadLocalImpl();
    ~CWinThreadLocalImpl() override;

    /// CWinSystemErrorException "There is no available free TLS slot." with the
    /// system's code. A second call keeps the slot it has.
    void Allocate() override;
    /// CWinSystemErrorException "Failed to get the value of the TLS slot." /
    /// "Failed to set the value of the TLS slot." when the system fails, or when no
    /// slot has been allocated (EINVAL).
    void* GetValue() override;
    void SetValue(void* value) override;

    CWinThreadLocalImpl(CWinThreadLocalImpl const&) = delete;
    CWinThreadLocalImpl& operator=(CWinThreadLocalImpl const&) = delete;

private:
    unsigned long m_index;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
