# Libraries of others the build uses, each from its Debian package (scripts/lib/packages.sh).

# nlohmann/json (nlohmann-json3-dev), header-only. Its headers are copied from the host's
# include folder into the build tree, so the MinGW build sees them and none of the host's
# other headers.
find_path(VQC_NLOHMANN_JSON_DIR nlohmann/json.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(NOT VQC_NLOHMANN_JSON_DIR)
  message(FATAL_ERROR "nlohmann/json.hpp not found: install nlohmann-json3-dev (scripts/lib/packages.sh does)")
endif()
file(COPY ${VQC_NLOHMANN_JSON_DIR}/nlohmann DESTINATION ${CMAKE_BINARY_DIR}/third_party/include)
add_library(nlohmann_json_headers INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json_headers SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/third_party/include)
