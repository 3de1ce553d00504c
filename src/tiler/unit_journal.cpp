#include "tiler/unit_journal.h"

#include <iterator>

namespace tiler {

namespace {

JournalEntries Read(const std::filesystem::path& path, const std::string& run) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return {};
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return ParseJournal(text, run);
}

}  // namespace

UnitJournal::UnitJournal(const std::filesystem::path& path, const std::string& run)
    : m_finished(Read(path, run).finished) {
  m_file.open(path, std::ios::binary | std::ios::trunc);
  m_file << FirstJournalLine(run);
  for (const auto& [unit, checksum] : m_finished) m_file << JournalLine(unit, checksum);
  m_file.flush();
}

void UnitJournal::TakeOver(const std::filesystem::path& other, const std::string& run) {
  m_finished.merge(Read(other, run).finished);
}

std::optional<std::uint32_t> UnitJournal::ChecksumOf(const TileId& unit) const {
  const auto found = m_finished.find(unit);
  if (found == m_finished.end()) return std::nullopt;
  return found->second;
}

void UnitJournal::Add(const TileId& unit, std::uint32_t checksum) {
  const std::lock_guard lock(m_mutex);
  m_file << JournalLine(unit, checksum) << std::flush;
  m_file.clear();
}

bool UnitJournal::Complete() {
  const std::lock_guard lock(m_mutex);
  m_file << kLastJournalLine << std::flush;
  return m_file.good();
}

void UnitJournal::Close() {
  const std::lock_guard lock(m_mutex);
  m_file.close();
}

JournalState StateOfJournal(const std::filesystem::path& path, const std::string& run) {
  return Read(path, run).state;
}

}  // namespace tiler
