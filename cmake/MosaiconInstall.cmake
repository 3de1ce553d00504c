# Lays out the program's folder, ready to run or to be zipped:
#   .            the programs and the DLLs that they load
#   gdal2tiles   the tool folder: scripts, GDAL's programs and data, and their DLLs
#   share/proj   PROJ's data, which it finds from the tool folder as ../share/proj
#   tutorial     the tutorials that the program opens
# The component "wine" adds python.exe for Linux hosts; it is not part of a release.
if(NOT WIN32)
  return()
endif()

# What is laid out, and what drives it: all that ./run needs.
add_custom_target(programs)
add_dependencies(programs crashrpt crashsender mosaicon mosaicon-batch mosaicon-tiler)
foreach(target drive_window wine_python)
  if(TARGET ${target})
    add_dependencies(programs ${target})
  endif()
endforeach()

install(PROGRAMS
  ${MOSAICON_GDAL_ROOT}/bin/gdal_translate.exe
  ${MOSAICON_GDAL_ROOT}/bin/gdalwarp.exe
  DESTINATION gdal2tiles)
install(DIRECTORY ${MOSAICON_GDAL_ROOT}/share/gdal/ DESTINATION gdal2tiles/gdal-data)
install(DIRECTORY DESTINATION gdal2tiles/gdalplugins)
install(DIRECTORY ${MOSAICON_GDAL_ROOT}/share/proj DESTINATION share)
install(FILES
  "${PROJECT_SOURCE_DIR}/docs/tutorials/MOS_InputOutput.pdf"
  "${PROJECT_SOURCE_DIR}/docs/tutorials/Setup a simple Web Server for ZPD datasets.pdf"
  DESTINATION tutorial)

# All DLLs that do not belong to Windows, beside the programs and beside the tools: a program finds
# them in its own folder only.
list(TRANSFORM MOSAICON_DLL_FOLDERS REPLACE "(.+)" "\"\\1\"" OUTPUT_VARIABLE quoted_dll_folders)
list(JOIN quoted_dll_folders " " quoted_dll_folders)
install(CODE "
  set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM windows+pe)
  set(CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL objdump)
  set(CMAKE_OBJDUMP \"${CMAKE_OBJDUMP}\")
  file(GET_RUNTIME_DEPENDENCIES
    EXECUTABLES \"$<TARGET_FILE:mosaicon-batch>\" \"${MOSAICON_GDAL_ROOT}/bin/gdalwarp.exe\"
    DIRECTORIES ${quoted_dll_folders}
    PRE_EXCLUDE_REGEXES \"^api-ms-\" \"^ext-ms-\"
    POST_EXCLUDE_REGEXES \".*[Ss]ystem32.*\"
    RESOLVED_DEPENDENCIES_VAR found
    UNRESOLVED_DEPENDENCIES_VAR of_windows)
  foreach(folder . gdal2tiles)
    file(INSTALL \${found} DESTINATION \"\${CMAKE_INSTALL_PREFIX}/\${folder}\" FOLLOW_SYMLINK_CHAIN)
    # Four fifths of the compiler's DLLs are debug information.
    foreach(path IN LISTS found)
      get_filename_component(name \"\${path}\" NAME)
      execute_process(
        COMMAND \"${CMAKE_STRIP}\" --strip-debug \"\${CMAKE_INSTALL_PREFIX}/\${folder}/\${name}\"
        COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
  endforeach()
")
