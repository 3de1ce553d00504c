# mosaicon_options: what every target of this project is compiled with.
add_library(mosaicon_options INTERFACE)
target_compile_features(mosaicon_options INTERFACE cxx_std_20)
target_include_directories(mosaicon_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(mosaicon_options INTERFACE -Wall -Wextra -Werror)
# An index that is out of range ends the program there and then.
target_compile_definitions(mosaicon_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns about every "literal" + std::string when it optimises (its bug 105651).
  target_compile_options(mosaicon_options INTERFACE -Wno-restrict)
endif()

if(MOSAICON_SANITIZE)
  target_compile_options(mosaicon_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(mosaicon_options INTERFACE -fsanitize=address,undefined)
endif()

if(MOSAICON_FUZZ)
  target_compile_options(mosaicon_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Neither where this checkout is nor when it was built is told by what is built.
target_compile_options(mosaicon_options INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>)
if(WIN32)
  target_link_options(mosaicon_options INTERFACE -Wl,--no-insert-timestamp)
  # With line numbers, for reports of crashes; packages keep them in an archive of their own.
  target_compile_options(mosaicon_options INTERFACE $<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:C,CXX>>:-g1>)
  # The 8-bit API throughout; the rest keeps windows.h small and its macros away from our names.
  target_compile_definitions(mosaicon_options INTERFACE
    _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
endif()
