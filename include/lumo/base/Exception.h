// CException, root of every failure the library throws (source, line, description,
// message), the macros that declare its subclasses, and the base layer's common ones.
#ifndef LUMO_BASE_EXCEPTION_H
#define LUMO_BASE_EXCEPTION_H

#include <lumo/base/Object.h>

namespace lumo {
namespace io {
class CPrintStream;
}
namespace base {

/// Root of every failure the library throws: where it was raised, a constant
/// description of the kind of failure, and an owned run-time message.
class LUMO_API CException : public CObject {
    LUMO_DECLARE_CLASS(CException);

public:
    /// The file and description are kept as given (they must outlive the exception);
    /// the message is copied.
    CException(char const* file, unsigned long line, char const* errorDescription,
               char const* message);
    CException(CException const& other);
    CException& operator=(CException const& other);
    ~CException() override;

    char const* GetSourceFile() const { return m_file; }
    unsigned long GetSourceLine() const { return m_line; }
    char const* GetErrorDescription() const { return m_description; }
    /// Null when there is no message.
    char const* GetMessage() const { return m_message; }

    /// Replaces the message with a copy of `message`; a null or empty text means no
    /// message. False when the copy could not be allocated (the message is then gone).
    bool SetMessage(char const* message);

    /// Writes the exception report to `out`.
    virtual void Print(io::CPrintStream& out) const;

private:
    char const* m_file;
    unsigned long m_line;
    char const* m_description;
    char* m_message;
};

} // namespace base
} // namespace lumo

// Exception classes come in three constructor shapes after (file, line): nothing,
// a description, or a description and a message.
#define LUMO_EXCEPTION_0(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line) : Base(file, line, nullptr, nullptr) {}         \
    }
#define LUMO_EXCEPTION_1(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line, char const* errorDescription)                   \
            : Base(file, line, errorDescription, nullptr) {}                                       \
    }
#define LUMO_EXCEPTION_2(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line, char const* errorDescription,                   \
             char const* message)                                                                  \
            : Base(file, line, errorDescription, message) {}                                       \
    }

namespace lumo {
namespace base {

LUMO_EXCEPTION_0(CArrayIndexOutOfBoundsException, CException);
LUMO_EXCEPTION_0(CClassCastException, CException);
LUMO_EXCEPTION_0(CMemoryException, CException);
LUMO_EXCEPTION_0(CNullReferenceException, CException);
LUMO_EXCEPTION_1(CIllegalArgumentException, CException);
LUMO_EXCEPTION_2(CIllegalComparisonException, CException);
LUMO_EXCEPTION_2(CIllegalStateException, CException);
LUMO_EXCEPTION_2(CNumberFormatException, CException);
LUMO_EXCEPTION_2(CSynchronizationException, CException);
LUMO_EXCEPTION_2(CTimeoutException, CSynchronizationException);

} // namespace base
} // namespace lumo

#endif
