// Internal: the string-keyed CHashtable behind CStringSet, hashing CString keys with the
// library's text hash and looking them up straight from a char pointer.
#ifndef LUMO_SRC_UTIL_STRINGHASHTABLE_H
#define LUMO_SRC_UTIL_STRINGHASHTABLE_H

// The string-keyed hashtable behind CStringSet: CHashtable's layout and growth
// with CString keys hashed by the library's text hash (so case-sensitive), looked
// up straight from a `char const*` without building a string.

#include <lumo/base/Base.h>
#include <lumo/base/String.h>
#include <lumo/util/Hashtable.h>

#include "../base/detail/TextHash.h"

#include <cstdint>
#include <cstring>

namespace lumo {
namespace util {

// A key text with its hash and the length its hashing found, so that a stored key is
// matched without another pass to find the text's end.
struct CMeasuredKey {
    char const* text;
    std::size_t length;
    std::int32_t hash;
    operator base::CString() const { return base::CString(text); }
};

struct CStringKeyTraits {
    static std::int32_t GetHashCode(base::CString const& key) { return GetCStringHashCode(key); }
    static bool Equals(base::CString const& stored, base::CString const& key) {
        return stored == key;
    }
    // A stored key is a copy of a whole text, so its recorded length is its text's.
    static bool Equals(base::CString const& stored, CMeasuredKey const& key) {
        return stored.GetLength() == key.length && SameBytes(stored, key.text, key.length);
    }

private:
    // Whether n bytes at a and b agree; short runs in two overlapping loads a side.
    static bool SameBytes(char const* a, char const* b, std::size_t n) {
        if (n >= 8 && n <= 16)
            return Load<std::uint64_t>(a) == Load<std::uint64_t>(b) &&
                   Load<std::uint64_t>(a + n - 8) == Load<std::uint64_t>(b + n - 8);
        if (n >= 4 && n < 8)
            return Load<std::uint32_t>(a) == Load<std::uint32_t>(b) &&
                   Load<std::uint32_t>(a + n - 4) == Load<std::uint32_t>(b + n - 4);
        return std::memcmp(a, b, n) == 0;
    }
    template <class Word> static Word Load(char const* p) {
        Word w;
        std::memcpy(&w, p, sizeof w);
        return w;
    }
};

template <class V>
class StringHashtable : public CHashtable<base::CString, V, CStringKeyTraits>, public base::CBase {
    typedef CHashtable<base::CString, V, CStringKeyTraits> Table;

public:
    static constexpr char const* kUnit = "lumo/util/StringHashtable";

    StringHashtable(long initialCapacity, float loadFactor)
        : Table(kUnit, initialCapacity, loadFactor) {}

    // A present key gets `value`, the old one handed back through `previous`;
    // the result tells whether the key was present.
    bool Put(char const* key, V const& value, V* previous = nullptr) {
        CMeasuredKey const measured = Measure(key, __LINE__);
        return this->PutHashed(measured.hash, measured, value, previous);
    }

    bool Contains(char const* key) const {
        CMeasuredKey const measured = Measure(key, __LINE__);
        return this->FindHashed(measured.hash, measured) != nullptr;
    }

    // The removed entry's value; CNoSuchElementException when absent.
    V Remove(char const* key) {
        CMeasuredKey const measured = Measure(key, __LINE__);
        auto* entry = this->UnlinkHashed(measured.hash, measured);
        if (entry == nullptr)
            throw CNoSuchElementException(kUnit, __LINE__);
        return Table::TakeValue(entry);
    }

    void Swap(StringHashtable& other) noexcept { Table::Swap(other); }

private:
    // The key hashed and measured; a null or empty key is refused.
    static CMeasuredKey Measure(char const* key, int line) {
        if (key == nullptr || *key == '\0')
            throw base::CIllegalArgumentException(kUnit, static_cast<unsigned long>(line),
                                                  "Invalid key.");
        auto const measured = ::lumo::detail::MeasureText(key);
        return CMeasuredKey{key, measured.length, measured.hash};
    }
};

} // namespace util
} // namespace lumo

#endif
