// CObject, root of every library class: its run-time class record, identity hash and
// equality, and a clone that is null unless a subclass provides one.
#ifndef LUMO_BASE_OBJECT_H
#define LUMO_BASE_OBJECT_H

#include <lumo/base/Base.h>
#include <lumo/base/Class.h>

#include <cstdint>

namespace lumo {
namespace base {

/// Root of every library class: run-time class record, identity hash and equality,
/// and an optional clone.
class LUMO_API CObject : public CBase {
public:
    static CClass m_classCObject;

    CObject(CObject const&) {}
    CObject& operator=(CObject const&) { return *this; }
    virtual ~CObject();

    virtual CClass const* GetClass() const;
    /// The object's own address, folded to 32 bits.
    virtual std::int32_t GetHashCode() const;
    /// Identity: true only for this very object.
    virtual bool Equals(CObject const* other) const;
    /// Null: objects are not cloneable unless a subclass says otherwise.
    virtual CObject* Clone() const;

    bool IsInstanceOf(CClass const* cls) const;

protected:
    CObject() {}
};

} // namespace base
} // namespace lumo

#endif
