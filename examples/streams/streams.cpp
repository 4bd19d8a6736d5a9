// Byte and text streams over files: UTF-16 text written through the "UTF-8" writer to
// a file and read back as bytes, then the same text kept as UTF-16 units in a second
// file and read back through a buffered reader. Everything lives in a temporary
// directory that the example removes at the end.
#include <lumo/Lumo.h>

#include <vela/Location.h>

#include <unistd.h>

#include <cstdio>
#include <string>

using namespace lumo::base;
using namespace lumo::io;

int main() {
    lumo::Initialize();
    char dir[] = "/tmp/lumo-streams-XXXXXX";
    if (mkdtemp(dir) == nullptr)
        return 1;
    std::string const utf8Path = std::string(dir) + "/notes-utf8.txt";
    std::string const utf16Path = std::string(dir) + "/notes-utf16.txt";
    int status = 0;
    try {
        // Text from the Basic Multilingual Plane: the "UTF-8" writer turns a surrogate
        // pair (an emoji) into its 4 bytes only when the two halves come in separate
        // Write calls, and into "?" when they come in one.
        CUnicodeString const text = CUnicodeString::FromUTF8("naïve café\nΕλληνικά ✓\n");

        // The chain: UTF-16 units -> "UTF-8" writer -> buffered bytes -> the file.
        // Closing the outermost object flushes and closes everything beneath it.
        CFileOutputStream file(IO::Location(utf8Path.c_str()), false);
        CBufferedOutputStream buffered(&file, 4096);
        COutputStreamWriter writer(&buffered, "UTF-8");
        writer.Write(text);
        writer.Close();

        // Read the bytes back, a block at a time, and decode them.
        CFileInputStream in(IO::Location(utf8Path.c_str()));
        std::printf("the UTF-8 file holds %lu bytes for %lu UTF-16 units\n", in.GetAvailable(),
                    text.GetLength());
        std::string bytes;
        char block[16];
        for (long n; (n = in.Read(block, 0, sizeof block)) > 0;)
            bytes.append(block, static_cast<std::size_t>(n));
        in.Close();
        CUnicodeString const decoded = CUnicodeString::FromUTF8(bytes.c_str());
        std::printf("decoded back: %s\n", decoded == text ? "identical" : "DIFFERENT");

        // A CFileWriter stores the units as they are (two bytes each, low byte first);
        // a CFileReader gives them back, here through a CBufferedReader.
        CFileWriter unitsOut(IO::Location(utf16Path.c_str()));
        unitsOut.Write(text);
        unitsOut.Close();
        // The CRef form shares the file reader: it is deleted with the last reference.
        CBufferedReader reader(CRef<CReader>(new CFileReader(IO::Location(utf16Path.c_str()))), 64);
        CUnicodeString line;
        int number = 0;
        for (long c; (c = reader.Read()) != CReader::EOS;) {
            if (c != '\n') {
                line += static_cast<unsigned short>(c);
                continue;
            }
            std::printf("line %d: %s (%lu units)\n", ++number,
                        static_cast<char const*>(line.ToUTF8()), line.GetLength());
            line.Empty();
        }
        reader.Close();
    } catch (CException const& e) {
        std::printf("failed: %s\n", e.GetClass()->GetName());
        status = 1;
    }

    // Tidy up: both files, then the directory.
    std::remove(utf8Path.c_str());
    std::remove(utf16Path.c_str());
    rmdir(dir);
    lumo::Terminate();
    return status;
}
