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

#include <cstring>

namespace lumo {
namespace util {

struct CStringKeyTraits {
    static std::int32_t GetHashCode(base::CString const& key) { return GetCStringHashCode(key); }
    static bool Equals(base::CString const& stored, base::CString const& key) {
        return stored == key;
    }
    // Keys are whole texts without inner zeros, so this is the string's own
    // byte-for-byte equality, without a call out of line.
    static bool Equals(base::CString const& stored, char const* key) {
        return std::strcmp(stored, key) == 0;
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
        CheckKey(key, __LINE__);
        return this->PutHashed(GetStringHashCode(key), key, value, previous);
    }

    bool Contains(char const* key) const {
        CheckKey(key, __LINE__);
        return this->FindHashed(GetStringHashCode(key), key) != nullptr;
    }

    // The removed entry's value; CNoSuchElementException when absent.
    V Remove(char const* key) {
        CheckKey(key, __LINE__);
        auto* entry = this->UnlinkHashed(GetStringHashCode(key), key);
        if (entry == nullptr)
            throw CNoSuchElementException(kUnit, __LINE__);
        return Table::TakeValue(entry);
    }

    void Swap(StringHashtable& other) noexcept { Table::Swap(other); }

private:
    static void CheckKey(char const* key, int line) {
        if (key == nullptr || *key == '\0')
            throw base::CIllegalArgumentException(kUnit, static_cast<unsigned long>(line),
                                                  "Invalid key.");
    }
};

} // namespace util
} // namespace lumo

#endif
