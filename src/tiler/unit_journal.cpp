#include "tiler/unit_journal.h"

#include <iterator>
#include <sstream>
#include <system_error>

namespace tiler {

namespace {

constexpr const char* kFirstWords = "mosaicon-tiles 1 ";

// Whole lines alone.
std::string LinesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  text.resize(text.rfind('\n') + 1);
  return text;
}

std::string LineOf(const TileId& unit, std::uint32_t checksum) {
  return std::to_string(unit.level) + " " + std::to_string(unit.column) + " " + std::to_string(unit.row) +
         " " + std::to_string(checksum) + "\n";
}

}  // namespace

UnitJournal::UnitJournal(const std::filesystem::path& path, const std::string& run) : m_path(path) {
  const std::string first = kFirstWords + run;
  std::istringstream before(LinesOf(path));
  std::string line;
  if (std::getline(before, line) && line == first) {
    while (std::getline(before, line)) {
      std::istringstream words(line);
      TileId unit;
      std::uint32_t checksum = 0;
      // Only what is written in the same way again was read well.
      if (words >> unit.level >> unit.column >> unit.row >> checksum &&
          LineOf(unit, checksum) == line + "\n") {
        m_finished[unit] = checksum;
      }
    }
  }
  m_file.open(path, std::ios::binary | std::ios::trunc);
  m_file << first << "\n";
  for (const auto& [unit, checksum] : m_finished) m_file << LineOf(unit, checksum);
  m_file.flush();
}

std::optional<std::uint32_t> UnitJournal::ChecksumOf(const TileId& unit) const {
  const auto found = m_finished.find(unit);
  if (found == m_finished.end()) return std::nullopt;
  return found->second;
}

void UnitJournal::Add(const TileId& unit, std::uint32_t checksum) {
  const std::lock_guard lock(m_mutex);
  m_file << LineOf(unit, checksum) << std::flush;
  m_file.clear();
}

void UnitJournal::Remove() {
  const std::lock_guard lock(m_mutex);
  m_file.close();
  std::error_code ignored;
  std::filesystem::remove(m_path, ignored);
}

}  // namespace tiler
