#ifndef LUMO_BASE_STRING_H
#define LUMO_BASE_STRING_H

#include <lumo/Config.h>

namespace lumo {
namespace base {

// 8-bit text in the platform's multibyte code (UTF-8), with shared copy-on-write
// storage: copies share one buffer, the first change makes a private copy.
class LUMO_API CString {
public:
    CString() : m_text(nullptr) {}
    CString(char const* s);
    CString(CString const& other);
    ~CString();

    CString& operator=(CString const& other);
    CString& operator=(char const* s);

    unsigned long GetLength() const;
    bool IsEmpty() const { return GetLength() == 0; }
    // Never null: an empty string gives a constant empty text.
    operator char const*() const;

private:
    char* m_text;
};

} // namespace base
} // namespace lumo

#endif
