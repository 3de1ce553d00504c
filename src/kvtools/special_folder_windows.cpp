#include <windows.h>
// After windows.h, which it needs.
#include <shlobj.h>

#include "kvtools/kvtools.h"

std::string KVT_GetSpecialFolder(int csidl) {
  char path[MAX_PATH] = "";
  if (SHGetFolderPathA(nullptr, csidl | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, path) != S_OK) {
    return "";
  }
  return KVT_OptimizePath(path, 0);
}
