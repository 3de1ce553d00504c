# Finds GDAL as the target GDAL::GDAL, libdeflate as the target deflate and, for Windows, MOSAICON_GDAL_ROOT: the
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
foreach(found GDAL_DIR MOSAICON_DEFLATE_LIBRARY MOSAICON_DEFLATE_HEADERS)
  unset(${found} CACHE)
endforeach()
find_package(GDAL CONFIG REQUIRED)
find_library(MOSAICON_DEFLATE_LIBRARY deflate REQUIRED)
find_path(MOSAICON_DEFLATE_HEADERS libdeflate.h REQUIRED)
add_library(deflate INTERFACE)
target_include_directories(deflate SYSTEM INTERFACE ${MOSAICON_DEFLATE_HEADERS})
target_link_libraries(deflate INTERFACE ${MOSAICON_DEFLATE_LIBRARY})
