// The XML text reader: opens its input and hands the tokenizer's events on one at a
// time, each made into a token object only when one is asked for.
#include <lumo/io/XMLTextReader.h>

#include <lumo/base/Exception.h>
#include <vela/File.h>
#include <vela/Location.h>

#include "../../vela/detail/XMLChannelInputSource.h"
#include "detail/XMLTextTokenizer.h"

#include <new>

namespace lumo {
namespace io {

using base::CRef;
using base::CUnicodeString;

namespace {

char const kUnit[] = "lumo/io/XMLTextReader";
char const kEndFailure[] = "Failed to read the end element.";

// The current-token queries are the documented base's.
detail::CXMLReaderFailures const kFailures = {kUnit,   nullptr,     nullptr,
                                              nullptr, kEndFailure, kEndFailure};

CRef<CInputStream> TakeOver(CInputStream* stream) {
    if (stream == nullptr)
        throw CIOException(kUnit, __LINE__, "Invalid input stream.", nullptr);
    return CRef<CInputStream>(stream);
}

// Opens the file and wraps it in a channel source that owns it.
xercesc::InputSource* OpenSource(IO::Location const& location) {
    if (location.IsEmpty() || !location.IsLegal())
        throw CIOException(kUnit, __LINE__, "Invalid xml file location.", nullptr);
    std::unique_ptr<IO::File> file(new (std::nothrow) IO::File(location, IO::File::NOT_FOUND_FAIL));
    if (file == nullptr || file->GetStatus() != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__,
                           "Failed to create file for reading the specified xml file.", nullptr);
    IO::Result const result = file->Open(IO::File::MODE_READ);
    if (result == IO::RESULT_ACCESS_DENIED)
        throw CIOException(kUnit, __LINE__, "Access denied.", nullptr);
    if (result != IO::RESULT_OK)
        throw CIOException(kUnit, __LINE__, "An error occured while trying to open file.", nullptr);
    try {
        xercesc::InputSource* source = new VelaXML::IChannelInputSource(file.get(), true);
        file.release();
        return source;
    } catch (...) {
        throw CIOException(kUnit, __LINE__, "Failed to create XML text tokenizer.", nullptr);
    }
}

} // namespace

LUMO_DEFINE_CLASS(CXMLTextReader, "lumo::io::CXMLTextReader", "lumo::io::CXMLReader");

CXMLTextReader::CXMLTextReader(CRef<CInputStream> const& stream)
    : CXMLNavigatingReader(kFailures), m_stream(stream) {
    if (stream.IsNull())
        throw CIOException(kUnit, __LINE__, "Invalid input stream.", nullptr);
    m_tokenizer.reset(new CXMLTextTokenizer(stream));
}

CXMLTextReader::CXMLTextReader(CInputStream* stream) : CXMLTextReader(TakeOver(stream)) {}

CXMLTextReader::CXMLTextReader(IO::Location const& location) : CXMLNavigatingReader(kFailures) {
    m_tokenizer.reset(new CXMLTextTokenizer(OpenSource(location)));
}

CXMLTextReader::~CXMLTextReader() {}

// The tokenizer's event stays the current token until it is asked for as an object.
// A failure leaves the current token (and the tokenizer's current event) as it was.
bool CXMLTextReader::ProduceToken() {
    if (!m_tokenizer->Advance()) {
        SetCurrent(nullptr);
        return false;
    }
    SetPending(m_tokenizer->Current());
    return true;
}

void CXMLTextReader::Close() {
    MarkClosed();
    m_tokenizer.reset();
    if (!m_stream.IsNull()) {
        CRef<CInputStream> const stream = std::move(m_stream);
        stream->Close();
    }
}

} // namespace io
} // namespace lumo
