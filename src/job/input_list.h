// Turns what the user chose, a file or a folder, into the list of orthophotos of a job. Portable;
// reads files through GDAL.
#ifndef MOSAICON_JOB_INPUT_LIST_H_
#define MOSAICON_JOB_INPUT_LIST_H_

#include <string>
#include <vector>

#include "files/file_system.h"
#include "job/job_host.h"
#include "job/tif_data.h"

// Told of every file of a folder that was passed over because its georeference could not be read.
class SkippedFileObserver {
 public:
  virtual ~SkippedFileObserver() = default;
  virtual void OnSkipped(const std::string& path) = 0;
};

// The "*.tif" files directly in a folder, in the system's order.
std::vector<std::string> FindOrthophotos(FileSystem& files, const std::string& folder);

// Rebuilds list from path: the one file itself, or with folderMode what FindOrthophotos finds
// in that folder. Shows a message when the list stays empty. An empty path leaves
// the list as it is. skipped may be null. Always returns 0; the caller looks at the list.
int ScanInput(const std::string& path, bool folderMode, FileSystem& files, MessageSink& messages,
              std::vector<CTifData>& list, SkippedFileObserver* skipped = nullptr);

// An input list is a text: paths, joined by "|".
std::string JoinInputList(const std::vector<std::string>& items);
// The same list with full paths.
std::string MakeInputListFull(const std::string& inputList, FileSystem& files);

// What an input list stands for.
struct RestoredInput {
  bool folderMode = false;            // more than one item
  std::string shownPath;              // the text itself, or the folder of the first item
  std::vector<CTifData> orthophotos;  // the items whose georeference could be read, in order
};

// An empty list gives an empty result.
RestoredInput RestoreInputList(const std::string& inputList);

#endif  // MOSAICON_JOB_INPUT_LIST_H_
