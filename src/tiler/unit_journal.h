// What of a run is finished, for a run that takes up one that was ended before, or what others have made.
#ifndef MOSAICON_TILER_UNIT_JOURNAL_H_
#define MOSAICON_TILER_UNIT_JOURNAL_H_

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "tiler/journal_text.h"

namespace tiler {

// A text file in the output folder: a line for each unit of tiles and each tile above them whose files were
// all written and closed, and a last one when all are that the journal is kept of. What cannot be written is
// lost without a word: the tiles are made again then. Any thread.
class UnitJournal {
 public:
  // Takes up what is there when it belongs to this run, else begins anew. run: see journal_text.h.
  UnitJournal(const std::filesystem::path& path, const std::string& run);

  // Takes over what another journal of the same run has. Before anything is added.
  void TakeOver(const std::filesystem::path& other, const std::string& run);

  // Of all files of a unit that was finished before, or of a tile above the units; nullopt when it was not.
  std::optional<std::uint32_t> ChecksumOf(const TileId& unit) const;
  void Add(const TileId& unit, std::uint32_t checksum);
  // All is finished. False when that could not be written.
  bool Complete();
  // Lets go of the file, which may be removed then.
  void Close();

 private:
  std::map<TileId, std::uint32_t> m_finished;  // before this run
  std::mutex m_mutex;
  std::ofstream m_file;
};

// Without taking it up.
JournalState StateOfJournal(const std::filesystem::path& path, const std::string& run);

}  // namespace tiler

#endif  // MOSAICON_TILER_UNIT_JOURNAL_H_
