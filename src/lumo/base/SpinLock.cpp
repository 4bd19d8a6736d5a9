// CSpinLock: compare-exchange 0 to 1 with a time-slice yield between attempts (no spin
// count, no back-off), and release by decrement.
#include <lumo/base/SpinLock.h>

#include "os/SystemCriticalSection.h"

namespace lumo {
namespace base {

CSpinLock::~CSpinLock() {}

void CSpinLock::Acquire() {
    std::int32_t expected = 0;
    while (!m_state.compare_exchange_strong(expected, 1, std::memory_order_seq_cst,
                                            std::memory_order_seq_cst)) {
        expected = 0;
        // Sleep(0): give up the rest of the time slice. No spin count, no back-off.
        detail::YieldTimeSlice();
    }
}

bool CSpinLock::TryAcquire(unsigned long /*timeout*/) {
    std::int32_t expected = 0;
    return m_state.compare_exchange_strong(expected, 1, std::memory_order_seq_cst,
                                           std::memory_order_seq_cst);
}

void CSpinLock::Release() {
    m_state.fetch_sub(1, std::memory_order_seq_cst);
}

} // namespace base
} // namespace lumo
