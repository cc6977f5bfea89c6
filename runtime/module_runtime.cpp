#include "runtime/module_runtime.h"

#include <atomic>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

std::atomic<ModuleRuntime*> g_processModule{nullptr};

// The module of a program that has no module object of its own.
class PlainModule final : public ModuleRuntime {
public:
    HINSTANCE Instance() const noexcept override { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
    UINT* LockCountAddress() noexcept override { return &lockCount_; }
    WindowCreationList& WindowCreation() noexcept override { return windowCreation_; }

private:
    UINT lockCount_ = 0;
    WindowCreationList windowCreation_;
};

}  // namespace

ModuleRuntime::ModuleRuntime() noexcept : previous_(g_processModule.exchange(this)) {}

ModuleRuntime::~ModuleRuntime() {
    ModuleRuntime* self = this;
    g_processModule.compare_exchange_strong(self, previous_);
}

ModuleRuntime& TheModuleRuntime() noexcept {
    if (ModuleRuntime* module = g_processModule.load()) return *module;
    static PlainModule plain;
    ModuleRuntime* module = g_processModule.load();
    return module ? *module : plain;
}
