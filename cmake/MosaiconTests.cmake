# GoogleTest, and one function to declare a test program.
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

# mosaicon_add_test(NAME LABEL SOURCES ... LIBRARIES ...): one GoogleTest program, one CTest entry.
# Those with the label "ui" show windows: they need a screen, and one at a time gets it, because there
# is only one focus.
function(mosaicon_add_test name label)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "SOURCES;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  # Linting GoogleTest's macros takes longer than the whole rest.
  set_target_properties(${name} PROPERTIES CXX_CLANG_TIDY "")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} mosaicon_test_support mosaicon_options)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 300
    ENVIRONMENT "${mosaicon_test_environment}")
  if(label STREQUAL ui)
    set_tests_properties(${name} PROPERTIES RESOURCE_LOCK screen)
    if(CMAKE_CROSSCOMPILING)
      # On a screen without a window manager, Wine waits two seconds for it whenever a window goes.
      add_test(NAME ${name}_unmanaged COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} reg add
        "HKCU\\Software\\Wine\\AppDefaults\\${name}.exe\\X11 Driver" /v Managed /d N /f)
      set_tests_properties(${name}_unmanaged PROPERTIES LABELS ui FIXTURES_SETUP ${name}_unmanaged
        ENVIRONMENT "WINEDEBUG=-all")
      set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED ${name}_unmanaged)
    endif()
  endif()
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
  set_tests_properties(${name}_fuzz PROPERTIES LABELS core TIMEOUT 300
    ENVIRONMENT "${mosaicon_test_environment}")
endfunction()
