// CObject's own class record and its defaults: identity hash and equality, no clone, and
// the instance-of test through its class record.
#include <lumo/base/Object.h>

#include <cstdint>

namespace lumo {
namespace base {

CClass CObject::m_classCObject("lumo::base::CObject", nullptr, nullptr, nullptr, sizeof(CObject),
                               nullptr);

CObject::~CObject() {}

CClass const* CObject::GetClass() const {
    return &m_classCObject;
}

std::int32_t CObject::GetHashCode() const {
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(this));
}

bool CObject::Equals(CObject const* other) const {
    return other == this;
}

CObject* CObject::Clone() const {
    return nullptr;
}

bool CObject::IsInstanceOf(CClass const* cls) const {
    CClass const* own = GetClass();
    return own != nullptr && own->IsInstanceOf(cls);
}

} // namespace base
} // namespace lumo
