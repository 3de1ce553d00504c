#include "tiler/journal_text.h"

#include <sstream>

namespace tiler {

JournalEntries ParseJournal(const std::string& text, const std::string& run) {
  std::istringstream lines(text.substr(0, text.rfind('\n') + 1));
  std::string line;
  JournalEntries entries;
  entries.state = JournalState::kOfAnotherRun;
  if (!std::getline(lines, line) || line + "\n" != FirstJournalLine(run)) return entries;
  entries.state = JournalState::kUnfinished;
  while (std::getline(lines, line)) {
    line += "\n";
    entries.state = line == kLastJournalLine ? JournalState::kComplete : JournalState::kUnfinished;
    std::istringstream words(line);
    TileId unit;
    std::uint32_t checksum = 0;
    if (words >> unit.level >> unit.column >> unit.row >> checksum && JournalLine(unit, checksum) == line) {
      entries.finished[unit] = checksum;
    }
  }
  return entries;
}

std::string FirstJournalLine(const std::string& run) {
  return "mosaicon-tiles 1 " + run + "\n";
}

std::string JournalLine(const TileId& unit, std::uint32_t checksum) {
  return std::to_string(unit.level) + " " + std::to_string(unit.column) + " " + std::to_string(unit.row) +
         " " + std::to_string(checksum) + "\n";
}

}  // namespace tiler
