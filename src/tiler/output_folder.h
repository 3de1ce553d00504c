// The folder that tiles and pages are written to. A file in it is complete or absent: each is written under a
// partial name first. Any thread.
#ifndef MOSAICON_TILER_OUTPUT_FOLDER_H_
#define MOSAICON_TILER_OUTPUT_FOLDER_H_

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tiler/mercator.h"

namespace tiler {

class OutputFolder {
 public:
  // path: absolute, UTF-8. Nothing is made yet.
  explicit OutputFolder(const std::string& path);

  // Its last component, UTF-8.
  std::string Name() const;

  // Removes what killed runs left under partial names; looks only where tiles and pages are.
  void RemovePartialFiles() const;
  // The same for these tiles alone: others may be under way at this moment.
  void RemovePartialTiles(const std::function<bool(const TileId& tile)>& which) const;
  // Removes the doc.kml of an earlier run: whoever finds one takes it for this run's. Throws TilerError when
  // it stays.
  void RemoveOldDocument() const;

  // Whether there is anything in it that may be of a map.
  bool HasTiles() const;
  // One that is not there, or stays, is no failure.
  void RemoveTile(const TileId& tile, const char* extension) const;

  // All of these throw TilerError. The folder itself, with those above it.
  void Create() const;
  void CreateColumn(int level, int column) const;
  // extension: without its dot.
  void WriteTile(const TileId& tile, const char* extension, std::string_view content) const;
  // What such a file holds; nullopt when it cannot be read.
  std::optional<std::string> ReadTile(const TileId& tile, const char* extension) const;
  const std::filesystem::path& Path() const { return m_path; }
  // name: of a file in the folder itself.
  void WritePage(const char* name, std::string_view content) const;
  // folder: in the folder itself; is made when it is not there.
  void WritePageFile(const char* folder, const char* name, std::string_view content) const;

 private:
  std::filesystem::path ColumnOf(int level, int column) const;
  std::filesystem::path TilePath(const TileId& tile, const char* extension) const;

  std::filesystem::path m_path;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_OUTPUT_FOLDER_H_
