// The demo's sections that live in their own files, one function each.
#ifndef LUMO_EXAMPLES_DEMOS_H
#define LUMO_EXAMPLES_DEMOS_H

namespace demo {

void XmlWrite();

} // namespace demo

#endif
