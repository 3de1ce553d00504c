// The text of a journal: which run it belongs to, and which units of tiles are finished. Portable, no state.
#ifndef MOSAICON_TILER_JOURNAL_TEXT_H_
#define MOSAICON_TILER_JOURNAL_TEXT_H_

#include <cstdint>
#include <map>
#include <string>

#include "tiler/mercator.h"

namespace tiler {

// Whether a journal is there and belongs to this run, and whether all is finished that it is kept of.
enum class JournalState { kNone, kOfAnotherRun, kUnfinished, kComplete };

struct JournalEntries {
  JournalState state = JournalState::kNone;
  std::map<TileId, std::uint32_t> finished;  // checksums of all files of each
};

// run: a text without line breaks, the same for all runs that make the same of the same, and another for any
// other. Of a text that belongs to another run nothing is taken, nor is a line without its end, or one that
// is not as it would have been written.
JournalEntries ParseJournal(const std::string& text, const std::string& run);

// Lines with their ends. A journal is complete when the line that says so is its last.
std::string FirstJournalLine(const std::string& run);
std::string JournalLine(const TileId& unit, std::uint32_t checksum);
inline constexpr const char* kTakenUpJournalLine = "taken up\n";
inline constexpr const char* kLastJournalLine = "complete\n";

}  // namespace tiler

#endif  // MOSAICON_TILER_JOURNAL_TEXT_H_
