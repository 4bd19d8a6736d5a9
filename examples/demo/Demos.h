// The demo's sections kept in their own files, one function each.
#ifndef LUMO_EXAMPLES_DEMO_DEMOS_H
#define LUMO_EXAMPLES_DEMO_DEMOS_H

namespace demo {

void RegexDemo();

} // namespace demo

#endif
