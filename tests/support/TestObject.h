// Test support: library objects for container tests (one counting its live instances,
// one that cannot be cloned) and a check of an exception's type and source.
#ifndef LUMO_TESTS_SUPPORT_TESTOBJECT_H
#define LUMO_TESTS_SUPPORT_TESTOBJECT_H

#include <lumo/base/Exception.h>
#include <lumo/base/Object.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace lumotest {

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

// Checks that `f` throws E raised in `sourceFile`, with `description` unless null.
template <class E, class F>
void ExpectThrowIn(char const* sourceFile, F f, char const* description = nullptr) {
    try {
        f();
        ADD_FAILURE() << "no exception";
    } catch (E const& e) {
        if (description != nullptr) {
            EXPECT_STREQ(e.GetErrorDescription(), description);
        }
        EXPECT_STREQ(e.GetSourceFile(), sourceFile);
    }
}

// Checks CIllegalArgumentException from one source file:
// `IllegalIn const ExpectIllegal{"lumo/util/X"};`.
struct IllegalIn {
    char const* sourceFile;
    template <class F> void operator()(F f, char const* description) const {
        ExpectThrowIn<lumo::base::CIllegalArgumentException>(sourceFile, f, description);
    }
};

} // namespace lumotest

#endif
