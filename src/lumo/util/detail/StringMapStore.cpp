// The arrays and key index behind CStringMap and CUnicodeStringMap, instantiated for
// both string classes.
#include <lumo/util/detail/StringMapStore.h>

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>
#include <lumo/base/UnicodeString.h>
#include <lumo/util/Capacity.h>
#include <lumo/util/NoSuchElementException.h>

#include "../../../vela/detail/Utf8Codec.h"

#include <unicode/uchar.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace lumo {
namespace util {
namespace detail {

namespace {

std::uint32_t const kDefaultIncrement = 5;
// Up to this many entries a scan is as quick as hashing the key.
std::uint32_t const kScanLimit = 8;

std::uint32_t const kFnvBasis = 2166136261u;
std::uint32_t const kFnvPrime = 16777619u;

inline std::uint32_t Mix(std::uint32_t h) {
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    return h ^ (h >> 16);
}

// The case-insensitive comparison of 8-bit texts decodes strict UTF-8 (a malformed
// byte stands for itself, apart from every character) and compares simple case
// folds. Hashing the same sequence of folded characters gives keys that compare
// equal the same hash.
std::uint32_t NextFolded(unsigned char const*& s) {
    unsigned char const b0 = s[0];
    if (b0 < 0x80) {
        ++s;
        return b0 >= 'A' && b0 <= 'Z' ? b0 + 32u : b0;
    }
    // The decoder stops at the text's terminator, which is no continuation byte.
    std::uint32_t c;
    s += Vela::detail::utf8::DecodeOne(s, 4, c);
    if (c >= Vela::detail::utf8::kMalformed)
        return c;
    return static_cast<std::uint32_t>(u_foldCase(UChar32(c), U_FOLD_CASE_DEFAULT));
}

std::uint64_t const kOnes = 0x0101010101010101ull;
std::uint64_t const kHighBits = 0x8080808080808080ull;
std::uint64_t const kWordPrime = 0x9E3779B97F4A7C15ull;

inline std::uint32_t Finish(std::uint64_t h) {
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDull;
    h ^= h >> 33;
    return static_cast<std::uint32_t>(h);
}

// Up to 8 bytes of s as one word, zero-padded; a whole word is one load.
inline std::uint64_t Word(unsigned char const* s, std::size_t n) {
    std::uint64_t w = 0;
    if (n >= 8) {
        std::memcpy(&w, s, 8);
        return w;
    }
    for (std::size_t i = 0; i < n; ++i)
        w |= std::uint64_t(s[i]) << (8 * i);
    return w;
}

// ASCII letters of eight ASCII bytes to lower case.
inline std::uint64_t FoldWord(std::uint64_t w) {
    std::uint64_t const atLeastA = w + kOnes * (0x80 - 'A');
    std::uint64_t const aboveZ = w + kOnes * (0x80 - 'Z' - 1);
    return w | (((atLeastA & ~aboveZ) & kHighBits) >> 2);
}

// Bytes a word at a time (the last one zero-padded), case-folded for ASCII text
// when `fold`; the length goes in last.
std::uint64_t MixWord(std::uint64_t h, std::uint64_t w) {
    h = (h ^ w) * kWordPrime;
    return h ^ (h >> 29);
}

// `ascii` tells whether every byte was ASCII (folding is right only then).
std::uint32_t HashBytes(unsigned char const* s, std::size_t n, bool fold, bool* ascii = nullptr) {
    std::uint64_t h = kWordPrime;
    std::uint64_t any = 0;
    for (std::size_t i = 0; i < n; i += 8) {
        std::uint64_t const w = Word(s + i, n - i);
        any |= w;
        h = MixWord(h, fold ? FoldWord(w) : w);
    }
    if (ascii != nullptr)
        *ascii = (any & kHighBits) == 0;
    return Finish(h ^ n);
}

// HashBytes fed one byte at a time.
class ByteHasher {
public:
    void Add(std::uint32_t byte) {
        m_word |= std::uint64_t(byte) << (8 * (m_count % 8));
        if (++m_count % 8 == 0) {
            m_hash = MixWord(m_hash, m_word);
            m_word = 0;
        }
    }
    std::uint32_t Done() {
        if (m_count % 8 != 0)
            m_hash = MixWord(m_hash, m_word);
        return Finish(m_hash ^ m_count);
    }

private:
    std::uint64_t m_hash = kWordPrime;
    std::uint64_t m_word = 0;
    std::uint64_t m_count = 0;
};

std::uint32_t HashText(char const* key, bool caseSensitive) {
    unsigned char const* s = reinterpret_cast<unsigned char const*>(key);
    std::size_t const n = std::strlen(key);
    bool asciiKey = true;
    std::uint32_t const bytes =
        HashBytes(s, n, !caseSensitive, caseSensitive ? nullptr : &asciiKey);
    if (asciiKey)
        return bytes;
    // Text beyond ASCII: hash its folded characters. When they are all ASCII they
    // are hashed as the ASCII text they equal (a KELVIN SIGN as 'k'), so that both
    // spellings land together.
    std::uint32_t h = kFnvBasis;
    ByteHasher ascii;
    bool allAscii = true;
    while (*s != 0) {
        std::uint32_t const c = NextFolded(s);
        h = (h ^ c) * kFnvPrime;
        if (c >= 0x80)
            allAscii = false;
        else
            ascii.Add(c);
    }
    return allAscii ? ascii.Done() : Mix(h);
}

std::uint32_t HashText(unsigned short const* key, bool) {
    std::size_t n = 0;
    while (key[n] != 0)
        ++n;
    return HashBytes(reinterpret_cast<unsigned char const*>(key), n * sizeof *key, false);
}

// Equal under the map's comparison. A case-sensitive comparison of 8-bit texts is
// equal exactly when the bytes are.
inline bool SameKey(base::CString const& stored, char const* key, bool caseSensitive) {
    // The same bytes are the same text under either comparison.
    if (std::strcmp(static_cast<char const*>(stored), key) == 0)
        return true;
    return !caseSensitive && stored.CompareIgnoreCase(key) == 0;
}

inline bool SameKey(base::CUnicodeString const& stored, unsigned short const* key, bool) {
    return stored.Compare(key) == 0;
}

template <class S> S* AllocateSlots(std::uint32_t count) {
    return static_cast<S*>(std::malloc((count == 0 ? 1 : std::size_t(count)) * sizeof(S)));
}

template <class S> void DestroyRange(S* data, std::uint32_t count) noexcept {
    for (std::uint32_t i = 0; i < count; ++i)
        data[i].~S();
}

} // namespace

template <class S, class Ch>
StringMapStore<S, Ch>::StringMapStore(char const* unit, bool caseSensitive,
                                      unsigned long initialCapacity, unsigned long increment)
    : m_unit(unit), m_keys(nullptr), m_values(nullptr), m_size(0), m_capacity(0),
      m_increment(increment == 0             ? kDefaultIncrement
                  : increment > 0xFFFFFFFFul ? 0xFFFFFFFFu
                                             : static_cast<std::uint32_t>(increment)),
      m_slots(0), m_caseSensitive(caseSensitive), m_keysExposed(false), m_index(nullptr),
      m_indexMask(0), m_indexCurrent(false) {
    static_assert(std::is_nothrow_move_constructible<S>::value,
                  "entries are moved between arrays without a way back");
    if (initialCapacity > 0)
        Reserve(initialCapacity);
}

template <class S, class Ch>
StringMapStore<S, Ch>::StringMapStore(StringMapStore const& other)
    : StringMapStore(other.m_unit, other.m_caseSensitive, 0, other.m_increment) {
    if (other.m_size == 0)
        return;
    std::uint32_t capacity;
    if (!RoundUpCapacity(other.m_size, m_increment, capacity))
        throw base::CMemoryException(m_unit, __LINE__);
    Grow(capacity);
    // The delegated-to constructor has finished, so the destructor cleans up after a
    // failing copy; the size counts whole entries only.
    for (; m_size < other.m_size; ++m_size) {
        ::new (static_cast<void*>(m_keys + m_size)) S(other.m_keys[m_size]);
        try {
            ::new (static_cast<void*>(m_values + m_size)) S(other.m_values[m_size]);
        } catch (...) {
            m_keys[m_size].~S();
            throw;
        }
    }
    Reindex();
}

template <class S, class Ch>
StringMapStore<S, Ch>& StringMapStore<S, Ch>::operator=(StringMapStore const& other) {
    if (this != &other) {
        StringMapStore copy(other);
        Swap(copy);
    }
    return *this;
}

template <class S, class Ch> StringMapStore<S, Ch>::~StringMapStore() {
    Release();
}

template <class S, class Ch> void StringMapStore<S, Ch>::Release() noexcept {
    DestroyRange(m_keys, m_size);
    DestroyRange(m_values, m_size);
    std::free(m_keys);
    std::free(m_values);
    std::free(m_index);
    m_keys = m_values = nullptr;
    m_index = nullptr;
    m_size = m_capacity = m_slots = 0;
    m_indexCurrent = false;
}

template <class S, class Ch> void StringMapStore<S, Ch>::Swap(StringMapStore& other) noexcept {
    std::swap(m_unit, other.m_unit);
    std::swap(m_keys, other.m_keys);
    std::swap(m_values, other.m_values);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_increment, other.m_increment);
    std::swap(m_slots, other.m_slots);
    std::swap(m_caseSensitive, other.m_caseSensitive);
    std::swap(m_keysExposed, other.m_keysExposed);
    std::swap(m_index, other.m_index);
    std::swap(m_indexMask, other.m_indexMask);
    std::swap(m_indexCurrent, other.m_indexCurrent);
}

template <class S, class Ch> void StringMapStore<S, Ch>::CheckKey(Ch const* key) const {
    if (key == nullptr || *key == 0)
        throw base::CIllegalArgumentException(m_unit, __LINE__, "Invalid key.");
}

template <class S, class Ch>
std::uint32_t StringMapStore<S, Ch>::CheckIndex(unsigned long index, int line) const {
    if (index >= m_size)
        throw base::CArrayIndexOutOfBoundsException(m_unit, static_cast<unsigned long>(line));
    return static_cast<std::uint32_t>(index);
}

template <class S, class Ch> std::uint32_t StringMapStore<S, Ch>::Hash(Ch const* key) const {
    return HashText(key, m_caseSensitive);
}

template <class S, class Ch>
bool StringMapStore<S, Ch>::Matches(S const& stored, Ch const* key) const {
    return SameKey(stored, key, m_caseSensitive);
}

template <class S, class Ch> long StringMapStore<S, Ch>::Scan(Ch const* key) const {
    for (std::uint32_t i = 0; i < m_size; ++i)
        if (Matches(m_keys[i], key))
            return static_cast<long>(i);
    return -1;
}

// Whether lookups may go through the index.
template <class S, class Ch> bool StringMapStore<S, Ch>::IndexUsable() const {
    return m_indexCurrent && !m_keysExposed && m_size > kScanLimit;
}

// Brings a stale index up to date, when the map is large enough to want one and no
// key can change behind it.
template <class S, class Ch> void StringMapStore<S, Ch>::Reindex() noexcept {
    if (!m_keysExposed && m_size > kScanLimit)
        BuildIndex(m_size);
    else
        m_indexCurrent = false;
}

// A fresh index for the present keys, sized for `entries` of them (kept at most half
// full). False, and no index, when the table cannot be allocated.
template <class S, class Ch>
bool StringMapStore<S, Ch>::BuildIndex(std::uint32_t entries) noexcept {
    std::uint64_t slots = 16;
    while (slots < std::uint64_t(entries) * 2)
        slots *= 2;
    if (m_index == nullptr || slots != std::uint64_t(m_indexMask) + 1) {
        std::free(m_index);
        m_index = static_cast<std::uint64_t*>(std::calloc(slots, sizeof(std::uint64_t)));
        if (m_index == nullptr) {
            m_indexMask = 0;
            m_indexCurrent = false;
            return false;
        }
        m_indexMask = static_cast<std::uint32_t>(slots - 1);
    } else {
        std::memset(m_index, 0, slots * sizeof(std::uint64_t));
    }
    // Keys are unique under the comparison, so each goes in without a search.
    for (std::uint32_t i = 0; i < m_size; ++i)
        IndexInsert(Hash(m_keys[i]), i);
    m_indexCurrent = true;
    return true;
}

template <class S, class Ch>
void StringMapStore<S, Ch>::IndexInsert(std::uint32_t hash, std::uint32_t entry) noexcept {
    std::uint32_t slot = hash & m_indexMask;
    while (m_index[slot] != 0)
        slot = (slot + 1) & m_indexMask;
    m_index[slot] = (std::uint64_t(hash) << 32) | (std::uint64_t(entry) + 1);
}

template <class S, class Ch> void StringMapStore<S, Ch>::DropIndex() noexcept {
    m_indexCurrent = false;
}

template <class S, class Ch> long StringMapStore<S, Ch>::IndexOfKey(Ch const* key) const {
    std::uint32_t hash;
    bool hashed;
    return Find(key, hash, hashed);
}

// The first index of `key`; `hashed` tells whether `hash` was computed on the way.
template <class S, class Ch>
long StringMapStore<S, Ch>::Find(Ch const* key, std::uint32_t& hash, bool& hashed) const {
    CheckKey(key);
    hashed = false;
    if (!IndexUsable())
        return Scan(key);
    hash = Hash(key);
    hashed = true;
    // Keys are unique unless a caller rewrote one; then the lowest index of the
    // equal ones answers, as a scan would.
    long found = -1;
    for (std::uint32_t slot = hash & m_indexMask; m_index[slot] != 0;
         slot = (slot + 1) & m_indexMask) {
        std::uint64_t const item = m_index[slot];
        if (std::uint32_t(item >> 32) != hash)
            continue;
        std::uint32_t const entry = std::uint32_t(item) - 1;
        if ((found < 0 || entry < std::uint32_t(found)) && Matches(m_keys[entry], key))
            found = static_cast<long>(entry);
    }
    return found;
}

// Twice the slots, filled from the stored hashes; no index when they cannot be had.
template <class S, class Ch> void StringMapStore<S, Ch>::GrowIndex() noexcept {
    std::uint64_t const slots = (std::uint64_t(m_indexMask) + 1) * 2;
    std::uint64_t* old = m_index;
    std::uint32_t const oldMask = m_indexMask;
    m_index = static_cast<std::uint64_t*>(std::calloc(slots, sizeof(std::uint64_t)));
    if (m_index == nullptr) {
        m_index = old;
        DropIndex();
        return;
    }
    m_indexMask = static_cast<std::uint32_t>(slots - 1);
    for (std::uint64_t i = 0; i <= oldMask; ++i) {
        std::uint64_t const item = old[i];
        if (item == 0)
            continue;
        std::uint32_t slot = std::uint32_t(item >> 32) & m_indexMask;
        while (m_index[slot] != 0)
            slot = (slot + 1) & m_indexMask;
        m_index[slot] = item;
    }
    std::free(old);
}

template <class S, class Ch> long StringMapStore<S, Ch>::IndexOfValue(Ch const* value) const {
    for (std::uint32_t i = 0; i < m_size; ++i)
        if (m_values[i] == value) // a null text compares as an empty one
            return static_cast<long>(i);
    return -1;
}

template <class S, class Ch> S& StringMapStore<S, Ch>::Get(Ch const* key) const {
    long const index = IndexOfKey(key);
    if (index < 0)
        throw CNoSuchElementException(m_unit, __LINE__);
    return m_values[index];
}

template <class S, class Ch> void StringMapStore<S, Ch>::Put(Ch const* key, Ch const* value) {
    std::uint32_t hash;
    bool hashed;
    long const index = Find(key, hash, hashed);
    if (index >= 0) {
        m_values[index] = value; // a null value empties it
        return;
    }
    S newKey(key), newValue(value);
    if (m_size == m_capacity) {
        std::uint32_t needed;
        if (!RoundUpCapacity(static_cast<std::uint64_t>(m_size) + 1, m_increment, needed))
            throw base::CMemoryException(m_unit, __LINE__);
        Grow(needed);
    }
    ::new (static_cast<void*>(m_keys + m_size)) S(std::move(newKey));
    ::new (static_cast<void*>(m_values + m_size)) S(std::move(newValue));
    std::uint32_t const entry = m_size++;
    if (m_keysExposed)
        return;
    if (!m_indexCurrent) {
        Reindex();
        return;
    }
    if (std::uint64_t(m_size) * 2 > std::uint64_t(m_indexMask) + 1)
        GrowIndex();
    if (m_indexCurrent)
        IndexInsert(hashed ? hash : Hash(key), entry);
}

// The documented capacity changes: the arrays are (as far as callers know) new, so
// no writable key reference from before is valid and the index can be trusted again
// once rebuilt.
template <class S, class Ch>
void StringMapStore<S, Ch>::SetCapacity(std::uint32_t capacity) noexcept {
    m_capacity = capacity;
    if (m_keysExposed) {
        m_keysExposed = false;
        Reindex();
    }
}

// Moves the entries into arrays of `slots` slots (at least the size). False, with
// nothing changed, when they cannot be allocated.
template <class S, class Ch> bool StringMapStore<S, Ch>::Relocate(std::uint32_t slots) noexcept {
    S* keys = AllocateSlots<S>(slots);
    if (keys == nullptr)
        return false;
    S* values = AllocateSlots<S>(slots);
    if (values == nullptr) {
        std::free(keys);
        return false;
    }
    for (std::uint32_t i = 0; i < m_size; ++i) {
        ::new (static_cast<void*>(keys + i)) S(std::move(m_keys[i]));
        ::new (static_cast<void*>(values + i)) S(std::move(m_values[i]));
    }
    DestroyRange(m_keys, m_size);
    DestroyRange(m_values, m_size);
    std::free(m_keys);
    std::free(m_values);
    m_keys = keys;
    m_values = values;
    m_slots = slots;
    return true;
}

// Raises the documented capacity; the arrays underneath at least double when they
// must move. CMemoryException with nothing changed when they cannot be obtained.
template <class S, class Ch> void StringMapStore<S, Ch>::Grow(std::uint32_t capacity) {
    if (capacity > m_slots) {
        std::uint64_t wanted = std::uint64_t(m_slots) * 2;
        if (wanted < capacity)
            wanted = capacity;
        if (wanted > 0xFFFFFFFFu || wanted > std::uint64_t(-1) / 2 / sizeof(S))
            wanted = capacity;
        if (!Relocate(static_cast<std::uint32_t>(wanted)) &&
            (wanted == capacity || !Relocate(capacity)))
            throw base::CMemoryException(m_unit, __LINE__);
    }
    SetCapacity(capacity);
}

template <class S, class Ch> void StringMapStore<S, Ch>::Remove(Ch const* key) {
    long const found = IndexOfKey(key);
    if (found < 0)
        return;
    std::uint32_t const index = static_cast<std::uint32_t>(found);
    for (std::uint32_t i = index + 1; i < m_size; ++i) {
        m_keys[i - 1] = std::move(m_keys[i]);
        m_values[i - 1] = std::move(m_values[i]);
    }
    --m_size;
    m_keys[m_size].~S();
    m_values[m_size].~S();
    // Every later entry moved down one place.
    DropIndex();
    std::uint32_t const target = CompactedCapacity(m_size, m_increment);
    if (target < m_capacity) {
        // The arrays shrink with the capacity once they are four times too large;
        // when the smaller ones cannot be had, the larger ones serve on.
        if (std::uint64_t(target) * 4 <= m_slots)
            Relocate(target * 2 > target ? target * 2 : target);
        SetCapacity(target);
    }
    Reindex();
}

template <class S, class Ch> void StringMapStore<S, Ch>::RemoveAll() {
    if (m_keys == nullptr)
        return;
    DestroyRange(m_keys, m_size);
    DestroyRange(m_values, m_size);
    m_size = 0;
    DropIndex();
    std::uint32_t const target = CompactedCapacity(0, m_increment);
    if (target < m_capacity) {
        if (target < m_slots)
            Relocate(target);
        SetCapacity(target);
    }
}

template <class S, class Ch> void StringMapStore<S, Ch>::Reserve(unsigned long n) {
    std::uint32_t needed;
    if (!RoundUpCapacity(n, m_increment, needed))
        throw base::CMemoryException(m_unit, __LINE__);
    if (needed > m_capacity)
        Grow(needed);
}

template <class S, class Ch> void StringMapStore<S, Ch>::TrimToSize() {
    if (m_size >= m_capacity)
        return;
    if (m_size == 0) {
        std::free(m_keys);
        std::free(m_values);
        m_keys = m_values = nullptr;
        m_slots = 0;
        SetCapacity(0);
        return;
    }
    if (m_slots > m_size && !Relocate(m_size))
        throw base::CMemoryException(m_unit, __LINE__);
    SetCapacity(m_size);
}

template <class S, class Ch> bool StringMapStore<S, Ch>::Equal(StringMapStore const& other) const {
    if (other.m_size != m_size)
        return false;
    for (std::uint32_t i = 0; i < m_size; ++i)
        if (!(m_keys[i] == other.m_keys[i]) || !(m_values[i] == other.m_values[i]))
            return false;
    return true;
}

template <class S, class Ch>
S& StringMapStore<S, Ch>::WritableKeyAt(unsigned long index, int line) {
    std::uint32_t const at = CheckIndex(index, line);
    m_keysExposed = true;
    return m_keys[at];
}

template <class S, class Ch>
S const& StringMapStore<S, Ch>::KeyAt(unsigned long index, int line) const {
    return m_keys[CheckIndex(index, line)];
}

template <class S, class Ch>
S& StringMapStore<S, Ch>::ValueAt(unsigned long index, int line) const {
    return m_values[CheckIndex(index, line)];
}

template <class S, class Ch>
S const& StringMapStore<S, Ch>::NextKey(std::uint32_t& index, int line) const {
    if (index >= m_size)
        throw CNoSuchElementException(m_unit, static_cast<unsigned long>(line));
    return m_keys[index++];
}

template <class S, class Ch>
S const& StringMapStore<S, Ch>::NextValue(std::uint32_t& index, int line) const {
    if (index >= m_size)
        throw CNoSuchElementException(m_unit, static_cast<unsigned long>(line));
    return m_values[index++];
}

template class StringMapStore<base::CString, char>;
template class StringMapStore<base::CUnicodeString, unsigned short>;

} // namespace detail
} // namespace util
} // namespace lumo
