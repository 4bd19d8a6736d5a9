/// @file
/// CException, root of every failure the library throws (source, line, description,
/// message), the macros that declare its subclasses, and the base layer's common ones.
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
    /// Copies the location and description as they are and the message as a new copy; a copy that
    /// runs out of memory leaves the message null.
    ///@{
    CException(CException const& other);
    CException& operator=(CException const& other);
    ///@}
    ~CException() override;

    /// The source unit that raised the exception, e.g. "lumo/base/String"; may be null.
    char const* GetSourceFile() const { return m_file; }
    /// The line of the raise site; 0 when unknown.
    unsigned long GetSourceLine() const { return m_line; }
    /// The fixed sentence that describes the kind of failure, e.g. "Stream closed."; may be null.
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
/// Declares exception class `Name`, derived from `Base`, whose constructor takes only
/// the raise site (file, line). Its record must be defined with LUMO_DEFINE_CLASS.
#define LUMO_EXCEPTION_0(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line) : Base(file, line, nullptr, nullptr) {}         \
    }
/// As LUMO_EXCEPTION_0, with a constructor taking (file, line, errorDescription).
#define LUMO_EXCEPTION_1(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line, char const* errorDescription)                   \
            : Base(file, line, errorDescription, nullptr) {}                                       \
    }
/// As LUMO_EXCEPTION_0, with a constructor taking (file, line, errorDescription, message).
#define LUMO_EXCEPTION_2(Name, Base)                                                               \
    class LUMO_API Name : public Base {                                                            \
        LUMO_DECLARE_CLASS(Name);                                                                  \
        Name(char const* file, unsigned long line, char const* errorDescription,                   \
             char const* message)                                                                  \
            : Base(file, line, errorDescription, message) {}                                       \
    }

namespace lumo {
namespace base {

/// An index outside the valid range of an array, vector or string.
LUMO_EXCEPTION_0(CArrayIndexOutOfBoundsException, CException);
/// A value that is not of the class asked for.
LUMO_EXCEPTION_0(CClassCastException, CException);
/// An allocation that failed; no description, so building it never allocates.
LUMO_EXCEPTION_0(CMemoryException, CException);
/// A null object where one is required.
LUMO_EXCEPTION_0(CNullReferenceException, CException);
/// A bad argument, most often to a constructor; the description names it.
LUMO_EXCEPTION_1(CIllegalArgumentException, CException);
/// Two values that cannot be compared with each other.
LUMO_EXCEPTION_2(CIllegalComparisonException, CException);
/// An operation called in a state that does not allow it.
LUMO_EXCEPTION_2(CIllegalStateException, CException);
/// A text that does not hold a number of the expected form.
LUMO_EXCEPTION_2(CNumberFormatException, CException);
/// A lock, condition, semaphore or thread operation that failed.
LUMO_EXCEPTION_2(CSynchronizationException, CException);
/// A wait that ran out of time.
LUMO_EXCEPTION_2(CTimeoutException, CSynchronizationException);

} // namespace base
} // namespace lumo

#endif
