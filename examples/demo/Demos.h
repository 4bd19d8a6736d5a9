// The demo's parts that live in their own files; main.cpp calls each once.
#ifndef LUMO_EXAMPLES_DEMO_DEMOS_H
#define LUMO_EXAMPLES_DEMO_DEMOS_H

void XmlReadDemo();

#endif
