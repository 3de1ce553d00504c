// Paths that our splitter and the C run-time's must take apart in the same way.
#ifndef MOSAICON_KVTOOLS_TESTING_SPLIT_PATH_CASES_H_
#define MOSAICON_KVTOOLS_TESTING_SPLIT_PATH_CASES_H_

#include <vector>

#include "kvtools/split_path.h"

struct SplitPathCase {
  const char* path;
  PathParts parts;
};

inline const std::vector<SplitPathCase>& SplitPathCases() {
  static const std::vector<SplitPathCase> cases = {
      {"d:\\maps\\a.tif", {"d:", "\\maps\\", "a", ".tif"}},
      {"d:\\maps\\", {"d:", "\\maps\\", "", ""}},
      {"d:\\my maps\\.jpg", {"d:", "\\my maps\\", "", ".jpg"}},
      {"d:\\maps.v2\\a", {"d:", "\\maps.v2\\", "a", ""}},
      {"d:\\a.b.c", {"d:", "\\", "a.b", ".c"}},
      {"d:a.tif", {"d:", "", "a", ".tif"}},
      {"d:", {"d:", "", "", ""}},
      {"a", {"", "", "a", ""}},
      {"a.", {"", "", "a", "."}},
      {"", {"", "", "", ""}},
      {"/maps/x/a.tif", {"", "/maps/x/", "a", ".tif"}},
      {"d:/maps\\a.tif", {"d:", "/maps\\", "a", ".tif"}},
      {"\\\\server\\share\\a.tif", {"", "\\\\server\\share\\", "a", ".tif"}},
  };
  return cases;
}

#endif  // MOSAICON_KVTOOLS_TESTING_SPLIT_PATH_CASES_H_
