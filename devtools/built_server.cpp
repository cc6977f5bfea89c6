#include "devtools/built_server.h"

#include <cstdio>
#include <cstdlib>

#include "shellext/vqcprop_ids.h"

namespace benchmark_server {

namespace {

[[noreturn]] void Fail(const std::string& what, HRESULT result) {
    std::fprintf(stderr, "%s failed (0x%08lx)\n", what.c_str(), static_cast<unsigned long>(result));
    std::exit(1);
}

std::unique_ptr<RegisteredClass> Register(REFCLSID id, IClassFactory* factory, const char* name) {
    auto registration = std::make_unique<RegisteredClass>(id, factory);
    if (!registration->Ok()) Fail(std::string("CoRegisterClassObject of ") + name, E_FAIL);
    return registration;
}

}  // namespace

RegisteredClass::RegisteredClass(REFCLSID id, IClassFactory* factory) {
    if (FAILED(CoRegisterClassObject(id, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_))) cookie_ = 0;
}

RegisteredClass::~RegisteredClass() {
    if (cookie_) CoRevokeClassObject(cookie_);
}

LoadedDll::LoadedDll(const std::string& path) : module_(LoadLibraryA(path.c_str())) {
    if (!module_) Fail("LoadLibrary " + path, HRESULT_FROM_WIN32(GetLastError()));
}

GetClassObjectFunction LoadedDll::GetClassObject() const {
    return reinterpret_cast<GetClassObjectFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_.Get(), "DllGetClassObject")));
}

ExtensionServer::ExtensionServer(const std::string& dllPath) : dll_(dllPath) {
    const GetClassObjectFunction getClassObject = dll_.GetClassObject();
    if (!getClassObject) Fail("GetProcAddress(DllGetClassObject)", E_FAIL);
    const HRESULT result = getClassObject(CLSID_VQCProp, IID_IClassFactory, factory_.PutVoid());
    if (FAILED(result)) Fail("DllGetClassObject", result);
    registration_ = Register(CLSID_VQCProp, factory_.Get(), "the extension");
}

SystemServer::SystemServer(REFCLSID id) {
    const HRESULT result = CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory_.PutVoid());
    if (FAILED(result)) Fail("CoGetClassObject", result);
    registration_ = Register(id, factory_.Get(), "a system class");
}

bool DestroyBoth(HICON large, HICON small) {
    const bool made = large && small;
    if (large) DestroyIcon(large);
    if (small) DestroyIcon(small);
    return made;
}

}  // namespace benchmark_server
