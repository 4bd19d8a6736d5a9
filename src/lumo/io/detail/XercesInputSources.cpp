// The Xerces-C input sources over the library's byte streams and the empty stand-in
// for external entities.
#include "XercesInputSources.h"

#include <xercesc/framework/MemBufInputSource.hpp>

namespace lumo {
namespace io {
namespace detail {

namespace {

XMLByte const kEmptyEntity[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
XMLCh const kEmptyEntityId[] = u"lumo-empty-entity";

} // namespace

CInputStreamBinInputStream::CInputStreamBinInputStream(base::CRef<CInputStream> const& stream)
    : m_stream(stream), m_position(0) {}

CInputStreamBinInputStream::~CInputStreamBinInputStream() {}

XMLFilePos CInputStreamBinInputStream::curPos() const {
    return m_position;
}

XMLSize_t CInputStreamBinInputStream::readBytes(XMLByte* toFill, XMLSize_t maxToRead) {
    unsigned long const request =
        maxToRead > 0x7FFFFFFFu ? 0x7FFFFFFFul : static_cast<unsigned long>(maxToRead);
    long const n = m_stream->Read(reinterpret_cast<char*>(toFill), 0, request);
    if (n <= 0)
        return 0;
    m_position += static_cast<XMLFilePos>(n);
    return static_cast<XMLSize_t>(n);
}

XMLCh const* CInputStreamBinInputStream::getContentType() const {
    return nullptr;
}

CInputStreamInputSource::CInputStreamInputSource(base::CRef<CInputStream> const& stream)
    : m_stream(stream) {}

CInputStreamInputSource::~CInputStreamInputSource() {}

xercesc::BinInputStream* CInputStreamInputSource::makeStream() const {
    return new CInputStreamBinInputStream(m_stream);
}

xercesc::InputSource* NewEmptyEntitySource() {
    return new xercesc::MemBufInputSource(kEmptyEntity, sizeof kEmptyEntity - 1, kEmptyEntityId,
                                          false);
}

} // namespace detail
} // namespace io
} // namespace lumo
