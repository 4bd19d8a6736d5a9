// CBase's class-level operator new and delete on the C heap, raising CMemoryException at
// the fixed lines, and the library-wide constant null.
#include <lumo/base/Base.h>

#include <lumo/base/Exception.h>

#include <cstdlib>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kNewFailureLine = 150;      // operator new
unsigned long const kNewArrayFailureLine = 198; // operator new[]

CNull const null;

namespace {
// malloc(0) may give null; every allocation yields a distinct block.
void* Allocate(std::size_t size) {
    return std::malloc(size == 0 ? 1 : size);
}
} // namespace

void CBase::ThrowMemoryException(char const* file, int line) {
    throw CMemoryException(file, static_cast<unsigned long>(line));
}

void* CBase::operator new(std::size_t size) {
    void* p = Allocate(size);
    if (p == nullptr)
        ThrowMemoryException("lumo/base/Base", kNewFailureLine);
    return p;
}

void* CBase::operator new[](std::size_t size) {
    void* p = Allocate(size);
    if (p == nullptr)
        ThrowMemoryException("lumo/base/Base", kNewArrayFailureLine);
    return p;
}

void* CBase::operator new(std::size_t size, char const* file, int line) {
    void* p = Allocate(size);
    if (p == nullptr)
        ThrowMemoryException(file, line);
    return p;
}

void* CBase::operator new[](std::size_t size, char const* file, int line) {
    void* p = Allocate(size);
    if (p == nullptr)
        ThrowMemoryException(file, line);
    return p;
}

void* CBase::operator new(std::size_t, void* place) noexcept {
    return place;
}
void* CBase::operator new[](std::size_t, void* place) noexcept {
    return place;
}
void* CBase::operator new(std::size_t, void* place, char const*, int) noexcept {
    return place;
}
void* CBase::operator new[](std::size_t, void* place, char const*, int) noexcept {
    return place;
}

void CBase::operator delete(void* p) noexcept {
    std::free(p);
}
void CBase::operator delete[](void* p) noexcept {
    std::free(p);
}
void CBase::operator delete(void* p, char const*, int) noexcept {
    std::free(p);
}
void CBase::operator delete[](void* p, char const*, int) noexcept {
    std::free(p);
}
void CBase::operator delete(void*, void*) noexcept {}
void CBase::operator delete[](void*, void*) noexcept {}
void CBase::operator delete(void*, void*, char const*, int) noexcept {}
void CBase::operator delete[](void*, void*, char const*, int) noexcept {}

} // namespace base
} // namespace lumo
