#include "tiler/unit_journal.h"

#include <fstream>
#include <iterator>
#include <utility>

#include "tiler/tiler_error.h"

namespace tiler {

namespace {

JournalEntries Read(const std::filesystem::path& path, const std::string& run) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return {};
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return ParseJournal(text, run);
}

}  // namespace

UnitJournal::UnitJournal(const std::filesystem::path& path, const std::string& run) {
  m_failure = m_file.Open(path);
  if (m_failure == std::errc::device_or_resource_busy) {
    throw TilerError("another run is at work on the same tiles");
  }
  if (m_failure) {
    m_finished = Read(path, run).finished;
    return;
  }
  const std::string text = m_file.Content();
  JournalEntries entries = ParseJournal(text, run);
  const bool isOurs = entries.state != JournalState::kOfAnotherRun;
  m_finished = std::move(entries.finished);
  m_size = isOurs ? text.rfind('\n') + 1 : 0;
  m_failure = m_file.CutTo(m_size);
  if (!m_failure) m_failure = Append(isOurs ? kTakenUpJournalLine : FirstJournalLine(run));
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
  if (m_file.IsOpen()) Append(JournalLine(unit, checksum));
}

std::error_code UnitJournal::Complete() {
  const std::lock_guard lock(m_mutex);
  if (!m_file.IsOpen()) return m_failure;
  const std::error_code failed = Append(kLastJournalLine);
  const std::error_code closing = m_file.Close();
  return failed ? failed : closing;
}

void UnitJournal::Close() {
  const std::lock_guard lock(m_mutex);
  m_file.Close();
}

std::error_code UnitJournal::Append(std::string_view text) {
  const std::error_code failed = m_file.Append(text);
  if (failed) {
    m_file.CutTo(m_size);
  } else {
    m_size += text.size();
  }
  return failed;
}

JournalState StateOfJournal(const std::filesystem::path& path, const std::string& run) {
  return Read(path, run).state;
}

}  // namespace tiler
