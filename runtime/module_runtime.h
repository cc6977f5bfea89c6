// ModuleRuntime: what the property pages need of the DLL's module, kept apart from the COM
// object map, the class factory and registration above them: the module's instance (its
// resources and its own file name), the lock count that every page names as its reference
// parent (the sheet counts the pages it holds in it), and the list of page windows being
// created. The DLL's module object is one; a program that makes pages without the server
// (a test program) gets a plain one of the runtime's own.
#pragma once

#include <windows.h>

#include "runtime/window_creation_list.h"

class ModuleRuntime {
public:
    ModuleRuntime(const ModuleRuntime&) = delete;
    ModuleRuntime& operator=(const ModuleRuntime&) = delete;

    virtual HINSTANCE Instance() const noexcept = 0;
    virtual UINT* LockCountAddress() noexcept = 0;
    virtual WindowCreationList& WindowCreation() noexcept = 0;

protected:
    // A module becomes the process's module while it lives: the server's static module from
    // start-up on, or a module a test makes for a while (its pages then see that module).
    ModuleRuntime() noexcept;
    // The module made before it is the process's module again.
    virtual ~ModuleRuntime();

private:
    ModuleRuntime* previous_;
};

// The process's module: the one made last of those alive, or, in a program that has none, a
// plain module of the program's own image that lives as long as the process.
ModuleRuntime& TheModuleRuntime() noexcept;
