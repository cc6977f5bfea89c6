// The process's one registration log and one module. The log is made first, so it is
// destroyed last: at unload it writes its file after the module has gone.
#include "registration/registration_log.h"
#include "shellext/vqcprop_module.h"

namespace {
RegistrationLog g_registrationLog;
VqcPropModule g_module;
}  // namespace

VqcPropModule& TheModule() noexcept { return g_module; }
RegistrationLog& TheRegistrationLog() noexcept { return g_registrationLog; }
