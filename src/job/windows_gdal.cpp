#include "job/windows_gdal.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "files/utf8_text.h"
#include "job/tool_paths.h"
#include "kvtools/split_path.h"

void SetUpGdal(const std::string& programPath) {
  // No environment variables: they would reach the interpreter, whose own GDAL differs.
  CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
  CPLSetConfigOption("GDAL_DATA", (MakeToolPaths(programPath).folder + "\\gdal-data").c_str());
  const PathParts program = SplitPath(programPath);
  // PROJ takes paths in UTF-8.
  const std::string projData = Utf8FromAnsi(program.drive + program.directory + "share\\proj");
  const char* const searchPaths[] = {projData.c_str(), nullptr};
  OSRSetPROJSearchPaths(searchPaths);
  // The callers look at results; GDAL's own words would go to a console that nobody sees.
  CPLSetErrorHandler(CPLQuietErrorHandler);
  GDALAllRegister();
  OGRRegisterAll();
}
