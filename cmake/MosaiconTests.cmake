# GoogleTest, and functions to declare test programs.
find_package(GTest CONFIG QUIET)
if(NOT GTest_FOUND AND NOT MOSAICON_FUZZ)
  set(INSTALL_GTEST OFF CACHE INTERNAL "")
  set(our_clang_tidy "${CMAKE_CXX_CLANG_TIDY}")
  set(CMAKE_CXX_CLANG_TIDY "")
  add_subdirectory(${MOSAICON_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  set(CMAKE_CXX_CLANG_TIDY "${our_clang_tidy}")
  foreach(target gtest gmock)
    if(NOT TARGET GTest::${target})
      add_library(GTest::${target} ALIAS ${target})
    endif()
  endforeach()
endif()

# Folders with the DLLs that a Windows program needs; Wine takes them from WINEPATH.
set(MOSAICON_DLL_FOLDERS "")
if(WIN32)
  foreach(library libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE dll_path OUTPUT_STRIP_TRAILING_WHITESPACE)
    get_filename_component(dll_folder ${dll_path} REALPATH)
    get_filename_component(dll_folder ${dll_folder} DIRECTORY)
    list(APPEND MOSAICON_DLL_FOLDERS ${dll_folder})
  endforeach()
  list(APPEND MOSAICON_DLL_FOLDERS ${MOSAICON_GDAL_ROOT}/bin)
  list(REMOVE_DUPLICATES MOSAICON_DLL_FOLDERS)
endif()

set(mosaicon_test_environment "")
if(CMAKE_CROSSCOMPILING)
  list(JOIN MOSAICON_DLL_FOLDERS "\\;" wine_path)
  list(APPEND mosaicon_test_environment "WINEPATH=${wine_path}" "WINEDEBUG=-all")
endif()
if(MOSAICON_SANITIZE)
  # Other people's libraries keep what they allocated at start; our own leaks still show in the
  # tests that count handles and datasets.
  list(APPEND mosaicon_test_environment
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp" "UBSAN_OPTIONS=print_stacktrace=1")
endif()

# Runs what follows in a Wine prefix, and on a screen, of its own. -B: leaves nothing behind in the source
# folder.
set(MOSAICON_IN_OWN_PREFIX ${MOSAICON_PYTHON} -B "${PROJECT_SOURCE_DIR}/tests/support/in_own_prefix.py")

# mosaicon_add_test(NAME LABEL [ONCE] [PORTABLE] [KILLS] SOURCES ... LIBRARIES ... [SHARDS COUNT]): one
# GoogleTest program.
#   LABEL     those with the label "ui" show windows. There is only one focus, so each has a screen of its own.
#   ONCE      takes long and says the same in every build for Windows: left out of the one that says so.
#   PORTABLE  nothing of it knows the system: left out of the build that says so, for the native one has it
#             with sanitizers and checked indices, and another one shows what the compiler for Windows makes.
#   KILLS     ends programs that it has only just started. Wine leaves the console of such a one behind for
#             ever, which holds the test's output open; so it has a prefix of its own, with which all ends.
#   SHARDS    that many CTest entries, which share the tests among them.
function(mosaicon_add_test name label)
  cmake_parse_arguments(PARSE_ARGV 2 arg "ONCE;PORTABLE;KILLS" "SHARDS" "SOURCES;LIBRARIES")
  if((arg_ONCE AND NOT MOSAICON_LONG_TESTS) OR (arg_PORTABLE AND NOT MOSAICON_PORTABLE_TESTS))
    return()
  endif()
  add_executable(${name} ${arg_SOURCES})
  # Linting GoogleTest's macros takes longer than the whole rest.
  set_target_properties(${name} PROPERTIES CXX_CLANG_TIDY "")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} mosaicon_test_support mosaicon_options)
  set(command ${name})
  if((label STREQUAL ui OR arg_KILLS) AND CMAKE_CROSSCOMPILING)
    set(command ${MOSAICON_IN_OWN_PREFIX} "$<TARGET_FILE:${name}>")
  endif()
  mosaicon_add_entries(${name} "${arg_SHARDS}" COMMAND ${command})
  set_tests_properties(${mosaicon_entries} PROPERTIES LABELS ${label} TIMEOUT 1500)
endfunction()

# mosaicon_add_entries(NAME SHARDS COMMAND ...): the CTest entries of a GoogleTest program, with the
# environment of all tests; leaves their names in mosaicon_entries. Without SHARDS there is one.
function(mosaicon_add_entries name shards)
  set(mosaicon_entries "")
  if("${shards}" STREQUAL "")
    add_test(NAME ${name} ${ARGN})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${mosaicon_test_environment}")
    list(APPEND mosaicon_entries ${name})
  else()
    foreach(number RANGE 1 ${shards})
      math(EXPR index "${number} - 1")
      add_test(NAME ${name}_${number} ${ARGN})
      set_tests_properties(${name}_${number} PROPERTIES
        ENVIRONMENT "${mosaicon_test_environment};GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${index}")
      list(APPEND mosaicon_entries ${name}_${number})
    endforeach()
  endif()
  set(mosaicon_entries ${mosaicon_entries} PARENT_SCOPE)
endfunction()

# mosaicon_add_fuzz_target(NAME LIBRARIES ...): NAME_fuzz.cpp, with libFuzzer in the build for that. In
# the native build it is a test that runs the kept corpus, tests/fuzz/NAME.
function(mosaicon_add_fuzz_target name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES")
  if(WIN32)
    return()
  endif()
  add_executable(${name}_fuzz ${name}_fuzz.cpp)
  target_link_libraries(${name}_fuzz PRIVATE ${arg_LIBRARIES} mosaicon_options)
  if(MOSAICON_FUZZ)
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${name}_fuzz PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/fuzz_corpus_main.cpp)
  set_target_properties(${name}_fuzz PROPERTIES CXX_CLANG_TIDY "")
  # Some targets write files where they are.
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}_fuzz_files)
  file(MAKE_DIRECTORY ${folder})
  add_test(NAME ${name}_fuzz COMMAND ${name}_fuzz ${PROJECT_SOURCE_DIR}/tests/fuzz/${name}
    WORKING_DIRECTORY ${folder})
  set_tests_properties(${name}_fuzz PROPERTIES LABELS core TIMEOUT 1500
    ENVIRONMENT "${mosaicon_test_environment}")
endfunction()
