// Internal: the root layer's Xerces-C input source over a byte channel. It derives
// from a Xerces-C class, so it stays out of the public headers; the library's XML
// readers build it for documents named by file location.
#ifndef VELA_DETAIL_XMLCHANNELINPUTSOURCE_H
#define VELA_DETAIL_XMLCHANNELINPUTSOURCE_H

#include <vela/Channel.h>

#include <xercesc/sax/InputSource.hpp>

namespace VelaXML {

/// Feeds the parser from an IO::IChannel, read from its current position. The channel
/// must outlive every stream made from this source; with `adopt` the source deletes
/// the channel when it is destroyed. A read error of the channel ends the data.
class IChannelInputSource : public xercesc::InputSource {
public:
    IChannelInputSource(IO::IChannel* channel, bool adopt);
    ~IChannelInputSource() override;

    IChannelInputSource(IChannelInputSource const&) = delete;
    IChannelInputSource& operator=(IChannelInputSource const&) = delete;

    /// A new stream over the channel (null for a null channel); the caller adopts it.
    xercesc::BinInputStream* makeStream() const override;

private:
    IO::IChannel* m_channel;
    bool m_adopt;
};

} // namespace VelaXML

#endif
