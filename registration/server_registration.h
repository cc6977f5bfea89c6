// Writes and deletes the server's registry entries (the class, its application id and
// in-process server) below HKEY_CLASSES_ROOT, logging every failed write.
#pragma once

#include <windows.h>

#include <vector>

#include "registration/registration_log.h"
#include "registration/server_entries.h"

// Rows 1 to 8. The log's file name is taken from the environment first. A key that
// cannot be created fails with HRESULT_FROM_WIN32 of the registry's code; a value that
// cannot be set is only logged. Without the module's path: 0x80070057.
HRESULT RegisterServerEntries(RegistrationLog& log, HMODULE module);

// Creates the rows' keys in table order and writes their values below root. A key that
// cannot be created ends the walk: it is logged with the thread's last-error value and the
// registry's code is returned. A value that cannot be set is logged with the registry's
// code and the walk goes on. 0 when every key was created.
LONG WriteRegistryRows(HKEY root, const std::vector<RegistryRow>& rows, RegistrationLog& log);

// Rows 1 to 3 / 4 to 8 below root; the registry's code, 0 when every key was created.
LONG RegisterAppIdEntries(HKEY root, const char* moduleFileName, RegistrationLog& log);
LONG RegisterClassEntries(HKEY root, const char* modulePath, RegistrationLog& log);

// Deletes the server's keys and the ".vqc" and "VCLIENT" keys; absent keys are fine.
// Always S_OK; nothing is logged.
HRESULT UnregisterServerEntries(HMODULE module);

// Deletes name below parent with all its subkeys; the registry's code.
LONG DeleteKeyTree(HKEY parent, const char* name);
