// win::CSyncObject, base of the Windows-style synchronization objects (a name and a
// kernel wait handle), with the waits on one or several handles and their result codes.
#ifndef LUMO_BASE_WIN_SYNCOBJECT_H
#define LUMO_BASE_WIN_SYNCOBJECT_H

#include <lumo/base/Object.h>
#include <lumo/base/String.h>

namespace lumo {
namespace base {
/// The Windows-style synchronization objects and the platform sides of threads, thread-local slots
/// and semaphores; present on every platform.
namespace win {

/// Base of the Windows-style synchronization objects: an optional name and the
/// kernel wait handle (null for objects that cannot be waited on, such as critical
/// sections). On POSIX the handles are those of the library's emulation of kernel
/// wait objects; the wait results keep their Windows values.
class LUMO_API CSyncObject : public CObject {
    LUMO_DECLARE_CLASS(CSyncObject);

public:
    /// A kernel wait handle; null for objects that cannot be waited on.
    typedef void* Handle;

    /// The wait ended because the (first) object was signalled.
    static constexpr unsigned long Wait_Object_0 = 0;
    /// The wait took a mutex whose owner ended without releasing it.
    static constexpr unsigned long Wait_Abandoned = 0x80;
    /// As Wait_Abandoned, offset by the index of the object for multiple waits.
    static constexpr unsigned long Wait_Abandoned_0 = 0x80;
    /// The wait timed out.
    static constexpr unsigned long Wait_Timeout = 0x102;
    /// The wait failed.
    static constexpr unsigned long Wait_Failed = 0xFFFFFFFF;
    /// The timeout that waits without limit.
    static constexpr unsigned long Timeout_Infinite = 0xFFFFFFFF;
    /// The most handles one wait can take.
    static constexpr unsigned long Maximum_Wait_Objects = 64;

    /// Closes the handle.
    ~CSyncObject() override;

    /// Whether TryAcquire honours its timeout (false: it only tries once).
    virtual bool IsTimeoutSupported() const;
    /// Waits without limit to take the object.
    virtual void Acquire() = 0;
    /// Takes the object within `timeout` milliseconds (Timeout_Infinite: without limit); true when
    /// taken.
    virtual bool TryAcquire(unsigned long timeout) = 0;
    /// Releases the object; what a release means depends on the kind (mutex, event, semaphore).
    virtual void Release() = 0;

    /// The name given at construction; empty for an anonymous object.
    CString const& GetName() const { return m_name; }
    /// True for a named object.
    bool IsNamed() const { return !m_name.IsEmpty(); }
    /// The kernel wait handle; null for objects that cannot be waited on.
    Handle GetHandle() const { return m_handle; }

    /// The wait result (Wait_Object_0, Wait_Abandoned, Wait_Timeout or Wait_Failed).
    /// A null handle throws CIllegalArgumentException "Invalid wait handle.".
    static unsigned long WaitForSingleSyncObject(Handle handle, unsigned long timeout);
    /// Waits until one (waitAll false) or all of the objects are signalled and takes
    /// them; the result is offset by the index of the object concerned. A count below
    /// 2 or above Maximum_Wait_Objects throws CIllegalArgumentException "Invalid wait
    /// handle count."; a null array, or one naming an object twice, "Invalid wait
    /// handle array."; a null handle in it "Invalid wait handle.".
    static unsigned long WaitForMultipleSyncObject(unsigned long count, Handle const* handles,
                                                   bool waitAll, unsigned long timeout);

    /// Kernel wait objects alive in the process: mutexes, events, semaphores and
    /// threads, anonymous or named (a diagnostic: handles are not leaked when it goes
    /// back to where it was).
    static unsigned long GetKernelObjectCount();

    /// Not copyable: the object owns its handle.
    ///@{
    CSyncObject(CSyncObject const&) = delete;
    CSyncObject& operator=(CSyncObject const&) = delete;
    ///@}

protected:
    /// A null or empty name makes an anonymous object.
    explicit CSyncObject(char const* name);
    /// Takes ownership of the handle.
    void SetHandle(Handle handle) { m_handle = handle; }

private:
    CString m_name;
    Handle m_handle;
};

} // namespace win
} // namespace base
} // namespace lumo

#endif
