// Data streams shared with Java: CJavaDataOutputStream writes typed values in the byte
// layout Java's DataInputStream reads (big-endian integers, one byte per boolean,
// strings with a 16-bit length as readUTF expects), and CJavaDataInputStream reads
// what Java's DataOutputStream writes. Here the bytes go to memory, are printed in
// hex, and are read back.
#include <lumo/Lumo.h>

#include <cstdio>
#include <vector>

using namespace lumo::base;
using namespace lumo::io;

namespace {

// The bytes in rows of 16, as a hex dump.
void PrintHex(char const* data, unsigned long size) {
    for (unsigned long i = 0; i < size; ++i)
        std::printf("%02x%s", static_cast<unsigned char>(data[i]),
                    (i % 16 == 15 || i + 1 == size) ? "\n" : " ");
}

} // namespace

int main() {
    lumo::Initialize();
    try {
        CMemoryOutputStream memory;
        CJavaDataOutputStream out(&memory); // borrows `memory`
        out.WriteInt32(-2);                 // Java: writeInt   -> ff ff ff fe
        out.WriteInt16(0x1234);             //       writeShort -> 12 34
        out.WriteBool(true);                //       writeBoolean -> 01
        out.WriteUByte(200);                //       writeByte  -> c8
        out.WriteUInt32(4000000000ul);      // an unsigned value in Java's int slot
        // writeUTF: a 16-bit byte count, then the UTF-8 bytes ("é" is two bytes).
        out.WriteString(CUnicodeString::FromUTF8("héllo"));
        // Floats and doubles keep this machine's (little-endian) byte order: a Java
        // peer reads them with Double.longBitsToDouble(Long.reverseBytes(in.readLong())).
        out.WriteDouble(1.5);
        out.Flush();

        std::printf("%lu bytes:\n", memory.GetBufferSize());
        PrintHex(memory.GetBuffer(), memory.GetBufferSize());

        // Read the values back in the same order they were written.
        CMemoryInputStream source(memory.GetBuffer(), memory.GetBufferSize(), false);
        CJavaDataInputStream in(&source);
        long const i32 = in.ReadInt32();
        short const i16 = in.ReadInt16();
        bool const flag = in.ReadBool();
        unsigned char const ubyte = in.ReadSByte(); // ReadSByte is the unsigned one
        unsigned long const u32 = in.ReadUInt32();
        CUnicodeString const text = in.ReadString();
        double const real = in.ReadDouble();
        std::printf("int %ld, short 0x%x, boolean %s, byte %u, unsigned %lu\n", i32,
                    static_cast<unsigned>(i16), flag ? "true" : "false",
                    static_cast<unsigned>(ubyte), u32);
        std::printf("string \"%s\" (%lu units), double %g, %lu bytes left\n",
                    static_cast<char const*>(text.ToUTF8()), text.GetLength(), real,
                    in.GetAvailable());

        // Java caps writeUTF at 65535 bytes; so does the library.
        std::vector<unsigned short> huge(70000, 'x');
        huge.push_back(0);
        try {
            out.WriteString(huge.data());
        } catch (CIOException const& e) {
            std::printf("a 70000-byte string: %s\n", e.GetErrorDescription());
        }
    } catch (CException const& e) {
        std::printf("failed: %s\n", e.GetClass()->GetName());
        return 1;
    }
    lumo::Terminate();
    return 0;
}
