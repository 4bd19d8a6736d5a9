// win::CCriticalSection over the system critical section, reporting enter failures under
// its own unit name; it has no wait handle and TryAcquire tries once.
#include <lumo/base/win/CriticalSection.h>

#include <lumo/base/Exception.h>

#include "../os/SystemCriticalSection.h"

namespace lumo {
namespace base {
namespace win {

LUMO_DEFINE_CLASS(CCriticalSection, "lumo::base::win::CCriticalSection",
                  "lumo::base::win::CSyncObject");

CCriticalSection::CCriticalSection()
    : CSyncObject(nullptr),
      m_section(detail::NewCriticalSection(0, "lumo/base/win/CriticalSection", __LINE__)) {
    if (m_section == nullptr)
        throw CSynchronizationException("lumo/base/win/CriticalSection", __LINE__,
                                        "Failed to create critical section.", nullptr);
}

CCriticalSection::~CCriticalSection() {
    detail::DeleteCriticalSection(m_section);
}

bool CCriticalSection::IsTimeoutSupported() const {
    return false;
}

void CCriticalSection::Acquire() {
    try {
        detail::EnterCriticalSection(m_section);
    } catch (CSynchronizationException const&) {
        // Reported under this unit's name.
        throw CSynchronizationException("lumo/base/win/CriticalSection", __LINE__,
                                        "Failed to enter critical section.", nullptr);
    }
}

bool CCriticalSection::TryAcquire(unsigned long /*timeout*/) {
    return detail::TryEnterCriticalSection(m_section);
}

void CCriticalSection::Release() {
    detail::LeaveCriticalSection(m_section);
}

} // namespace win
} // namespace base
} // namespace lumo
