# Helpers shared by every subsystem's CMakeLists: warnings, tests and fuzz targets.

function(vqc_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(VQC_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# vqc_add_test(NAME SOURCES ... LIBS ... [PROPERTIES ...] [PREFIX text] [EMULATOR command...])
# A GoogleTest executable; every test case becomes one ctest test. In the Windows build
# it runs under Wine through CMAKE_CROSSCOMPILING_EMULATOR, discovered at test time; a
# suite that needs the program started otherwise names its own EMULATOR.
# A case gets 30 s (most take well under a second; a hang should fail fast); suites of long
# runs name their own TIMEOUT in PROPERTIES.
function(vqc_add_test name)
  cmake_parse_arguments(ARG "" "PREFIX" "SOURCES;LIBS;PROPERTIES;EMULATOR" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vqc_warnings(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest_main)
  if(ARG_EMULATOR)
    set_property(TARGET ${name} PROPERTY CROSSCOMPILING_EMULATOR ${ARG_EMULATOR})
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    TEST_PREFIX "${ARG_PREFIX}"
    PROPERTIES TIMEOUT 30 ${ARG_PROPERTIES})
endfunction()

# vqc_add_fuzzer(NAME SOURCES ... LIBS ... CORPUS dir)
# A libFuzzer target (native clang build only) and a bounded run of it as a test.
function(vqc_add_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LIBS" ${ARGN})
  if(VQC_WINDOWS OR NOT VQC_FUZZERS)
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  vqc_warnings(${name})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
  # New inputs go to a scratch folder (libFuzzer writes into its first corpus folder),
  # so the committed seed corpus stays as it is.
  set(scratch ${CMAKE_CURRENT_BINARY_DIR}/${name}-corpus)
  add_test(NAME ${name}
    COMMAND sh -c "mkdir -p '${scratch}' && exec \"$0\" \"$@\""
            $<TARGET_FILE:${name}> -runs=${VQC_FUZZ_RUNS} -seed=1 -max_len=65536
            ${scratch} ${ARG_CORPUS})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 LABELS fuzz)
endfunction()
