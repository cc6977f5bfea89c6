// The built vqcprop64.dll loaded into a benchmark, with its class factory registered for
// the process, so that CoCreateInstance of the class reaches it as the shell's call would
// reach a registered server, without the registry lookup. The same is offered for any
// class of the system (the shell link), so both sides of a comparison are made alike.
#pragma once

#include <windows.h>
#include <objbase.h>

#include <memory>
#include <string>

#include "common/com_ptr.h"
#include "common/win_handles.h"

namespace benchmark_server {

// A class object registered for this process, withdrawn when this goes.
class RegisteredClass {
public:
    RegisteredClass(REFCLSID id, IClassFactory* factory);
    ~RegisteredClass();
    RegisteredClass(const RegisteredClass&) = delete;
    RegisteredClass& operator=(const RegisteredClass&) = delete;
    bool Ok() const { return cookie_ != 0; }

private:
    DWORD cookie_ = 0;
};

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// The DLL at `path`, loaded; its DllGetClassObject, or null when missing.
class LoadedDll {
public:
    explicit LoadedDll(const std::string& path);
    HMODULE Module() const { return module_.Get(); }
    GetClassObjectFunction GetClassObject() const;

private:
    UniqueModule module_;
};

// The extension's factory (from the loaded DLL) registered for CLSID_VQCProp. Ends the
// program with a message when anything of it fails.
class ExtensionServer {
public:
    explicit ExtensionServer(const std::string& dllPath);
    ExtensionServer(const ExtensionServer&) = delete;
    ExtensionServer& operator=(const ExtensionServer&) = delete;

private:
    LoadedDll dll_;
    ComPtr<IClassFactory> factory_;
    std::unique_ptr<RegisteredClass> registration_;
};

// A system class's factory (from CoGetClassObject) registered for the process.
class SystemServer {
public:
    explicit SystemServer(REFCLSID id);
    SystemServer(const SystemServer&) = delete;
    SystemServer& operator=(const SystemServer&) = delete;

private:
    ComPtr<IClassFactory> factory_;
    std::unique_ptr<RegisteredClass> registration_;
};

// Both sides of a comparison end an icon cycle alike: the two icons it made destroyed. True
// when both had been made.
bool DestroyBoth(HICON large, HICON small);

}  // namespace benchmark_server
