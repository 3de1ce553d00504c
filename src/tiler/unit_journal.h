// What of a run is finished, for a run that takes up one that was ended before, or what others have made.
#ifndef MOSAICON_TILER_UNIT_JOURNAL_H_
#define MOSAICON_TILER_UNIT_JOURNAL_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "files/write_file.h"
#include "tiler/journal_text.h"

namespace tiler {

// A text file in the output folder: a line for each unit of tiles and each tile above them whose files were
// all written and closed, and a last one when all are that the journal is kept of. It only grows, so that a
// run that is killed loses none of it. A line that cannot be written is lost without a word: the tiles are
// made again then. Any thread.
class UnitJournal {
 public:
  // Takes up what is there when it belongs to this run, else begins anew. run: see journal_text.h. Throws
  // TilerError when another run has it open: two that make the same tiles would write the same files.
  UnitJournal(const std::filesystem::path& path, const std::string& run);

  // Why the file cannot be written; no error when it can.
  std::error_code Failure() const { return m_failure; }

  // Takes over what another journal of the same run has. Before anything is added.
  void TakeOver(const std::filesystem::path& other, const std::string& run);

  // Of all files of a unit that was finished before, or of a tile above the units; nullopt when it was not.
  std::optional<std::uint32_t> ChecksumOf(const TileId& unit) const;
  void Add(const TileId& unit, std::uint32_t checksum);
  // All is finished, and nothing is added any more. The error when that could not be written.
  std::error_code Complete();
  // Lets go of the file, which may be removed then.
  void Close();

 private:
  // Leaves no part of a text that does not fit.
  std::error_code Append(std::string_view text);

  std::map<TileId, std::uint32_t> m_finished;  // before this run
  std::error_code m_failure;
  std::mutex m_mutex;
  files::LockedFile m_file;
  std::size_t m_size = 0;  // of the file, in bytes
};

// Without taking it up.
JournalState StateOfJournal(const std::filesystem::path& path, const std::string& run);

}  // namespace tiler

#endif  // MOSAICON_TILER_UNIT_JOURNAL_H_
