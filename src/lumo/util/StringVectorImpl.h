// Internal: the operations of CStringVector and CUnicodeStringVector over an ArrayStore
// of strings, and the enumeration by index, written once for any string class.
#ifndef LUMO_SRC_UTIL_STRINGVECTORIMPL_H
#define LUMO_SRC_UTIL_STRINGVECTORIMPL_H

// The operations of CStringVector and CUnicodeStringVector, written once for any
// string class S over code units Ch. Each vector passes its own source path.

#include <lumo/base/Exception.h>
#include <lumo/util/ArrayStore.h>
#include <lumo/util/Comparator.h>
#include <lumo/util/Enumeration.h>
#include <lumo/util/NoSuchElementException.h>

#include <cstdlib>
#include <utility>

namespace lumo {
namespace util {
namespace detail {

template <class S, class Ch> struct StringVectorImpl {
    typedef ArrayStore<S> Store;

    static std::uint32_t CheckedIncrement(unsigned long increment, char const* unit) {
        if (increment == 0 || increment > 0xFFFFFFFFul)
            throw base::CIllegalArgumentException(unit, __LINE__, "Invalid increment.");
        return static_cast<std::uint32_t>(increment);
    }

    [[noreturn]] static void ThrowMemory(char const* unit, int line) {
        throw base::CMemoryException(unit, static_cast<unsigned long>(line));
    }

    static void CheckText(Ch const* text, char const* unit, int line) {
        if (text == nullptr)
            throw base::CIllegalArgumentException(unit, static_cast<unsigned long>(line),
                                                  "Invalid element.");
    }

    static std::uint32_t CheckIndex(Store const& store, unsigned long index, char const* unit,
                                    int line) {
        if (index >= store.Size())
            throw base::CArrayIndexOutOfBoundsException(unit, static_cast<unsigned long>(line));
        return static_cast<std::uint32_t>(index);
    }

    static std::uint32_t CheckNotEmpty(Store const& store, char const* unit, int line) {
        if (store.Size() == 0)
            throw CNoSuchElementException(unit, static_cast<unsigned long>(line));
        return store.Size();
    }

    static void Reserve(Store& store, unsigned long n, char const* unit) {
        if (!store.Reserve(n))
            ThrowMemory(unit, __LINE__);
    }

    static void Assign(Store& store, Store const& source, char const* unit) {
        S const* from = source.Data();
        if (!store.Assign(
                source.Size(), [from](std::uint32_t i) -> S const& { return from[i]; }, [](S&) {}))
            ThrowMemory(unit, __LINE__);
    }

    static bool Equal(Store const& a, Store const& b) {
        if (&a == &b)
            return true;
        if (a.Size() != b.Size())
            return false;
        for (std::uint32_t i = 0; i < a.Size(); ++i)
            if (!(a.Data()[i] == b.Data()[i]))
                return false;
        return true;
    }

    static void Add(Store& store, Ch const* text, char const* unit) {
        CheckText(text, unit, __LINE__);
        if (!store.Append(S(text)))
            ThrowMemory(unit, __LINE__);
    }

    static void Insert(Store& store, Ch const* text, unsigned long index, char const* unit) {
        CheckText(text, unit, __LINE__);
        if (index > store.Size())
            throw base::CArrayIndexOutOfBoundsException(unit, __LINE__);
        if (!store.Insert(static_cast<std::uint32_t>(index), S(text)))
            ThrowMemory(unit, __LINE__);
    }

    // An index at or beyond the size is ignored on purpose: no exception.
    static void Set(Store& store, Ch const* text, unsigned long index, char const* unit) {
        CheckText(text, unit, __LINE__);
        if (index < store.Size())
            store.Data()[index] = text;
    }

    static long IndexOf(Store const& store, Ch const* text, char const* unit) {
        CheckText(text, unit, __LINE__);
        for (std::uint32_t i = 0; i < store.Size(); ++i)
            if (store.Data()[i] == text)
                return static_cast<long>(i);
        return -1;
    }

    static long LastIndexOf(Store const& store, Ch const* text, char const* unit) {
        CheckText(text, unit, __LINE__);
        for (std::uint32_t i = store.Size(); i > 0; --i)
            if (store.Data()[i - 1] == text)
                return static_cast<long>(i - 1);
        return -1;
    }

    static void RemoveAt(Store& store, unsigned long index, char const* unit) {
        if (!store.RemoveAt(CheckIndex(store, index, unit, __LINE__)))
            ThrowMemory(unit, __LINE__);
    }

    static void Remove(Store& store, Ch const* text, char const* unit) {
        long const index = IndexOf(store, text, unit);
        if (index >= 0)
            RemoveAt(store, static_cast<unsigned long>(index), unit);
    }

    static void RemoveAll(Store& store, char const* unit) {
        if (!store.Clear())
            ThrowMemory(unit, __LINE__);
    }

    static void Trim(Store& store, char const* unit) {
        if (!store.TrimToSize())
            ThrowMemory(unit, __LINE__);
    }

    // Sorts an array of pointers to the elements (strings are not moved byte-wise)
    // and then rebuilds the buffer in that order. `compare` receives pointers to two
    // element slots (S const*).
    static void Sort(Store& store, int (*compare)(void const*, void const*), char const* unit) {
        if (compare == nullptr)
            throw base::CIllegalArgumentException(unit, __LINE__, "Invalid compare function.");
        std::uint32_t const count = store.Size();
        if (count < 2)
            return;
        S const** order = ArrayStore<S const*>::AllocateSlots(count);
        if (order == nullptr)
            ThrowMemory(unit, __LINE__);
        struct Release {
            S const** order;
            ~Release() { std::free(order); }
        } release{order};
        for (std::uint32_t i = 0; i < count; ++i)
            order[i] = store.Data() + i;

        class CBySlot : public IComparator {
        public:
            explicit CBySlot(int (*compare)(void const*, void const*)) : m_compare(compare) {}
            int Compare(void const* a, void const* b) const override {
                return m_compare(*static_cast<S const* const*>(a),
                                 *static_cast<S const* const*>(b));
            }

        private:
            int (*m_compare)(void const*, void const*);
        } bySlot(compare);
        qsort(order, count, sizeof(S const*), bySlot);

        // The elements move (a string must not be copied here: a copy of one whose
        // buffer is locked would come out empty).
        if (!store.Assign(
                count,
                [order](std::uint32_t i) -> S&& { return std::move(const_cast<S&>(*order[i])); },
                [](S&) {}))
            ThrowMemory(unit, __LINE__);
    }
};

// Walks a string vector by index, reading the live vector.
template <class S, class V> class StringVectorEnumeration : public IEnumeration<S> {
public:
    StringVectorEnumeration(V const* vector, char const* unit)
        : m_vector(vector), m_unit(unit), m_index(0) {}
    bool HasMoreElements() const override { return m_index < m_vector->GetSize(); }
    S* NextElement() override {
        if (m_index >= m_vector->GetSize())
            throw CNoSuchElementException(m_unit, __LINE__);
        return const_cast<S*>(&m_vector->GetElementAt(m_index++));
    }
    void Reset() override { m_index = 0; }

private:
    V const* m_vector;
    char const* m_unit;
    unsigned long m_index;
};

} // namespace detail
} // namespace util
} // namespace lumo

#endif
