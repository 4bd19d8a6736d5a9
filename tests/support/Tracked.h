// Test support: a value type that counts its live instances and can be told to fail its
// next copies, for the value containers.
#ifndef LUMO_TESTS_SUPPORT_TRACKED_H
#define LUMO_TESTS_SUPPORT_TRACKED_H

#include <stdexcept>

namespace lumotest {

// A value type that counts its live instances and can be told to fail its next
// copies, to check that the value containers construct and destroy each element
// exactly once and stay consistent when a copy throws.
struct Tracked {
    static inline int live = 0;
    static inline int copiesUntilFailure = -1; // -1: never fail

    int value;

    Tracked(int v = 0) : value(v) { ++live; }
    Tracked(Tracked const& other) : value(other.value) {
        if (copiesUntilFailure == 0)
            throw std::runtime_error("copy failed");
        if (copiesUntilFailure > 0)
            --copiesUntilFailure;
        ++live;
    }
    Tracked& operator=(Tracked const& other) {
        value = other.value;
        return *this;
    }
    ~Tracked() { --live; }
    bool operator==(Tracked const& other) const { return value == other.value; }
};

} // namespace lumotest

#endif
