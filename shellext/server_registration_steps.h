// What DllRegisterServer and DllUnregisterServer do: the server's own entries, then the
// module's per-class loops under the system's default thread locale, with rollback.
#pragma once

#include <windows.h>

#include "registration/registration_log.h"
#include "shellext/vqcprop_module.h"

HRESULT RegisterServer(VqcPropModule& module, RegistrationLog& log);
HRESULT UnregisterServer(VqcPropModule& module);
