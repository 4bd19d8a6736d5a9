// The resource module registry: a fixed array of module slots under one mutex, without
// destructors so that modules can still be removed during static destruction.
#include <vela/Resource.h>

#include <cstring>
#include <mutex>

namespace Vela {

namespace {
// Plain storage without destructors: modules are removed during static destruction.
std::size_t const kMaxModules = 64;
struct Slot {
    long id;
    RSModuleHandle handle;
};
Slot g_modules[kMaxModules];
std::size_t g_moduleCount = 0;
long g_nextId = 1;
long g_active = 0;

std::mutex& Guard() {
    static std::mutex* mutex = new std::mutex;
    return *mutex;
}

char const* FindIn(RSModuleHandle module, char const* type, unsigned long id, unsigned long index) {
    if (module == nullptr)
        return nullptr;
    for (unsigned long t = 0; t < module->tableCount; ++t) {
        RSStringTable const& table = module->tables[t];
        if (table.id == id && table.type != nullptr && std::strcmp(table.type, type) == 0)
            return index < table.count ? table.strings[index] : nullptr;
    }
    return nullptr;
}
} // namespace

long RSAddModule(RSModuleHandle handle) {
    if (handle == nullptr)
        return 0;
    std::lock_guard<std::mutex> lock(Guard());
    if (g_moduleCount == kMaxModules)
        return 0;
    long const id = g_nextId++;
    g_modules[g_moduleCount++] = Slot{id, handle};
    g_active = id;
    return id;
}

bool RSRemoveModule(long id) {
    std::lock_guard<std::mutex> lock(Guard());
    for (std::size_t i = 0; i < g_moduleCount; ++i) {
        if (g_modules[i].id != id)
            continue;
        for (std::size_t j = i + 1; j < g_moduleCount; ++j)
            g_modules[j - 1] = g_modules[j];
        --g_moduleCount;
        if (g_active == id)
            g_active = 0;
        return true;
    }
    return false;
}

long RSGetActiveModule() {
    std::lock_guard<std::mutex> lock(Guard());
    return g_active;
}

long RSSetActiveModule(long id) {
    std::lock_guard<std::mutex> lock(Guard());
    long const previous = g_active;
    g_active = id;
    return previous;
}

char const* RSLoadString(char const* type, unsigned long id, unsigned long index) {
    if (type == nullptr)
        return nullptr;
    std::lock_guard<std::mutex> lock(Guard());
    for (std::size_t i = 0; i < g_moduleCount; ++i) {
        if (g_modules[i].id == g_active)
            if (char const* text = FindIn(g_modules[i].handle, type, id, index))
                return text;
    }
    for (std::size_t i = g_moduleCount; i-- > 0;) {
        if (char const* text = FindIn(g_modules[i].handle, type, id, index))
            return text;
    }
    return nullptr;
}

} // namespace Vela
