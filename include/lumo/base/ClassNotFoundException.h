// The class registry's two failures: CClassNotFoundException (no record of that name)
// and CInstantiationException (the record has no factory).
#ifndef LUMO_BASE_CLASSNOTFOUNDEXCEPTION_H
#define LUMO_BASE_CLASSNOTFOUNDEXCEPTION_H

#include <lumo/base/Exception.h>
#include <lumo/base/String.h>

namespace lumo {
namespace base {

/// No record bears the class name asked for.
class LUMO_API CClassNotFoundException : public CException {
    LUMO_DECLARE_CLASS(CClassNotFoundException);

public:
    /// Keeps a copy of `className` (null gives the empty name); a copy that runs out of memory
    /// leaves the name empty.
    CClassNotFoundException(char const* file, unsigned long line, char const* errorDescription,
                            char const* message, char const* className);

    /// The class name that was asked for.
    CString const& GetClassName() const { return m_className; }

private:
    CString m_className;
};

/// The record has no factory (an interface or an abstract class).
class LUMO_API CInstantiationException : public CException {
    LUMO_DECLARE_CLASS(CInstantiationException);

public:
    /// Keeps a copy of `className` (null gives the empty name); a copy that runs out of memory
    /// leaves the name empty.
    CInstantiationException(char const* file, unsigned long line, char const* errorDescription,
                            char const* message, char const* className);

    /// The qualified name of the class that has no factory.
    CString const& GetClassName() const { return m_className; }

private:
    CString m_className;
};

} // namespace base
} // namespace lumo

#endif
