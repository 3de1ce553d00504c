# Finds GDAL as the target GDAL::GDAL, libdeflate as the target deflate, curl and OpenSSL as the targets CURL::libcurl and
# OpenSSL::Crypto, and for Windows MOSAICON_GDAL_ROOT: the
# folder whose bin, lib and share go into the program's folder.
if(WIN32)
  if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/cmake/libraries/build --where
      OUTPUT_VARIABLE MOSAICON_GDAL_ROOT OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE libraries_missing)
    if(libraries_missing)
      message(FATAL_ERROR "the libraries for Windows are not built yet: run cmake/libraries/build")
    endif()
  else()
    # An MSYS2 shell names the folder of its packages.
    file(TO_CMAKE_PATH "$ENV{MSYSTEM_PREFIX}" MOSAICON_GDAL_ROOT)
  endif()
  # For who packages the result.
  set(MOSAICON_GDAL_ROOT_FOUND "${MOSAICON_GDAL_ROOT}" CACHE INTERNAL "")
  list(PREPEND CMAKE_FIND_ROOT_PATH ${MOSAICON_GDAL_ROOT})
  list(PREPEND CMAKE_PREFIX_PATH ${MOSAICON_GDAL_ROOT})
endif()
# What was found before may belong to an older recipe.
foreach(found GDAL_DIR MOSAICON_DEFLATE_LIBRARY MOSAICON_DEFLATE_HEADERS MOSAICON_CURL_HEADERS)
  unset(${found} CACHE)
endforeach()
find_package(GDAL CONFIG REQUIRED)
find_library(MOSAICON_DEFLATE_LIBRARY deflate REQUIRED)
find_path(MOSAICON_DEFLATE_HEADERS libdeflate.h REQUIRED)
add_library(deflate INTERFACE)
target_include_directories(deflate SYSTEM INTERFACE ${MOSAICON_DEFLATE_HEADERS})
target_link_libraries(deflate INTERFACE ${MOSAICON_DEFLATE_LIBRARY})

if(NOT CMAKE_CROSSCOMPILING)
  find_package(CURL REQUIRED)
  find_package(OpenSSL REQUIRED)
  return()
endif()
# Static ones, with what they need in turn.
find_path(MOSAICON_CURL_HEADERS curl/curl.h REQUIRED)
set(static_folder ${MOSAICON_GDAL_ROOT}/lib)
add_library(OpenSSL::Crypto INTERFACE IMPORTED)
target_include_directories(OpenSSL::Crypto SYSTEM INTERFACE ${MOSAICON_CURL_HEADERS})
target_link_libraries(OpenSSL::Crypto INTERFACE ${static_folder}/libcrypto.a ws2_32 crypt32 bcrypt advapi32 user32 gdi32)
add_library(CURL::libcurl INTERFACE IMPORTED)
target_include_directories(CURL::libcurl SYSTEM INTERFACE ${MOSAICON_CURL_HEADERS})
target_compile_definitions(CURL::libcurl INTERFACE CURL_STATICLIB)
target_link_libraries(CURL::libcurl INTERFACE
  ${static_folder}/libcurl.a ${static_folder}/libssh2.a ${static_folder}/libssl.a OpenSSL::Crypto ${static_folder}/libz.a)
