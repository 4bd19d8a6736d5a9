#ifndef LUMO_IO_XMLTEXTREADER_H
#define LUMO_IO_XMLTEXTREADER_H

#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>
#include <lumo/io/detail/XMLNavigatingReader.h>

#include <memory>

namespace IO {
class Location;
}

namespace lumo {
namespace io {

class CXMLTextTokenizer;

/// The pull reader over XML text: the parser scans the document one step at a time
/// as tokens are asked for, so the document is never held whole. Nothing outside the
/// document is ever read (external DTDs and entities are answered empty). Malformed
/// text raises CXMLException with the parser's message at the token where the fault
/// lies; the tokens before it are delivered normally.
///
/// Failures are CIOException from unit "lumo/io/XMLTextReader" unless stated. The
/// navigation and text reads are the readers' shared ones (detail::CXMLNavigatingReader),
/// with "Failed to read the end element." for the end-element searches; the
/// current-token queries and attribute reads are CXMLReader's.
class LUMO_API CXMLTextReader : public detail::CXMLNavigatingReader {
    LUMO_DECLARE_CLASS(CXMLTextReader);

public:
    /// Reads the shared stream (the parser detects the encoding from its bytes). A
    /// null stream: "Invalid input stream."; a scanner that cannot be built or started:
    /// "Failed to create XML text tokenizer."; a malformed prolog: CXMLException.
    explicit CXMLTextReader(base::CRef<CInputStream> const& stream);
    /// Reads the stream, which the reader takes over (and deletes, also when the
    /// constructor fails). Failures as above.
    explicit CXMLTextReader(CInputStream* stream);
    /// Reads the file. An empty or illegal location: "Invalid xml file location.";
    /// access refused: "Access denied."; another open error: "An error occured while
    /// trying to open file."; no file object: "Failed to create file for reading the
    /// specified xml file."; then as above.
    explicit CXMLTextReader(IO::Location const& location);
    /// Releases the document without closing a shared stream.
    ~CXMLTextReader() override;

    /// Releases the parser, the input and the tokens held, and closes the stream it
    /// was given; later reads throw "Reader closed.". Closing again does nothing.
    void Close() override;

private:
    bool ProduceToken() override;

    std::unique_ptr<CXMLTextTokenizer> m_tokenizer;
    base::CRef<CInputStream> m_stream;
};

} // namespace io
} // namespace lumo

#endif
