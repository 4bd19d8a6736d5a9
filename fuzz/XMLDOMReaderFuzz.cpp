// Fuzzes CXMLDOMReader: arbitrary bytes parsed by Xerces-C's DOM parser the way a client
// would (nothing fetched, entity expansion capped), then the shared walk over the tree.
#include "XMLFuzzSupport.h"

#include <lumo/io/DOM_Document.h>
#include <lumo/io/XMLDOMReader.h>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/SecurityManager.hpp>

using namespace lumo::io;
using namespace lumofuzz;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Start();
    Input in(data, size);
    std::string const ops = in.Bytes(48);
    std::string const document = in.Rest();

    DOM_Document tree;
    {
        xercesc::XercesDOMParser parser;
        xercesc::HandlerBase errors; // throws on a fatal error
        xercesc::SecurityManager security;
        security.setEntityExpansionLimit(64);
        parser.setErrorHandler(&errors);
        parser.setSecurityManager(&security);
        parser.setDoNamespaces(true);
        parser.setLoadExternalDTD(false);
        parser.setDisableDefaultEntityResolution(true);
        parser.setCreateEntityReferenceNodes(true);
        xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(document.data()),
                                          document.size(), "fuzz");
        // The parser's own failures are not the library's: such a document is skipped.
        try {
            parser.parse(source);
        } catch (...) {
            return 0;
        }
        if (parser.getErrorCount() != 0 || parser.getDocument() == nullptr)
            return 0;
        tree = DOM_Document(parser.adoptDocument());
    }
    CXMLDOMReader reader(tree);
    Input choices(reinterpret_cast<std::uint8_t const*>(ops.data()), ops.size());
    Walk(reader, choices, 4000, [](std::uint8_t) {});
    return 0;
}
