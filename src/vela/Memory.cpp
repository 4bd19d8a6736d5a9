// The handle memory manager, the memory checker, and the layer's one allocation path
// for objects that must report a failure.
#include <vela/Memory.h>

#include "detail/Allocate.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Vela {

namespace {

// The master pointer block a handle points to: the data's address comes first, so the
// handle (a char**) reaches it directly.
struct Master {
    char* data;
    unsigned long size;
};

std::atomic<unsigned long> g_failures{0};
std::atomic<MemoryFailureHandler> g_failureHandler{nullptr};

// Whether the test seam asks this allocation to fail (consuming one failure).
bool InjectedFailure() {
    unsigned long left = g_failures.load(std::memory_order_relaxed);
    while (left > 0) {
        if (g_failures.compare_exchange_weak(left, left - 1, std::memory_order_relaxed))
            return true;
    }
    return false;
}

inline Master* MasterOf(BMHandle handle) {
    return reinterpret_cast<Master*>(handle);
}

} // namespace

void SetMemoryFailureHandler(MemoryFailureHandler handler) {
    g_failureHandler.store(handler, std::memory_order_release);
}

namespace detail {

void* AllocateOrRaise(std::size_t size, char const* unit, long line) {
    void* block = InjectedFailure() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block != nullptr)
        return block;
    if (MemoryFailureHandler const handler = g_failureHandler.load(std::memory_order_acquire))
        handler(unit, line);
    throw std::bad_alloc();
}

} // namespace detail

BMHandle bmManager::NewHandle(unsigned long size) {
    if (InjectedFailure())
        return nullptr;
    auto* master = static_cast<Master*>(std::malloc(sizeof(Master)));
    if (master == nullptr)
        return nullptr;
    // At least one byte, so that Access never gives null for a live handle.
    master->data = static_cast<char*>(std::malloc(size == 0 ? 1 : size));
    if (master->data == nullptr) {
        std::free(master);
        return nullptr;
    }
    master->size = size;
    return &master->data;
}

BMHandle bmManager::ResizeHandle(BMHandle handle, unsigned long size) {
    if (handle == nullptr || InjectedFailure())
        return nullptr;
    Master* const master = MasterOf(handle);
    if (size == master->size)
        return handle;
    // A fresh block, always: the data moves, as a relocatable block may.
    auto* data = static_cast<char*>(std::malloc(size == 0 ? 1 : size));
    if (data == nullptr)
        return nullptr;
    unsigned long const keep = size < master->size ? size : master->size;
    if (keep > 0)
        std::memcpy(data, master->data, keep);
    std::free(master->data);
    master->data = data;
    master->size = size;
    return handle;
}

void bmManager::KillHandle(BMHandle handle) {
    if (handle == nullptr)
        return;
    Master* const master = MasterOf(handle);
    std::free(master->data);
    std::free(master);
}

char* bmManager::Access(BMHandle handle) {
    return handle == nullptr ? nullptr : *handle;
}

unsigned long bmManager::GetSize(BMHandle handle) {
    return handle == nullptr ? 0 : MasterOf(handle)->size;
}

void bmManager::FailNextAllocations(unsigned long count) {
    g_failures.store(count, std::memory_order_relaxed);
}

bool bnManager::IsReadable(void const* address, unsigned long size) {
    return size == 0 || address != nullptr;
}

bool bnManager::IsWritable(void* address, unsigned long size) {
    return size == 0 || address != nullptr;
}

} // namespace Vela
