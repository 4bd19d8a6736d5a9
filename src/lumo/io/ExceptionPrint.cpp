// CException::Print, the exception report on a print stream; it lives in the io layer
// because the base layer includes nothing from io.
#include <lumo/base/Exception.h>

#include <lumo/io/PrintStream.h>

#include <cstdint>

namespace lumo {
namespace base {

void CException::Print(io::CPrintStream& out) const {
    // Both heading lines are exactly 80 characters wide.
    out.Println("--- Exception occured ----------------------------------------------------------");
    out.Print('\t');
    out.Println(GetClass()->GetQualifiedName());
    bool const hasLocation = m_file != nullptr && m_line != 0;
    if (hasLocation || m_description != nullptr || m_message != nullptr)
        out.Println(
            "--- Details --------------------------------------------------------------------");
    if (hasLocation) {
        out.Println("\tLocation :");
        out.Print("\t\t");
        out.Print(m_file);
        out.Print("(");
        out.Print(static_cast<long>(static_cast<std::int32_t>(m_line)));
        out.Println(")");
    }
    if (m_description != nullptr) {
        out.Println("\tError description :");
        out.Print("\t\t");
        out.Println(m_description);
    }
    if (m_message != nullptr) {
        out.Println("\tMessage : ");
        out.Print("\t\t");
        out.Println(m_message);
    }
}

} // namespace base
} // namespace lumo
