// CBool's class record and its fixed "true" and "false" texts, 8-bit and UTF-16.
#include <lumo/base/Bool.h>

namespace lumo {
namespace base {

LUMO_DEFINE_CLASS(CBool, "lumo::base::CBool", "lumo::base::CObject");

char const CBool::SZ_TRUE[] = "true";
char const CBool::SZ_FALSE[] = "false";
unsigned short const CBool::WSZ_TRUE[] = {'t', 'r', 'u', 'e', 0};
unsigned short const CBool::WSZ_FALSE[] = {'f', 'a', 'l', 's', 'e', 0};

} // namespace base
} // namespace lumo
