// Gathers the orthophotos that the arguments name. Win32 paths; reads files through GDAL.
#ifndef MOSAICON_BATCH_INPUTS_H_
#define MOSAICON_BATCH_INPUTS_H_

#include <string>
#include <vector>

#include "files/file_system.h"
#include "job/job_host.h"
#include "job/tif_data.h"

struct BatchInputs {
  std::vector<CTifData> orthophotos;
  size_t refused = 0;  // files and folders that cannot be used; each was told
};

// Reads every input, a file or a folder of "*.tif" files, in order. Relative paths are relative to
// the current directory.
BatchInputs GatherInputs(const std::vector<std::string>& inputs, FileSystem& files, MessageSink& messages);

#endif  // MOSAICON_BATCH_INPUTS_H_
