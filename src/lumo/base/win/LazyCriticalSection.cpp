// win::CLazyCriticalSection: the creation step with its inverted test, kept as defined,
// so Acquire and TryAcquire throw and Release does nothing.
#include <lumo/base/win/LazyCriticalSection.h>

#include <lumo/base/Exception.h>

#include "../os/SystemCriticalSection.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CLazyCriticalSection, "lumo::base::win::CLazyCriticalSection",
                  "lumo::base::win::CSyncObject");

CLazyCriticalSection::CLazyCriticalSection() : CSyncObject(nullptr), m_section(nullptr) {}

CLazyCriticalSection::~CLazyCriticalSection() {
    detail::DeleteCriticalSection(m_section);
}

bool CLazyCriticalSection::IsTimeoutSupported() const {
    return false;
}

void CLazyCriticalSection::Create() {
    m_guard.Acquire();
    try {
        // Inverted test, kept as the defined behaviour: a section is made only when
        // one exists already, which never happens.
        if (m_section != nullptr) {
            detail::SystemCriticalSection* section =
                detail::NewCriticalSection(0, "lumo/base/win/LazyCriticalSection", __LINE__);
            if (section == nullptr)
                throw CSynchronizationException("lumo/base/win/LazyCriticalSection", __LINE__,
                                                "Failed to create critical section.", nullptr);
            detail::DeleteCriticalSection(m_section);
            m_section = section;
        }
    } catch (...) {
        m_guard.Release();
        throw;
    }
    m_guard.Release();
}

void CLazyCriticalSection::Acquire() {
    if (m_section == nullptr)
        Create();
    if (m_section == nullptr)
        throw CSynchronizationException("lumo/base/win/LazyCriticalSection", __LINE__,
                                        "Failed to enter critical section.", nullptr);
    try {
        detail::EnterCriticalSection(m_section);
    } catch (CSynchronizationException const&) {
        throw CSynchronizationException("lumo/base/win/LazyCriticalSection", __LINE__,
                                        "Failed to enter critical section.", nullptr);
    }
}

bool CLazyCriticalSection::TryAcquire(unsigned long /*timeout*/) {
    if (m_section == nullptr)
        Create();
    // The original tries to enter the missing section and faults; report it as
    // Acquire does instead.
    if (m_section == nullptr)
        throw CSynchronizationException("lumo/base/win/LazyCriticalSection", __LINE__,
                                        "Failed to enter critical section.", nullptr);
    return detail::TryEnterCriticalSection(m_section);
}

void CLazyCriticalSection::Release() {
    if (m_section != nullptr)
        detail::LeaveCriticalSection(m_section);
}

} // namespace win
} // namespace base
} // namespace lumo
