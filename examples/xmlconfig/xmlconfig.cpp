// Reading an XML configuration file with typed values: a small config file is written
// first (as a program's installer would leave it), then read with CXMLTextReader's
// typed element and attribute reads. A value of the wrong type is reported as an
// exception naming the problem.
#include <lumo/Lumo.h>

#include <vela/Location.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

using namespace lumo::base;
using namespace lumo::io;

namespace {

char const kConfig[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<config version=\"2\">\n"
                       "  <!-- where the service listens -->\n"
                       "  <server host=\"127.0.0.1\" port=\"8080\" secure=\"false\"/>\n"
                       "  <name>  Büro-Drucker  </name>\n"
                       "  <retries>5</retries>\n"
                       "  <timeout>2.5</timeout>\n"
                       "  <verbose>true</verbose>\n"
                       "  <level>high</level>\n"
                       "</config>\n";

// The reader takes element and attribute names as UTF-16.
CUnicodeString U(char const* name) {
    return CUnicodeString::FromUTF8(name);
}

} // namespace

int main() {
    lumo::Initialize();
    char dir[] = "/tmp/lumo-xmlconfig-XXXXXX";
    if (mkdtemp(dir) == nullptr)
        return 1;
    std::string const path = std::string(dir) + "/settings.xml";
    int status = 0;
    try {
        CFileOutputStream file(IO::Location(path.c_str()), false);
        file.Write(kConfig, static_cast<unsigned long>(std::strlen(kConfig)));
        file.Close();

        CXMLTextReader reader{IO::Location(path.c_str())};
        reader.ReadStartElement(U("config")); // skips the prolog and finds <config>
        long const version = reader.ReadAttrLong(U("version"));
        reader.ReadStartElement(U("server")); // comments on the way are skipped
        CString const host = reader.ReadAttribute(U("host")).ToUTF8();
        long const port = reader.ReadAttrLong(U("port"));
        bool const secure = reader.ReadAttrBool(U("secure"));
        // String content comes as written; the typed reads trim white space first.
        CString const name = reader.ReadElementString(U("name")).ToUTF8();
        long const retries = reader.ReadElementLong(U("retries"));
        double const timeout = reader.ReadElementDouble(U("timeout"));
        bool const verbose = reader.ReadElementBool(U("verbose"));
        std::printf("config version %ld\n", version);
        std::printf("server %s:%ld, secure %s\n", static_cast<char const*>(host), port,
                    secure ? "yes" : "no");
        std::printf("name [%s], retries %ld, timeout %.1f s, verbose %s\n",
                    static_cast<char const*>(name), retries, timeout, verbose ? "yes" : "no");

        // <level> holds a word, not a number: the typed read says so.
        try {
            reader.ReadElementLong(U("level"));
        } catch (CIOException const& e) {
            std::printf("level: %s\n", e.GetErrorDescription());
        }
        reader.Close();
    } catch (CException const& e) {
        std::printf("failed: %s\n", e.GetClass()->GetName());
        status = 1;
    }
    std::remove(path.c_str());
    rmdir(dir);
    lumo::Terminate();
    return status;
}
