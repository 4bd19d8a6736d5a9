// A client program built against the installed lumo package (find_package or pkg-config):
// it checks the versions agree, starts the library, finds a class record, throws and
// catches an exception, and stops it.
#include <lumo/Lumo.h>

#include <cstdio>
#include <cstring>

int main() {
    using namespace lumo::base;
    if (std::strcmp(lumo::GetVersion(), LUMO_VERSION) != 0)
        return 4;
#ifdef LUMO_PACKAGE_VERSION
    if (std::strcmp(LUMO_PACKAGE_VERSION, LUMO_VERSION) != 0)
        return 5;
#endif
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
    std::printf("consumer ok, lumo %s\n", lumo::GetVersion());
    return rc;
}
