#ifndef LUMO_TESTS_UTIL_TESTOBJECT_H
#define LUMO_TESTS_UTIL_TESTOBJECT_H

#include <lumo/base/Object.h>

#include <cstdint>

namespace testutil {

// A value object that counts its live instances, so that tests can check that a
// container deletes every element exactly once (AddressSanitizer catches the
// second deletion, the count the missing one).
class CValue : public lumo::base::CObject {
public:
    static inline int live = 0;

    explicit CValue(int value, std::int32_t hash) : m_value(value), m_hash(hash) { ++live; }
    explicit CValue(int value) : CValue(value, value) {}
    CValue(CValue const& other) : CObject(other), m_value(other.m_value), m_hash(other.m_hash) {
        ++live;
    }
    ~CValue() override { --live; }

    int Value() const { return m_value; }
    std::int32_t GetHashCode() const override { return m_hash; }
    bool Equals(lumo::base::CObject const* other) const override {
        auto const* v = dynamic_cast<CValue const*>(other);
        return v != nullptr && v->m_value == m_value;
    }
    lumo::base::CObject* Clone() const override { return new CValue(*this); }

private:
    int m_value;
    std::int32_t m_hash;
};

// An object that cannot be cloned (CObject's Clone gives null).
class CPlain : public lumo::base::CObject {
public:
    CPlain() { ++CValue::live; }
    ~CPlain() override { --CValue::live; }
};

inline int ValueOf(lumo::base::CObject const* obj) {
    return dynamic_cast<CValue const&>(*obj).Value();
}

} // namespace testutil

#endif
