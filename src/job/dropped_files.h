// What the user has dropped onto a window. Win32; paths in the ANSI code page.
#ifndef MOSAICON_JOB_DROPPED_FILES_H_
#define MOSAICON_JOB_DROPPED_FILES_H_

#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <string>
#include <vector>

#include "files/file_system.h"

// The paths of a WM_DROPFILES, sorted, as Explorer shows them in no useful order; drop is released.
std::vector<std::string> TakeDroppedFiles(HDROP drop);

// What several dropped paths stand for: files as they are, a folder as the orthophotos in it, each once.
std::vector<std::string> ListDroppedFiles(FileSystem& files, const std::vector<std::string>& paths);

#endif  // MOSAICON_JOB_DROPPED_FILES_H_
