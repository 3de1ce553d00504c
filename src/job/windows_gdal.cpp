#include "job/windows_gdal.h"

#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <windows.h>

#include <vector>

#include "job/tool_paths.h"
#include "kvtools/split_path.h"

namespace {

// PROJ takes paths in UTF-8.
std::string ToUtf8(const std::string& text) {
  std::vector<wchar_t> wide(text.size() + 1);
  MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
  std::vector<char> narrow(3 * wide.size() + 1);
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), -1, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                      nullptr);
  return narrow.data();
}

}  // namespace

void SetUpGdal(const std::string& programPath) {
  // No environment variables: they would reach the interpreter, whose own GDAL differs.
  CPLSetConfigOption("GDAL_FILENAME_IS_UTF8", "NO");
  CPLSetConfigOption("GDAL_DATA", (MakeToolPaths(programPath).folder + "\\gdal-data").c_str());
  const PathParts program = SplitPath(programPath);
  const std::string projData = ToUtf8(program.drive + program.directory + "share\\proj");
  const char* const searchPaths[] = {projData.c_str(), nullptr};
  OSRSetPROJSearchPaths(searchPaths);
  // The callers look at results; GDAL's own words would go to a console that nobody sees.
  CPLSetErrorHandler(CPLQuietErrorHandler);
  GDALAllRegister();
  OGRRegisterAll();
}
