// What the file system holds under a pattern. Internal to the program, beside the KVT_ functions. Any
// thread. The struct is portable; the functions are built for Windows only (kvtools_files).
#ifndef MOSAICON_KVTOOLS_FOUND_FILES_H_
#define MOSAICON_KVTOOLS_FOUND_FILES_H_

#include <string>
#include <vector>

struct FoundFile {
  std::string path;  // the pattern's folder and the name
  std::string name;  // last component
  bool isDirectory = false;
};

// Fills found (emptied first) with everything that matches a pattern such as "d:\maps\*.*", by the
// system's rules and in its order. Nothing is left out: "." and ".." are there when the system has them,
// and so are hidden files and links to folders.
//
// False when the search failed: the pattern's folder is missing, may not be read, is no folder, or the
// search broke off; found then holds what came before. That nothing matches is no failure.
bool FindFiles(const std::string& pattern, std::vector<FoundFile>& found);

// Whether path is a folder. What cannot be looked at is none.
bool IsFolder(const std::string& path);

#endif  // MOSAICON_KVTOOLS_FOUND_FILES_H_
