// IEnumeration, one pass over a container's live elements, and CEnumeration, the copyable
// handle that shares one enumeration object and deletes it with the last copy.
#ifndef LUMO_UTIL_ENUMERATION_H
#define LUMO_UTIL_ENUMERATION_H

#include <lumo/base/Base.h>
#include <lumo/base/Exception.h>

#include <cstdint>

namespace lumo {
/// Containers of objects, values and strings, their enumerations, and tokenizers.
namespace util {

/// One pass over the elements of a container. The elements stay the container's;
/// an enumeration reads the live container, which must not change meanwhile.
template <class T> class IEnumeration : public base::CBase {
public:
    virtual ~IEnumeration() {}
    /// True while NextElement has an element to give.
    virtual bool HasMoreElements() const = 0;
    /// The complement of HasMoreElements; enumerations may answer it more cheaply.
    virtual bool IsExhausted() const { return !HasMoreElements(); }
    /// The next element; CNoSuchElementException past the end.
    virtual T* NextElement() = 0;
    /// Back to the first element.
    virtual void Reset() = 0;
};

/// A by-value handle on one enumeration object. Copies share the object; the last
/// handle deletes it.
template <class T> class CEnumeration {
public:
    /// An empty handle; its operations throw CNullReferenceException.
    CEnumeration() noexcept : m_block(nullptr) {}

    /// Takes over `enumeration` (null gives an empty handle). Should the shared
    /// record not be obtainable, the enumeration is deleted before the
    /// CMemoryException passes on.
    CEnumeration(IEnumeration<T>* enumeration) : m_block(nullptr) {
        if (enumeration == nullptr)
            return;
        try {
            m_block = new ("lumo/util/Enumeration", __LINE__) Block(enumeration);
        } catch (...) {
            delete enumeration;
            throw;
        }
    }

    /// Shares the other handle's enumeration.
    CEnumeration(CEnumeration const& other) noexcept : m_block(other.m_block) {
        if (m_block != nullptr)
            ++m_block->count;
    }

    /// Shares the other handle's enumeration and lets go of its own.
    CEnumeration& operator=(CEnumeration const& other) noexcept {
        CEnumeration copy(other); // safe when `other` is this handle
        Block* const block = copy.m_block;
        copy.m_block = m_block;
        m_block = block;
        return *this;
    }

    ~CEnumeration() { Release(); }

    /// CNullReferenceException on an empty handle.
    ///@{
    bool HasMoreElements() const { return Get()->HasMoreElements(); }
    T* NextElement() { return Get()->NextElement(); }
    void Reset() { Get()->Reset(); }
    ///@}

    /// The enumeration object, or null for an empty handle.
    IEnumeration<T>* GetEnumeration() const {
        return m_block != nullptr ? m_block->enumeration : nullptr;
    }

private:
    struct Block : public base::CBase {
        explicit Block(IEnumeration<T>* e) : enumeration(e), count(1) {}
        IEnumeration<T>* enumeration;
        std::uint32_t count;
    };

    IEnumeration<T>* Get() const {
        if (m_block == nullptr)
            throw base::CNullReferenceException("lumo/util/Enumeration", __LINE__);
        return m_block->enumeration;
    }

    void Release() noexcept {
        if (m_block != nullptr && --m_block->count == 0)
            Destroy(m_block);
        m_block = nullptr;
    }

    /// Kept out of line: inlined into a caller holding two handles on one block,
    /// the deletion makes compilers that cannot follow the count warn about a
    /// use after free.
    LUMO_NOINLINE static void Destroy(Block* block) noexcept {
        delete block->enumeration;
        delete block;
    }

    Block* m_block;
};

} // namespace util
} // namespace lumo

#endif
