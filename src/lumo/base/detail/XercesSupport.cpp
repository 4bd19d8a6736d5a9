// The library's counted start and stop of Xerces-C.
#include "XercesSupport.h"

#include <lumo/base/Exception.h>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

namespace lumo {
namespace detail {

void StartXerces() {
    try {
        xercesc::XMLPlatformUtils::Initialize();
    } catch (xercesc::XMLException const&) {
        throw base::CIllegalStateException("lumo/base/detail/XercesSupport", __LINE__,
                                           "Failed to start the XML parser.", nullptr);
    }
}

void StopXerces() {
    xercesc::XMLPlatformUtils::Terminate();
}

} // namespace detail
} // namespace lumo
