// libFuzzer: of whatever a journal holds only lines are taken that a run has written, and they are taken
// again from what is written of them.
#include <cstddef>
#include <cstdint>
#include <string>

#include "tiler/journal_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using tiler::JournalEntries;
  using tiler::JournalState;
  const std::string run = "run a";
  const std::string text(data, data + size);
  const JournalEntries entries = tiler::ParseJournal(text, run);
  if (entries.state == JournalState::kNone) __builtin_trap();
  const bool isOurs = text.compare(0, tiler::FirstJournalLine(run).size(), tiler::FirstJournalLine(run)) == 0;
  if (isOurs == (entries.state == JournalState::kOfAnotherRun)) __builtin_trap();
  if (!isOurs && !entries.finished.empty()) __builtin_trap();

  std::string again = tiler::FirstJournalLine(run);
  for (const auto& [unit, checksum] : entries.finished) {
    const std::string line = tiler::JournalLine(unit, checksum);
    if (text.find("\n" + line) == std::string::npos) __builtin_trap();
    again += line;
  }
  if (tiler::ParseJournal(again, run).finished != entries.finished) __builtin_trap();
  return 0;
}
