// Internal: Xerces-C input sources over the library's byte streams, and the empty
// source that stands in for every external entity, so that no XML input of the
// library ever reads outside its document. Any XML unit that hands the parser a
// CInputStream or answers entity requests uses these.
#ifndef LUMO_IO_DETAIL_XERCESINPUTSOURCES_H
#define LUMO_IO_DETAIL_XERCESINPUTSOURCES_H

#include <lumo/base/Ref.h>
#include <lumo/io/InputStream.h>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

namespace lumo {
namespace io {
namespace detail {

/// A binary stream that reads the shared CInputStream block by block; 0 at its end.
/// Exceptions of the stream (CIOException and the like) pass through the parser.
class CInputStreamBinInputStream : public xercesc::BinInputStream {
public:
    explicit CInputStreamBinInputStream(base::CRef<CInputStream> const& stream);
    ~CInputStreamBinInputStream() override;

    XMLFilePos curPos() const override;
    XMLSize_t readBytes(XMLByte* toFill, XMLSize_t maxToRead) override;
    XMLCh const* getContentType() const override;

private:
    base::CRef<CInputStream> m_stream;
    XMLFilePos m_position;
};

/// An input source whose stream is a CInputStreamBinInputStream over the shared
/// stream; the parser detects the encoding from the bytes.
class CInputStreamInputSource : public xercesc::InputSource {
public:
    explicit CInputStreamInputSource(base::CRef<CInputStream> const& stream);
    ~CInputStreamInputSource() override;

    xercesc::BinInputStream* makeStream() const override;

private:
    base::CRef<CInputStream> m_stream;
};

/// A new memory source holding only "<?xml version="1.0" encoding="UTF-8"?>": the
/// answer to every request for an external entity or DTD. The caller adopts it.
xercesc::InputSource* NewEmptyEntitySource();

} // namespace detail
} // namespace io
} // namespace lumo

#endif
