// Files of an output folder that are not complete. Whatever writes there, the tiling script and its
// workers included, does so under a name with an extension of its own and renames at the end; a process
// that is killed leaves such a file, and an upload would publish it. Portable.
#ifndef MOSAICON_JOB_PARTIAL_FILES_H_
#define MOSAICON_JOB_PARTIAL_FILES_H_

#include <string>

#include "files/file_system.h"

inline constexpr char kPartialExtension[] = "~mos";

// Removes them from an output folder and its folders of tiles (<level>\<column>); looks nowhere else.
// Takes up to two seconds when one of them is still held by a process that is ending.
void RemovePartialFiles(const std::string& folder, FileSystem& files);

#endif  // MOSAICON_JOB_PARTIAL_FILES_H_
