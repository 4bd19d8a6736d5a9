// A client program built against the installed lumo package (find_package): it starts
// the library, finds a class record, throws and catches an exception, and stops it.
#include <lumo/Lumo.h>

#include <cstdio>
#include <cstring>

int main() {
    using namespace lumo::base;
    if (lumo::Initialize() != 1)
        return 1;
    CClass const* cls = CClass::FindClass("lumo::base::CException");
    if (cls == nullptr || std::strcmp(cls->GetName(), "CException") != 0)
        return 2;
    int rc = 3;
    try {
        throw CIllegalArgumentException("consumer", __LINE__, "Invalid argument.");
    } catch (CException const& e) {
        if (e.IsInstanceOf(&CException::m_classCException))
            rc = 0;
    }
    lumo::Terminate();
    std::printf("consumer ok\n");
    return rc;
}
