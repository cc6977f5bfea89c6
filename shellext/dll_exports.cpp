// The DLL's entry points. Each is exported a second time with a leading underscore
// (see vqcprop64.def).
#include <windows.h>

#include "common/com_boundary.h"
#include "shellext/server_registration_steps.h"
#include "shellext/vqcprop_module.h"

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD, LPVOID) {
    TheModule().instance = instance;
    return TRUE;
}

STDAPI DllCanUnloadNow() { return TheModule().CanUnloadNow(); }

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    return TheModule().GetClassObject(classId, iid, object);
}

STDAPI DllRegisterServer() {
    return GuardComCall([] { return RegisterServer(TheModule(), TheRegistrationLog()); });
}

STDAPI DllUnregisterServer() {
    return GuardComCall([] { return UnregisterServer(TheModule()); });
}

}  // extern "C"
