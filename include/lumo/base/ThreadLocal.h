// CThreadLocal: one pointer per thread in a slot allocated for the holder's lifetime,
// over the platform's CThreadLocalImpl.
#ifndef LUMO_BASE_THREADLOCAL_H
#define LUMO_BASE_THREADLOCAL_H

#include <lumo/base/Base.h>

namespace lumo {
namespace base {

/// A thread-local slot of the platform (lumo::base::win::CWinThreadLocalImpl).
class LUMO_API CThreadLocalImpl : public CBase {
public:
    virtual ~CThreadLocalImpl();
    /// Allocates the slot; every thread's value starts null.
    virtual void Allocate() = 0;
    /// The calling thread's value; null until it sets one.
    virtual void* GetValue() = 0;
    /// Stores the calling thread's value.
    virtual void SetValue(void* value) = 0;
};

/// One pointer per thread. The slot is allocated when the holder is made and freed
/// when it is destroyed (values still stored are dropped, not deleted).
class LUMO_API CThreadLocal : public CBase {
public:
    /// CWinSystemErrorException "There is no available free TLS slot." when the
    /// process has used up its slots.
    CThreadLocal();
    ~CThreadLocal();

    /// The calling thread's value (null until it sets one).
    ///@{
    void* Get() const;
    void Set(void* value);
    ///@}

    /// Not copyable: the object owns its slot.
    ///@{
    CThreadLocal(CThreadLocal const&) = delete;
    CThreadLocal& operator=(CThreadLocal const&) = delete;
    ///@}

private:
    CThreadLocalImpl* m_impl;
};

} // namespace base
} // namespace lumo

#endif
