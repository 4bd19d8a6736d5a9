// A tour of lumo: start the library, find classes by name and make objects through
// their records, work with strings and containers, write and read back a data stream
// and a UTF-8 text file, hand work between threads over a condition, and report a
// failure the way the library reports every failure.
#include "Demos.h"

#include <lumo/Lumo.h>

#include <vela/Location.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace lumo::base;
using namespace lumo::io;
using namespace lumo::util;

namespace demo {

// An application class with a record and a factory: it can be made by name.
class CGreeting : public CObject {
    LUMO_DECLARE_CLASS(CGreeting);
    static CObject* Make() { return new CGreeting; }
    char const* Text() const { return "hello from a class made by name"; }
};
LUMO_DEFINE_CLASS_EX(CGreeting, "demo::CGreeting", "lumo::base::CObject", nullptr, nullptr,
                     &CGreeting::Make);

void Section(char const* title) {
    std::printf("\n== %s\n", title);
}

// Prints the library's exception report on standard output.
void Report(CException const& e) {
    CMemoryOutputStream buffer;
    CPrintStream out(&buffer, false);
    e.Print(out);
    out.Flush();
    std::fwrite(buffer.GetBuffer(), 1, buffer.GetBufferSize(), stdout);
}

void ClassesAndRecords() {
    Section("classes found by name");
    char const* names[] = {"lumo::io::CBufferedReader", "lumo::util::CNoSuchElementException",
                           "demo::CGreeting", "no::such::Class"};
    for (char const* name : names) {
        CClass const* cls = CClass::FindClass(name);
        if (cls == nullptr) {
            std::printf("%-38s not registered\n", name);
            continue;
        }
        std::printf("%-38s short name %-24s base %s\n", name, cls->GetName(),
                    cls->GetQualifiedBaseClassName1());
    }
    CClass const* reader = CClass::FindClass("lumo::io::CBufferedReader");
    std::printf("CBufferedReader is a CReader: %s\n",
                reader->IsInstanceOf(&CReader::m_classCReader) ? "yes" : "no");

    Section("instances made through records");
    CClassManager& registry = CClassManager::GetInstance();
    CObject* object = registry.CreateInstance("demo::CGreeting");
    std::printf("made a %s: %s\n", object->GetClass()->GetName(),
                static_cast<CGreeting*>(object)->Text());
    delete object;
    try {
        registry.CreateInstance("no::such::Class");
    } catch (CClassNotFoundException const& e) {
        Report(e);
    }
}

void Strings() {
    Section("strings");
    CString text("The quick brown fox");
    CString shared = text; // shares the buffer until one of them changes
    shared.Replace("quick", "slow");
    std::printf("original: %s | changed copy: %s\n", static_cast<char const*>(text),
                static_cast<char const*>(shared));
    CString formatted;
    formatted.Format("%s has %lu bytes; 'brown' at %ld", static_cast<char const*>(text),
                     text.GetLength(), text.Find("brown"));
    std::printf("%s\n", static_cast<char const*>(formatted));
    CString upper("Grüße aus Köln");
    upper.MakeUpper();
    std::printf("upper-cased UTF-8: %s\n", static_cast<char const*>(upper));

    CUnicodeString wide = CUnicodeString::FromUTF8("naïve 😀 text");
    std::printf("UTF-16 units: %lu, back to UTF-8: %s\n", wide.GetLength(),
                static_cast<char const*>(wide.ToUTF8()));
    std::printf("\"Straße\" vs \"STRASSE\" ignoring case: %d; \"Köln\" vs \"KÖLN\": %d\n",
                CString("Straße").CompareIgnoreCase("STRASSE"),
                CString("Köln").CompareIgnoreCase("KÖLN"));
}

void Containers() {
    Section("containers");
    CStringMap counts(false); // keys compared without case
    CStringTokenizer words("the cat saw The dog and THE bird", " ");
    while (words.HasMoreTokens()) {
        CString const& word = words.GetNextToken();
        long n = counts.ContainsKey(word) ? std::atol(counts.Get(word)) : 0;
        CString number;
        number.Format("%ld", n + 1);
        counts.Put(word, number);
    }
    for (unsigned long i = 0; i < counts.GetSize(); ++i)
        std::printf("%-5s %s\n", static_cast<char const*>(counts.GetKeyAt(i)),
                    static_cast<char const*>(counts.GetAt(i)));
    try {
        CObjectVector vector;
        vector.GetElementAt(3);
    } catch (CArrayIndexOutOfBoundsException const& e) {
        std::printf("index 3 of an empty vector: %s\n", e.GetClass()->GetName());
    }
}

void DataStream() {
    Section("data stream round trip");
    CMemoryOutputStream memory;
    {
        CDataOutputStream out(&memory);
        out.WriteInt32(-123456);
        out.WriteDouble(2.5);
        out.WriteBool(true);
        out.WriteString(CUnicodeString::FromUTF8("données"));
        out.Flush();
    }
    std::printf("wrote %lu bytes:", memory.GetBufferSize());
    for (unsigned long i = 0; i < memory.GetBufferSize(); ++i)
        std::printf(" %02x", static_cast<unsigned char>(memory.GetBuffer()[i]));
    std::printf("\n");
    CMemoryInputStream source(memory.GetBuffer(), memory.GetBufferSize(), false);
    CDataInputStream in(&source);
    long const number = in.ReadInt32();
    double const real = in.ReadDouble();
    bool const flag = in.ReadBool();
    CUnicodeString const word = in.ReadString();
    std::printf("read back: %ld %g %s %s\n", number, real, flag ? "true" : "false",
                static_cast<char const*>(word.ToUTF8()));
    try {
        in.ReadInt32();
    } catch (CException const& e) {
        std::printf("reading past the end:\n");
        Report(e);
    }
}

void TextFile() {
    Section("UTF-16 text through the UTF-8 writer to a file");
    char path[] = "/tmp/lumo-demo-XXXXXX";
    int const fd = mkstemp(path);
    if (fd < 0)
        return;
    close(fd);
    IO::Location location(path);
    CUnicodeString const text = CUnicodeString::FromUTF8("Ελληνικά, 日本語, emoji 🎉\n");
    {
        CFileOutputStream file(location, false);
        COutputStreamWriter writer(&file, "UTF-8");
        // The emoji's surrogate pair is handed over in two calls, as a stream of
        // units arriving piecemeal would be.
        unsigned long const half = text.GetLength() - 2;
        writer.Write(text, 0, half);
        writer.Write(text, half, text.GetLength() - half);
        writer.Close();
    }
    CFileInputStream file(location);
    CMemoryOutputStream bytes;
    char chunk[256];
    for (long n; (n = file.Read(chunk, 0, sizeof chunk)) > 0;)
        bytes.Write(chunk, 0, static_cast<unsigned long>(n));
    file.Close();
    CUnicodeString const back =
        CUnicodeString::FromUTF8(bytes.GetBuffer(), static_cast<long>(bytes.GetBufferSize()));
    std::printf("%lu UTF-16 units became %lu UTF-8 bytes on disk\n", text.GetLength(),
                bytes.GetBufferSize());
    std::printf("read back %s: %s", back == text ? "unchanged" : "CHANGED",
                static_cast<char const*>(back.ToUTF8()));
    std::remove(path);
}

// A one-slot mailbox: the producer waits while it is full, the consumer while empty.
struct CMailbox {
    CLock lock;
    CCondition changed{lock};
    long value = 0;
    bool full = false;
};

class CProducer : public CThread {
public:
    explicit CProducer(CMailbox& box) : m_box(box) {}
    void Run() override {
        for (long i = 1; i <= 5; ++i) {
            m_box.lock.Acquire();
            while (m_box.full)
                m_box.changed.Wait();
            m_box.value = i * i;
            m_box.full = true;
            m_box.changed.NotifyAll();
            m_box.lock.Release();
        }
    }

private:
    CMailbox& m_box;
};

class CConsumer : public CThread {
public:
    explicit CConsumer(CMailbox& box) : m_box(box) {}
    void Run() override {
        for (int i = 0; i < 5; ++i) {
            m_box.lock.Acquire();
            while (!m_box.full)
                m_box.changed.Wait();
            std::printf("consumer took %ld\n", m_box.value);
            m_box.full = false;
            m_box.changed.NotifyAll();
            m_box.lock.Release();
        }
    }

private:
    CMailbox& m_box;
};

void Threads() {
    Section("producer and consumer threads over a condition");
    CMailbox box;
    CProducer producer(box);
    CConsumer consumer(box);
    consumer.Start();
    producer.Start();
    producer.Join();
    consumer.Join();
    std::printf("both threads joined\n");
}

} // namespace demo

int main() {
    demo::Section("start");
    std::printf("Initialize -> %ld\n", lumo::Initialize());
    std::printf("Initialize -> %ld (nested)\n", lumo::Initialize());
    try {
        demo::ClassesAndRecords();
        demo::Strings();
        demo::Containers();
        demo::DataStream();
        demo::TextFile();
        demo::Threads();
        demo::XmlRead();
        demo::XmlWrite();
        demo::XmlDom();
        demo::XmlRoundTrip();
        demo::NetDemo();
        demo::RegexDemo();
    } catch (CException const& e) {
        demo::Report(e);
        return 1;
    }
    demo::Section("stop");
    std::printf("Terminate -> %ld\n", lumo::Terminate());
    std::printf("Terminate -> %ld\n", lumo::Terminate());
    return 0;
}
