# Finds GDAL as the target GDAL::GDAL and, for Windows, MOSAICON_GDAL_ROOT: the folder whose bin,
# lib and share go into the program's folder.
if(WIN32)
  if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/cmake/gdal/build --where
      OUTPUT_VARIABLE MOSAICON_GDAL_ROOT OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE gdal_missing)
    if(gdal_missing)
      message(FATAL_ERROR "GDAL for Windows is not built yet: run cmake/gdal/build")
    endif()
  else()
    # An MSYS2 shell names the folder of its packages.
    file(TO_CMAKE_PATH "$ENV{MSYSTEM_PREFIX}" MOSAICON_GDAL_ROOT)
  endif()
  list(PREPEND CMAKE_FIND_ROOT_PATH ${MOSAICON_GDAL_ROOT})
  list(PREPEND CMAKE_PREFIX_PATH ${MOSAICON_GDAL_ROOT})
endif()
find_package(GDAL CONFIG REQUIRED)
