// CObject, root of every library class: its run-time class record, identity hash and
// equality, and a clone that is null unless a subclass provides one.
#ifndef LUMO_BASE_OBJECT_H
#define LUMO_BASE_OBJECT_H

#include <lumo/base/Base.h>
#include <lumo/base/Class.h>

#include <cstdint>

namespace lumo {
/// The object model, exceptions, strings and buffers, binary data, locks, conditions, semaphores
/// and threads.
namespace base {

/// Root of every library class: run-time class record, identity hash and equality,
/// and an optional clone.
class LUMO_API CObject : public CBase {
public:
    /// This class's run-time record, "lumo::base::CObject".
    static CClass m_classCObject;

    /// Copying copies nothing: an object's identity is its address.
    ///@{
    CObject(CObject const&) {}
    CObject& operator=(CObject const&) { return *this; }
    ///@}
    virtual ~CObject();

    /// The run-time record of the object's most derived class (every library class declares its
    /// own).
    virtual CClass const* GetClass() const;
    /// The object's own address, folded to 32 bits.
    virtual std::int32_t GetHashCode() const;
    /// Identity: true only for this very object.
    virtual bool Equals(CObject const* other) const;
    /// Null: objects are not cloneable unless a subclass says otherwise.
    virtual CObject* Clone() const;

    /// True when the object's class is `cls` or derives from it; false for null.
    bool IsInstanceOf(CClass const* cls) const;

protected:
    CObject() {}
};

} // namespace base
} // namespace lumo

#endif
