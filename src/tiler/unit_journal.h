// What of a run is finished, for a run that takes up one that was ended before.
#ifndef MOSAICON_TILER_UNIT_JOURNAL_H_
#define MOSAICON_TILER_UNIT_JOURNAL_H_

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "tiler/mercator.h"

namespace tiler {

// A text file in the output folder: a first line that says which run it belongs to, and one for each unit of
// tiles whose files were all written and closed. A line without its end does not count, nor does a file that
// belongs to another run. What cannot be written is lost without a word: the tiles are made again then. Any
// thread.
class UnitJournal {
 public:
  // Takes up what is there when it belongs to this run, else begins anew. run: a text without line breaks,
  // the same for all runs that make the same of the same, and another for any other.
  UnitJournal(const std::filesystem::path& path, const std::string& run);

  // Of all files of a unit that was finished before; nullopt when it was not.
  std::optional<std::uint32_t> ChecksumOf(const TileId& unit) const;
  void Add(const TileId& unit, std::uint32_t checksum);
  // When the run is complete.
  void Remove();

 private:
  std::filesystem::path m_path;
  std::map<TileId, std::uint32_t> m_finished;  // before this run
  std::mutex m_mutex;
  std::ofstream m_file;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_UNIT_JOURNAL_H_
