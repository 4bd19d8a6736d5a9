// The demo's tours that live in their own files, one function per subsystem.
#ifndef LUMO_EXAMPLES_DEMO_DEMOS_H
#define LUMO_EXAMPLES_DEMO_DEMOS_H

namespace demo {

void XmlRead();   // a document read back token by token and with typed element reads
void XmlWrite();  // a document written with CXMLTextWriter to a file and printed
void XmlDom();    // one writer routine and one reader routine over XML text and a DOM tree
void NetDemo();   // a server socket and a client talking over loopback on two threads
void RegexDemo(); // a pattern with groups matched in 8-bit and UTF-16 text, and a parse error

// a document written to a file and read back typed, with a pushback reader looking ahead
void XmlRoundTrip();

} // namespace demo

#endif
