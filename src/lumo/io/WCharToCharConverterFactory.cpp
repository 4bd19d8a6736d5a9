// The converter factories and their registry.
#include <lumo/io/WCharToCharConverter.h>

#include "Encoders.h"

#include <lumo/base/Exception.h>

namespace lumo {
namespace io {

namespace {

char const kUnit[] = "lumo/io/WCharToCharConvFactory"; // the registry's documented source name

// Made before the module registers it (see LUMO_REGISTRY_PRIORITY).
CConcreteWCharToCharConverterFactory<CWCharToCharUTF8>
    g_utf8Factory LUMO_INIT_PRIORITY(LUMO_REGISTRY_PRIORITY)("UTF-8");

void CheckName(char const* name, int line) {
    if (name == nullptr || *name == '\0')
        throw base::CIllegalArgumentException(kUnit, static_cast<unsigned long>(line),
                                              "Invalid encoding.");
}

} // namespace

template class CConcreteWCharToCharConverterFactory<CWCharToCharUTF8>;

util::CHashtable<base::CString, CWCharToCharConverterFactory*>
    CWCharToCharConverterFactory::m_theConverterFactories
        LUMO_INIT_PRIORITY(LUMO_REGISTRY_PRIORITY);

CWCharToCharConverterFactory::~CWCharToCharConverterFactory() {}

bool CWCharToCharConverterFactory::RegisterConverterFactory(CWCharToCharConverterFactory* factory) {
    if (factory == nullptr || factory->m_encoding == nullptr || *factory->m_encoding == '\0')
        return false;
    try {
        base::CString const name(factory->m_encoding);
        if (CWCharToCharConverterFactory** present = m_theConverterFactories.Find(name))
            return *present == factory;
        m_theConverterFactories.Put(name, factory);
        return true;
    } catch (base::CMemoryException const&) {
        return false;
    }
}

bool CWCharToCharConverterFactory::UnregisterConverterFactory(
    CWCharToCharConverterFactory* factory) {
    if (factory == nullptr || factory->m_encoding == nullptr || *factory->m_encoding == '\0')
        return false;
    base::CString const name(factory->m_encoding);
    CWCharToCharConverterFactory** present = m_theConverterFactories.Find(name);
    if (present == nullptr || *present != factory)
        return false;
    m_theConverterFactories.Remove(name);
    return true;
}

CWCharToCharConverterFactory* CWCharToCharConverterFactory::GetConverterFactory(char const* name) {
    CheckName(name, __LINE__);
    CWCharToCharConverterFactory** found = m_theConverterFactories.Find(base::CString(name));
    return found != nullptr ? *found : nullptr;
}

CWCharToCharConverterFactory*
CWCharToCharConverterFactory::GetConverterFactory(base::CString const& name) {
    CheckName(name, __LINE__);
    CWCharToCharConverterFactory** found = m_theConverterFactories.Find(name);
    return found != nullptr ? *found : nullptr;
}

} // namespace io

namespace detail {

void RegisterBuiltInEncoders() {
    if (!io::CWCharToCharConverterFactory::RegisterConverterFactory(&io::g_utf8Factory))
        throw base::CMemoryException(io::kUnit, __LINE__);
}

} // namespace detail
} // namespace lumo
