#include <lumo/base/String.h>

#include <lumo/base/Exception.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace lumo {
namespace base {

namespace {

// Three 32-bit words in front of the characters.
struct Header {
    std::uint32_t capacity;
    std::uint32_t length;
    std::uint32_t references;
};

char const kEmpty[1] = {0};

Header* HeaderOf(char* text) { return reinterpret_cast<Header*>(text) - 1; }

// A buffer for n bytes (terminator included), shared by one string.
char* NewBuffer(std::uint32_t n) {
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + n));
    if (header == nullptr)
        throw CMemoryException("lumo/base/String", 1936);
    header->capacity = n;
    header->length = 0;
    header->references = 1;
    char* text = reinterpret_cast<char*>(header + 1);
    text[0] = '\0';
    return text;
}

void ReleaseBuffer(char* text) {
    if (text == nullptr)
        return;
    Header* header = HeaderOf(text);
    if (header->references < 2)
        std::free(header);
    else
        --header->references;
}

} // namespace

CString::CString(char const* s) : m_text(nullptr) { *this = s; }

CString::CString(CString const& other) : m_text(nullptr) { *this = other; }

CString::~CString() { ReleaseBuffer(m_text); }

CString& CString::operator=(CString const& other) {
    if (this == &other || m_text == other.m_text)
        return *this;
    ReleaseBuffer(m_text);
    m_text = nullptr;
    if (other.IsEmpty() || HeaderOf(other.m_text)->references == 0)
        return *this;
    m_text = other.m_text;
    ++HeaderOf(m_text)->references;
    return *this;
}

CString& CString::operator=(char const* s) {
    if (s == nullptr || *s == '\0') {
        ReleaseBuffer(m_text);
        m_text = nullptr;
        return *this;
    }
    std::uint32_t const length = static_cast<std::uint32_t>(std::strlen(s));
    char* text = NewBuffer(length + 1);
    std::memcpy(text, s, length + 1);
    HeaderOf(text)->length = length;
    ReleaseBuffer(m_text);
    m_text = text;
    return *this;
}

unsigned long CString::GetLength() const {
    return m_text == nullptr ? 0 : HeaderOf(m_text)->length;
}

CString::operator char const*() const { return m_text == nullptr ? kEmpty : m_text; }

} // namespace base
} // namespace lumo
