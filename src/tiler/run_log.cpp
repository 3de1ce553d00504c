#include "tiler/run_log.h"

#include <algorithm>

#include "tiler/console.h"

namespace tiler {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMostBytes = 1 << 20;
constexpr const char* kName = "gdal2tiles.log";

fs::path StandardPlace() {
  if (const fs::path local = PathFromEnvironment("LOCALAPPDATA"); !local.empty()) {
    return local / "Mosaicon" / "Logs" / kName;
  }
  fs::path state = PathFromEnvironment("XDG_STATE_HOME");
  if (state.empty()) state = PathFromEnvironment("HOME") / ".local" / "state";
  return state / "mosaicon" / kName;
}

fs::path PlaceOfLog() {
  fs::path place = PathFromEnvironment("MOSAICON_TILER_LOG");
  std::error_code failed;  // not there yet, or held open by another run: go on appending
  if (!place.empty()) {
    fs::create_directories(place.parent_path(), failed);
    return place;
  }
  place = StandardPlace();
  fs::create_directories(place.parent_path(), failed);
  if (const auto size = fs::file_size(place, failed); !failed && size > kMostBytes) {
    fs::path old = place;
    old += ".old";
    fs::rename(place, old, failed);
  }
  return place;
}

}  // namespace

RunLog::RunLog() : RunLog(PlaceOfLog()) {}

RunLog::RunLog(const fs::path& path) : m_path(path) {
  if (!path.empty()) m_file.open(path, std::ios::binary | std::ios::app);
}

void RunLog::Line(const std::string& text) {
  std::string line = text;
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  const std::lock_guard lock(m_mutex);
  m_file << line + "\n" << std::flush;
  m_file.clear();  // a disk that is full now may have room for the last line
}

}  // namespace tiler
