// What the wrappers share with the layer: the plan that decides which call fails, and the
// books. Internal to the layer.
#pragma once

#include <initializer_list>

#include "tests/faults/fault_layer.h"

namespace faults::detail {

// Counts a call of `function` made from `returnAddress`; true when this is the armed call.
bool ShouldFail(const char* function, const void* returnAddress);

void Created(ObjectKind kind, const void* object);
// An object the module destroys: of one of `kinds` when the books know it; objects the
// books never saw made (before the layer came, or made by someone else) are not counted.
// The kinds of one call draw their values from one space (CloseHandle's File and Mapping).
void Destroyed(std::initializer_list<ObjectKind> kinds, const void* object);

// A handle value the system handed the module by a road the books do not keep (an event, a
// semaphore, a duplicate): a close of it later is no second close of an older object.
void Reissued(const void* object);

// The bits AddAttributes added to the file's attributes (0 for any other file).
DWORD AddedAttributes(const char* path);
// The module called CreateFileA on path.
void Opened(const char* path);

// The module's image, for call sites as offsets.
void SetModuleRange(std::uintptr_t base, std::size_t size);

}  // namespace faults::detail
