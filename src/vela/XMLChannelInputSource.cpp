// The root layer's Xerces-C input source over a byte channel and the binary stream it
// hands the parser.
#include "detail/XMLChannelInputSource.h"

#include <xercesc/util/BinInputStream.hpp>

namespace VelaXML {

namespace {

// Reads the channel block by block and counts the bytes delivered.
class ChannelBinInputStream : public xercesc::BinInputStream {
public:
    explicit ChannelBinInputStream(IO::IChannel* channel) : m_channel(channel), m_position(0) {}

    XMLFilePos curPos() const override { return m_position; }

    XMLSize_t readBytes(XMLByte* const toFill, XMLSize_t const maxToRead) override {
        unsigned long const request =
            maxToRead > 0x7FFFFFFFu ? 0x7FFFFFFFul : static_cast<unsigned long>(maxToRead);
        unsigned long done = 0;
        IO::Result const result = m_channel->Read(toFill, request, &done);
        if (result != IO::RESULT_OK)
            return 0; // end of data, or an error that ends it
        m_position += done;
        return done;
    }

    XMLCh const* getContentType() const override { return nullptr; }

private:
    IO::IChannel* m_channel;
    XMLFilePos m_position;
};

} // namespace

IChannelInputSource::IChannelInputSource(IO::IChannel* channel, bool adopt)
    : m_channel(channel), m_adopt(adopt) {}

IChannelInputSource::~IChannelInputSource() {
    if (m_adopt)
        delete m_channel;
}

xercesc::BinInputStream* IChannelInputSource::makeStream() const {
    if (m_channel == nullptr)
        return nullptr;
    return new ChannelBinInputStream(m_channel);
}

} // namespace VelaXML
