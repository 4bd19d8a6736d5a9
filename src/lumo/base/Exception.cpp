// CException (its source, line, description and owned message) and the class records
// and constructors of the base layer's exception classes.
#include <lumo/base/Exception.h>

#include <lumo/base/ClassNotFoundException.h>

#include "ExceptionText.h"

#include <cstdlib>
#include <cstring>

namespace lumo {
namespace base {

LUMO_DEFINE_CLASS(CException, "lumo::base::CException", "lumo::base::CObject");
LUMO_DEFINE_CLASS(CArrayIndexOutOfBoundsException, "lumo::base::CArrayIndexOutOfBoundsException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CClassCastException, "lumo::base::CClassCastException", "lumo::base::CException");
LUMO_DEFINE_CLASS(CMemoryException, "lumo::base::CMemoryException", "lumo::base::CException");
LUMO_DEFINE_CLASS(CNullReferenceException, "lumo::base::CNullReferenceException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CIllegalArgumentException, "lumo::base::CIllegalArgumentException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CIllegalComparisonException, "lumo::base::CIllegalComparisonException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CIllegalStateException, "lumo::base::CIllegalStateException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CNumberFormatException, "lumo::base::CNumberFormatException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CSynchronizationException, "lumo::base::CSynchronizationException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CTimeoutException, "lumo::base::CTimeoutException",
                  "lumo::base::CSynchronizationException");
LUMO_DEFINE_CLASS(CClassNotFoundException, "lumo::base::CClassNotFoundException",
                  "lumo::base::CException");
LUMO_DEFINE_CLASS(CInstantiationException, "lumo::base::CInstantiationException",
                  "lumo::base::CException");

CException::CException(char const* file, unsigned long line, char const* errorDescription,
                       char const* message)
    : m_file(file), m_line(line), m_description(errorDescription), m_message(nullptr) {
    SetMessage(message);
}

CException::CException(CException const& other)
    : CObject(other), m_file(other.m_file), m_line(other.m_line),
      m_description(other.m_description), m_message(nullptr) {
    SetMessage(other.m_message);
}

CException& CException::operator=(CException const& other) {
    if (this != &other) {
        m_file = other.m_file;
        m_line = other.m_line;
        m_description = other.m_description;
        SetMessage(other.m_message);
    }
    return *this;
}

CException::~CException() {
    std::free(m_message);
}

bool CException::SetMessage(char const* message) {
    std::free(m_message);
    m_message = nullptr;
    if (message == nullptr || *message == '\0')
        return true;
    std::size_t const size = std::strlen(message) + 1;
    m_message = static_cast<char*>(std::malloc(size));
    if (m_message == nullptr)
        return false;
    std::memcpy(m_message, message, size);
    return true;
}

CClassNotFoundException::CClassNotFoundException(char const* file, unsigned long line,
                                                 char const* errorDescription, char const* message,
                                                 char const* className)
    : CException(file, line, errorDescription, message) {
    CopyExceptionText(m_className, className);
}

CInstantiationException::CInstantiationException(char const* file, unsigned long line,
                                                 char const* errorDescription, char const* message,
                                                 char const* className)
    : CException(file, line, errorDescription, message) {
    CopyExceptionText(m_className, className);
}

} // namespace base
} // namespace lumo
