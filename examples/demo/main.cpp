// A tour of lumo: start the library, find classes by name, make objects through their
// class records, and report a failure the way the library reports every failure.
#include <lumo/Lumo.h>

#include <cstdio>

using namespace lumo::base;

namespace demo {

// An application class with a record and a factory: it can be made by name.
class CGreeting : public CObject {
    LUMO_DECLARE_CLASS(CGreeting);
    static CObject* Make() { return new CGreeting; }
    char const* Text() const { return "hello from a class made by name"; }
};
LUMO_DEFINE_CLASS_EX(CGreeting, "demo::CGreeting", "lumo::base::CObject", nullptr, nullptr,
                     &CGreeting::Make);

void Report(CException const& e) {
    std::printf("--- Exception occured ------------------------------------------------"
                "----------\n\t%s\n",
                e.GetClass()->GetQualifiedName());
    if (e.GetSourceFile() != nullptr && e.GetSourceLine() != 0)
        std::printf("\tLocation :\n\t\t%s(%lu)\n", e.GetSourceFile(), e.GetSourceLine());
    if (e.GetErrorDescription() != nullptr)
        std::printf("\tError description :\n\t\t%s\n", e.GetErrorDescription());
    if (e.GetMessage() != nullptr)
        std::printf("\tMessage : \n\t\t%s\n", e.GetMessage());
}

} // namespace demo

int main() {
    std::printf("== start\n");
    std::printf("Initialize -> %ld\n", lumo::Initialize());
    std::printf("Initialize -> %ld (nested)\n", lumo::Initialize());

    std::printf("\n== classes found by name\n");
    char const* names[] = {"lumo::io::CIOException", "lumo::util::CNoSuchElementException",
                           "demo::CGreeting", "no::such::Class"};
    for (char const* name : names) {
        CClass const* cls = CClass::FindClass(name);
        if (cls == nullptr) {
            std::printf("%-40s not registered\n", name);
            continue;
        }
        std::printf("%-40s short name %-26s base %s\n", name, cls->GetName(),
                    cls->GetQualifiedBaseClassName1());
    }
    CClass const* memory = CClass::FindClass("lumo::base::CMemoryException");
    std::printf("CNoSuchElementException is a CMemoryException by its record: %s\n",
                CClass::FindClass("lumo::util::CNoSuchElementException")->IsInstanceOf(memory)
                    ? "yes"
                    : "no");

    std::printf("\n== instances made through records\n");
    CClassManager& registry = CClassManager::GetInstance();
    CObject* object = registry.CreateInstance("demo::CGreeting");
    std::printf("made a %s: %s\n", object->GetClass()->GetName(),
                static_cast<demo::CGreeting*>(object)->Text());
    delete object;

    std::printf("\n== exception reports\n");
    try {
        registry.CreateInstance("no::such::Class");
    } catch (CClassNotFoundException const& e) {
        demo::Report(e);
        std::printf("(class asked for: %s)\n", static_cast<char const*>(e.GetClassName()));
    }
    try {
        CException::m_classCException.CreateNewInstance();
    } catch (CException const& e) {
        demo::Report(e);
    }

    std::printf("\n== stop\n");
    std::printf("Terminate -> %ld\n", lumo::Terminate());
    std::printf("Terminate -> %ld\n", lumo::Terminate());
    return 0;
}
