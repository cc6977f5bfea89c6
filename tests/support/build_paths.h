// Where this build put the DLL and the stand-in client DLLs, in the form Wine maps onto the
// host's file system. The test target names them (VQC_DLL_PATH, VQC_FIXTURE_DIR).
#pragma once

#include <string>

namespace test_support {

inline std::string BuiltDllPath() { return VQC_DLL_PATH; }

// A stand-in client DLL of the test build, e.g. "client_6_19_5" (product version 6.19.5).
inline std::string ClientFixturePath(const std::string& fixture) {
    return std::string(VQC_FIXTURE_DIR) + "/" + fixture + ".dll";
}

}  // namespace test_support
