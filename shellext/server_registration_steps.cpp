#include "shellext/server_registration_steps.h"

#include "common/com_boundary.h"
#include "registration/server_registration.h"

namespace {

// Runs the class loop under LOCALE_SYSTEM_DEFAULT and puts the thread's locale back.
template <typename Loop>
HRESULT UnderSystemLocale(Loop&& loop) {
    const LCID saved = GetThreadLocale();
    SetThreadLocale(LOCALE_SYSTEM_DEFAULT);
    const HRESULT result = loop();
    SetThreadLocale(saved);
    return result;
}

}  // namespace

HRESULT RegisterServer(VqcPropModule& module, RegistrationLog& log) {
    // Memory that runs out on the way fails registration like a key that cannot be made:
    // the entries written so far are taken away again.
    HRESULT result = GuardComCall([&] { return RegisterServerEntries(log, module.instance); });
    if (FAILED(result)) {
        UnregisterServerEntries(module.instance);
        return result;
    }
    result = UnderSystemLocale([&] { return GuardComCall([&] { return module.RegisterClassObjects(); }); });
    if (FAILED(result)) {
        module.UnregisterClassObjects();
        UnregisterServerEntries(module.instance);
        return result;
    }
    return S_OK;
}

HRESULT UnregisterServer(VqcPropModule& module) {
    UnregisterServerEntries(module.instance);
    const HRESULT result =
        UnderSystemLocale([&] { return GuardComCall([&] { return module.UnregisterClassObjects(); }); });
    return FAILED(result) ? result : S_OK;
}
