// The table of the functions the fault layer stands in for. Internal to the layer.
#pragma once

#include <vector>

namespace faults::detail {

struct WrappedFunction {
    const char* name;  // as the module imports it
    void* wrapper;
    void** real;  // filled from the module's import slot when the layer is installed
};

const std::vector<WrappedFunction>& WrappedFunctionTable();

}  // namespace faults::detail
