# yxtools_fuzzer(NAME SOURCES... [CORPUS folder] [ENV VAR=VALUE...])
#
# One fuzz target: a program whose LLVMFuzzerTestOneInput(data, size) drives a family's calls from
# its input. A family calls it once per target from fuzz/<family>/CMakeLists.txt. CORPUS is the
# committed corpus, relative to the family's folder (default: corpus); ENV sets variables in the
# target's environment from its start.
#
#  - In the fuzz preset (YXTOOLS_BUILD_FUZZ) the target is a libFuzzer program, bin/<NAME>, and is
#    listed in fuzzers.tsv of the build folder, which scripts/fuzz.sh reads to run every target.
#  - In the test builds (POSIX, ASan, Windows) the same sources are linked with a small driver that
#    replays the committed corpus, registered as the test fuzz.<NAME>: every input that ever found a
#    fault stays a regression test on both builds, and the target keeps compiling with g++ and
#    mingw-w64.
#
# Targets link the internal archive, so they may reach the platform layer and the protected members
# that their invariant checks read.
set(YXTOOLS_FUZZ_DIR ${CMAKE_CURRENT_LIST_DIR}/../fuzz)

function(yxtools_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "ENV" ${ARGN})
  if(NOT ARG_CORPUS)
    set(ARG_CORPUS corpus)
  endif()
  get_filename_component(corpus ${ARG_CORPUS} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
  if(NOT IS_DIRECTORY ${corpus})
    message(FATAL_ERROR "fuzz target ${name}: no corpus folder ${corpus}")
  endif()
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  yxtools_warnings(${name})
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${YXTOOLS_FUZZ_DIR}
    ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE yxtools_internal)
  if(YXTOOLS_BUILD_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    string(REPLACE ";" " " env "${ARG_ENV}")
    set_property(GLOBAL APPEND_STRING PROPERTY YXTOOLS_FUZZERS
      "${name}\t$<TARGET_FILE:${name}>\t${corpus}\t${env}\n")
  else()
    target_sources(${name} PRIVATE ${YXTOOLS_FUZZ_DIR}/replay_main.cpp)
    add_test(NAME fuzz.${name} COMMAND ${name} .)
    # The corpus folder is the working folder: the replay names no host path, also under Wine.
    set_tests_properties(fuzz.${name} PROPERTIES WORKING_DIRECTORY ${corpus} LABELS "unit;fuzz")
    if(CMAKE_CROSSCOMPILING)
      set_tests_properties(fuzz.${name} PROPERTIES
        FIXTURES_REQUIRED wine_prefix ENVIRONMENT "${YXTOOLS_WINE_ENV};${ARG_ENV}")
    else()
      set_tests_properties(fuzz.${name} PROPERTIES ENVIRONMENT "${ARG_ENV}")
    endif()
  endif()
endfunction()

# Writes the list of fuzz targets, one a line: name, program, corpus folder, environment.
function(yxtools_write_fuzzer_list)
  get_property(list GLOBAL PROPERTY YXTOOLS_FUZZERS)
  file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/fuzzers.tsv CONTENT "${list}")
endfunction()
