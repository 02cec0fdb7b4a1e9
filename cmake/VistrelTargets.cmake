# How the project makes its targets. Every folder lists its own files; this says what the lists become.

# vistrel_library(NAME source...): a static library of the sources given; other folders add theirs with target_sources.
# Include root is src/.
function(vistrel_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_precompile_headers(${name} REUSE_FROM standard_headers)
  set_property(GLOBAL APPEND PROPERTY VISTREL_LIBRARIES $<TARGET_FILE:${name}>)
endfunction()

# vistrel_test(NAME SOURCES file... LIBRARIES library... [LONG]): one GoogleTest program, every case a ctest case.
# LONG tests carry the label "long" and run by ./check --long only. All share the precompiled headers of test_headers.
function(vistrel_test name)
  cmake_parse_arguments(ARG "LONG" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} $<$<PLATFORM_ID:Windows>:${CMAKE_SOURCE_DIR}/tests/support/binaryfiles_windows.cpp>)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gtest_main)
  vistrel_test_sources(${name})
  if(CMAKE_CROSSCOMPILING)
    # Whole programs, since an emulator takes its time to start.
    add_test(NAME ${name} COMMAND ${name})
    if(ARG_LONG)
      set_tests_properties(${name} PROPERTIES LABELS long)
    endif()
  elseif(ARG_LONG)
    # A name of its own for each case: ctest would give the label to a short one of the same name, too.
    gtest_discover_tests(${name} TEST_PREFIX long. PROPERTIES LABELS long)
  else()
    gtest_discover_tests(${name})
  endif()
endfunction()

# vistrel_test_sources(NAME): how a target's test code is compiled. Nobody waits for test code to run, only to compile,
# so the dev preset optimises it little.
function(vistrel_test_sources name)
  target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-Og>)
  target_precompile_headers(${name} REUSE_FROM test_headers)
endfunction()

# vistrel_fuzz(NAME LIBRARIES library...): the fuzz target NAME.cc. With VISTREL_FUZZ it is a libFuzzer program
# fuzz_NAME; otherwise the same entry point runs over corpus/NAME as a plain test.
function(vistrel_fuzz name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  add_executable(fuzz_${name} ${name}.cc)
  target_include_directories(fuzz_${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(fuzz_${name} PRIVATE ${ARG_LIBRARIES})
  if(VISTREL_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(fuzz_${name} PRIVATE replay.cc)
    add_test(NAME fuzz_${name} COMMAND fuzz_${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name})
  endif()
endfunction()

# vistrel_bench(NAME SOURCES file... LIBRARIES library...): one Google Benchmark program.
function(vistrel_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} benchmark::benchmark_main)
endfunction()

# vistrel_web_module(NAME FOLDER): makes the program NAME an ES module in FOLDER, one function that starts an instance.
function(vistrel_web_module name folder)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${folder} SUFFIX .js)
  target_link_options(${name} PRIVATE
    --no-entry
    -sMODULARIZE -sEXPORT_ES6 -sENVIRONMENT=web,worker
    -sTOTAL_STACK=8MB -sINITIAL_MEMORY=32MB -sALLOW_MEMORY_GROWTH
    -sEXPORTED_FUNCTIONS=_malloc,_free
    -sDYNAMIC_EXECUTION=0
    -sINCOMING_MODULE_JS_API=wasmBinary,locateFile,fetchFile,print,printErr,onAbort
    -sUSE_ES6_IMPORT_META)
endfunction()

# vistrel_hot(TARGET file...): sources that the time of a picture goes into, or most of it. Modules are compiled to be
# small, and these to be quick: emscripten turns inlining off with -Os. Native builds are quick anyhow.
function(vistrel_hot target)
  if(EMSCRIPTEN)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES
      COMPILE_OPTIONS "-O3;-finline-functions;-msimd128" SKIP_PRECOMPILE_HEADERS ON)
  endif()
  vistrel_loops(${target} ${ARGN})
endfunction()

# vistrel_loops(TARGET file...): sources whose loops work on what others have read and checked. libFuzzer learns from
# comparisons which bytes a reader waits for; from these it learns nothing, and they would take most of its time.
function(vistrel_loops target)
  if(VISTREL_FUZZ)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES
      COMPILE_OPTIONS -fno-sanitize-coverage=trace-cmp SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
