// CClass: a record registers itself with the class registry when made and leaves it when
// destroyed; base records are looked up by name and cached, and factories make instances.
#include <lumo/base/Class.h>

#include <lumo/base/ClassManager.h>
#include <lumo/base/ClassNotFoundException.h>
#include <lumo/base/Exception.h>
#include <lumo/base/Object.h>
#include <vela/Chars.h>

namespace lumo {
namespace base {

// Line numbers that the library's documented behaviour fixes for these failures.
unsigned long const kNoFactoryLine = 221;      // a class without a factory
unsigned long const kFactoryFailureLine = 216; // a factory that made nothing

CClass::CClass(char const* qualifiedName, char const* baseName1, char const* baseName2,
               char const* baseName3, unsigned long size, Constructor constructor)
    : m_qualifiedName(qualifiedName), m_baseName1(baseName1), m_baseName2(baseName2),
      m_baseName3(baseName3), m_size(size), m_constructor(constructor), m_baseClass1(nullptr),
      m_baseClass2(nullptr), m_baseClass3(nullptr), m_previous(nullptr), m_next(nullptr) {
    CClassManager::GetInstance().RegisterClass(this);
}

CClass::~CClass() {
    CClassManager::GetInstance().UnregisterClass(this);
}

CClass::CClass(CClass const& other) {
    *this = other;
}

CClass& CClass::operator=(CClass const& other) {
    m_qualifiedName = other.m_qualifiedName;
    m_baseName1 = other.m_baseName1;
    m_baseName2 = other.m_baseName2;
    m_baseName3 = other.m_baseName3;
    m_size = other.m_size;
    m_constructor = other.m_constructor;
    m_baseClass1 = other.m_baseClass1;
    m_baseClass2 = other.m_baseClass2;
    m_baseClass3 = other.m_baseClass3;
    m_previous = other.m_previous;
    m_next = other.m_next;
    return *this;
}

char const* CClass::GetName() const {
    if (m_qualifiedName == nullptr)
        return nullptr;
    char const* colon = Vela::CHSearchCharRight(m_qualifiedName, -1, ':');
    return colon != nullptr ? colon + 1 : m_qualifiedName;
}

namespace {
// A failed lookup leaves the cache empty, so the next call tries again.
CClass const* CachedBase(char const* name, CClass const*& cache) {
    if (name != nullptr && cache == nullptr)
        cache = CClass::FindClass(name);
    return cache;
}
} // namespace

CClass const* CClass::GetBaseClass1() const {
    return CachedBase(m_baseName1, m_baseClass1);
}
CClass const* CClass::GetBaseClass2() const {
    return CachedBase(m_baseName2, m_baseClass2);
}
CClass const* CClass::GetBaseClass3() const {
    return CachedBase(m_baseName3, m_baseClass3);
}

bool CClass::IsInstanceOf(CClass const* cls) const {
    if (cls == nullptr)
        return false;
    if (cls == this)
        return true;
    CClass const* base = GetBaseClass1();
    if (base != nullptr && base->IsInstanceOf(cls))
        return true;
    base = GetBaseClass2();
    if (base != nullptr && base->IsInstanceOf(cls))
        return true;
    base = GetBaseClass3();
    return base != nullptr && base->IsInstanceOf(cls);
}

CObject* CClass::CreateNewInstance() const {
    if (m_constructor == nullptr)
        throw CInstantiationException("lumo/base/Class", kNoFactoryLine,
                                      "Attempt to instantiate an interface or an abstract class.",
                                      nullptr, m_qualifiedName);
    CObject* object = m_constructor();
    if (object == nullptr)
        throw CMemoryException("lumo/base/Class", kFactoryFailureLine);
    return object;
}

CClass const* CClass::FindClass(char const* name) {
    return CClassManager::GetInstance().FindClass(name);
}

} // namespace base
} // namespace lumo
