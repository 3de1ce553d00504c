#include "tiler/output_folder.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <vector>

#include "files/path_text.h"
#include "files/unfinished.h"
#include "files/write_file.h"
#include "tiler/map_page.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

namespace fs = std::filesystem;

// That a name begins with: of a level's folder, a column's, or of a file of a tile.
std::optional<int> NumberOf(const fs::path& entry) {
  const std::string name = files::Utf8Of(entry.filename());
  int number = 0;
  const auto read = std::from_chars(name.data(), name.data() + name.size(), number);
  if (read.ec != std::errc() || number < 0) return std::nullopt;
  return number;
}

// Of a folder that cannot be looked into: nothing.
std::vector<fs::path> EntriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    entries.push_back(entry->path());
  }
  return entries;
}

bool IsPartial(const fs::path& file) {
  return file.extension() == files::kPartialSuffix;
}

void Remove(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
}

// With patience for virus scanners that hold a new file for a moment.
std::error_code Replace(const fs::path& source, const fs::path& target) {
  using std::chrono::milliseconds;
  std::error_code failed;
  for (const auto delay : {milliseconds(50), milliseconds(200), milliseconds(500), milliseconds(0)}) {
    failed = files::MoveFileOver(source, target);
    if (!files::IsHeldOpen(failed)) return failed;
    std::this_thread::sleep_for(delay);
  }
  return failed;
}

void WriteWhole(const fs::path& path, std::string_view content) {
  fs::path partial = path;
  partial += files::kPartialSuffix;
  std::error_code failed = files::WriteFile(partial, content);
  if (!failed) failed = Replace(partial, path);
  if (!failed) return;
  std::error_code ignored;
  fs::remove(partial, ignored);
  throw TilerError("could not write " + files::Utf8Of(path) + ": " + files::WordsFor(failed));
}

void CreateFolders(const fs::path& path) {
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return;
  if (path.has_relative_path()) CreateFolders(path.parent_path());
  if (const std::error_code failed = files::MakeFolder(path))
    throw TilerError(files::Utf8Of(path) + ": " + files::WordsFor(failed));
}

}  // namespace

OutputFolder::OutputFolder(const std::string& path) : m_path(files::PathOf(path)) {}

std::string OutputFolder::Name() const {
  return files::Utf8Of(m_path.filename());
}

void OutputFolder::RemovePartialFiles() const {
  for (const fs::path& folder : {m_path, m_path / kPageFolder}) {
    for (const fs::path& entry : EntriesOf(folder)) {
      if (IsPartial(entry)) Remove(entry);
    }
  }
  RemovePartialTiles([](const TileId&) { return true; });
}

void OutputFolder::RemovePartialTiles(const std::function<bool(const TileId& tile)>& which) const {
  for (const fs::path& level : EntriesOf(m_path)) {
    if (!NumberOf(level)) continue;
    for (const fs::path& column : EntriesOf(level)) {
      if (!NumberOf(column)) continue;
      for (const fs::path& file : EntriesOf(column)) {
        const auto row = IsPartial(file) ? NumberOf(file) : std::nullopt;
        if (row && which({*NumberOf(level), *NumberOf(column), *row})) Remove(file);
      }
    }
  }
}

void OutputFolder::RemoveOldDocument() const {
  std::error_code failed;
  fs::remove(m_path / "doc.kml", failed);
  if (failed && failed != std::errc::not_a_directory) {
    throw TilerError(files::Utf8Of(m_path / "doc.kml") + ": " + files::WordsFor(failed));
  }
}

bool OutputFolder::HasTiles() const {
  const std::vector<fs::path> entries = EntriesOf(m_path);
  return std::any_of(entries.begin(), entries.end(), [](const fs::path& entry) { return NumberOf(entry); });
}

void OutputFolder::RemoveTile(const TileId& tile, const char* extension) const {
  Remove(TilePath(tile, extension));
}

void OutputFolder::Create() const {
  CreateFolders(m_path);
}

void OutputFolder::CreateColumn(int level, int column) const {
  CreateFolders(ColumnOf(level, column));
}

void OutputFolder::WriteTile(const TileId& tile, const char* extension, std::string_view content) const {
  WriteWhole(TilePath(tile, extension), content);
}

std::optional<std::string> OutputFolder::ReadTile(const TileId& tile, const char* extension) const {
  std::ifstream file(TilePath(tile, extension), std::ios::binary);
  if (!file) return std::nullopt;
  std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) return std::nullopt;
  return content;
}

void OutputFolder::WritePage(const char* name, std::string_view content) const {
  WriteWhole(m_path / name, content);
}

void OutputFolder::WritePageFile(const char* folder, const char* name, std::string_view content) const {
  CreateFolders(m_path / folder);
  WriteWhole(m_path / folder / name, content);
}

fs::path OutputFolder::TilePath(const TileId& tile, const char* extension) const {
  return ColumnOf(tile.level, tile.column) / (std::to_string(tile.row) + "." + extension);
}

fs::path OutputFolder::ColumnOf(int level, int column) const {
  return m_path / std::to_string(level) / std::to_string(column);
}

}  // namespace tiler
