/// @file
/// CClass, the run-time record of a class (qualified name, base names, size, factory),
/// and the LUMO_DECLARE_CLASS / LUMO_DEFINE_CLASS macros that give a class its record.
#ifndef LUMO_BASE_CLASS_H
#define LUMO_BASE_CLASS_H

#include <lumo/Config.h>

namespace lumo {
namespace base {

class CObject;
class CClassManager;

/// The run-time record of one class: qualified name, up to three base names, the
/// instance size and an optional factory. Every record registers itself with the
/// process-wide class registry for as long as it lives.
class LUMO_API CClass {
public:
    /// A factory that returns a new default instance, or null when out of memory.
    typedef CObject* (*Constructor)();

    /// Registers the record with the process-wide registry. Names are kept, not copied, and must
    /// outlive the record; null base names mean no such base, a null factory means the class cannot
    /// be instantiated.
    CClass(char const* qualifiedName, char const* baseName1, char const* baseName2,
           char const* baseName3, unsigned long size, Constructor constructor);
    ~CClass();

    /// The fully qualified name, e.g. "lumo::io::CInputStream".
    char const* GetQualifiedName() const { return m_qualifiedName; }
    /// The qualified name of the first, second or third base class; null when there is none.
    ///@{
    char const* GetQualifiedBaseClassName1() const { return m_baseName1; }
    char const* GetQualifiedBaseClassName2() const { return m_baseName2; }
    char const* GetQualifiedBaseClassName3() const { return m_baseName3; }
    ///@}
    /// The instance size in bytes.
    unsigned long GetSize() const { return m_size; }
    /// The factory; null for an interface or an abstract class.
    Constructor GetConstructor() const { return m_constructor; }

    /// The part of the qualified name after its last ':'; points into the qualified name.
    char const* GetName() const;

    /// Base records, looked up by name on first use and cached once found.
    ///@{
    CClass const* GetBaseClass1() const;
    CClass const* GetBaseClass2() const;
    CClass const* GetBaseClass3() const;
    ///@}

    /// True when this record is `cls` or one of its bases (searched through all three base names);
    /// false for null.
    bool IsInstanceOf(CClass const* cls) const;
    /// A new default instance owned by the caller. A record without factory throws
    /// CInstantiationException "Attempt to instantiate an interface or an abstract
    /// class."; a factory that returns null, CMemoryException.
    CObject* CreateNewInstance() const;

    /// The registered record of that qualified name; null for a null, empty or unknown name.
    static CClass const* FindClass(char const* name);

private:
    friend class CClassManager;

    CClass(CClass const& other);
    CClass& operator=(CClass const& other);

    char const* m_qualifiedName;
    char const* m_baseName1;
    char const* m_baseName2;
    char const* m_baseName3;
    unsigned long m_size;
    Constructor m_constructor;
    mutable CClass const* m_baseClass1;
    mutable CClass const* m_baseClass2;
    mutable CClass const* m_baseClass3;
    CClass* m_previous;
    CClass* m_next;
};

} // namespace base
} // namespace lumo

/// Declares a class's record m_class<Name> and its GetClass override; write it first
/// in the class body of `Name`. Leaves the class body in public access.
#define LUMO_DECLARE_CLASS(Name)                                                                   \
public:                                                                                            \
    static ::lumo::base::CClass m_class##Name;                                                     \
    ::lumo::base::CClass const* GetClass() const override

/// Defines the record and GetClass of a class with one base and no factory, the form
/// every library class uses. Write it in the class's namespace; the names are kept, not
/// copied (string literals).
#define LUMO_DEFINE_CLASS(Name, qualifiedName, baseName)                                           \
    LUMO_DEFINE_CLASS_EX(Name, qualifiedName, baseName, nullptr, nullptr, nullptr)

/// The full form: up to three base names (nullptr for none) and a factory (nullptr: the
/// class cannot be instantiated through its record).
#define LUMO_DEFINE_CLASS_EX(Name, qualifiedName, base1, base2, base3, factory)                    \
    ::lumo::base::CClass Name::m_class##Name LUMO_INIT_PRIORITY(LUMO_CLASS_RECORD_PRIORITY)(       \
        qualifiedName, base1, base2, base3, sizeof(Name), factory);                                \
    ::lumo::base::CClass const* Name::GetClass() const {                                           \
        return &Name::m_class##Name;                                                               \
    }

#endif
