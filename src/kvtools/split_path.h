// Takes Windows paths apart and puts them together by the rules of the C run-time's _splitpath and
// _makepath, but with text of any length and on every system. Portable.
#ifndef MOSAICON_KVTOOLS_SPLIT_PATH_H_
#define MOSAICON_KVTOOLS_SPLIT_PATH_H_

#include <string>

struct PathParts {
  std::string drive;      // "d:", or empty
  std::string directory;  // with the separator at its end, or empty
  std::string name;       // without extension
  std::string extension;  // with the dot, or empty
};

// Both "\" and "/" separate directories. Joining the four parts in order gives the path again.
PathParts SplitPath(const std::string& path);

// Joins the parts; a colon after the drive, a "\" after the directory and a dot before the
// extension are added where they are missing and the part is not empty.
std::string JoinPath(const std::string& drive, const std::string& directory, const std::string& name,
                     const std::string& extension);

#endif  // MOSAICON_KVTOOLS_SPLIT_PATH_H_
