#include "tiler/pyramid_cutter.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "tiler/decoded_tile.h"
#include "tiler/exact_tile.h"
#include "tiler/kml_text.h"
#include "tiler/output_folder.h"
#include "tiler/run_log.h"
#include "tiler/tile_encoder.h"
#include "tiler/tile_kinds.h"
#include "tiler/tile_reader.h"
#include "tiler/tiler_error.h"
#include "tiler/unit_journal.h"

namespace tiler {

namespace {

constexpr const char* kDocument = "kml";

// Of the four that a tile stands for, as JoinedTile takes them.
std::size_t PlaceInAbove(const TileId& tile) {
  return static_cast<std::size_t>(tile.row % 2 * 2 + tile.column % 2);
}

}  // namespace

// What a thread has for itself.
class PyramidCutter::Worker {
 public:
  explicit Worker(PyramidCutter& cutter)
      : m_cutter(cutter),
        m_reader(MakeTileReader(cutter.m_view, cutter.m_pyramid, cutter.m_log)),
        m_encoder(cutter.m_format, cutter.m_view.colours) {}

  void MakeUnit(const TileId& unit) {
    TileId tile = unit;
    Tile pixels;
    if (!TakeUp(unit, pixels)) {
      m_checksum = 0;
      pixels = AsWritten(Make(unit));
      m_cutter.m_journal.Add(unit, m_checksum);
    }
    Parts parts;
    while (m_cutter.m_plan.Makes(Above(tile)) &&
           m_cutter.IsComplete(Shown(tile, pixels), Halved(pixels), parts)) {
      tile = Above(tile);
      pixels = JoinedTile(parts.quarters);
      if (IsThere(tile)) continue;
      m_checksum = 0;
      Write(tile, pixels, parts);
      m_cutter.m_journal.Add(tile, m_checksum);
    }
  }

 private:
  bool TakeUp(const TileId& unit, Tile& pixels) {
    const auto wanted = m_cutter.m_journal.ChecksumOf(unit);
    m_checksum = 0;
    m_taken = 0;
    if (!wanted || !AddFiles(unit) || m_checksum != *wanted) return false;
    const auto read = DecodedTile(m_content);
    if (!read) return false;
    pixels = *read;
    for (; m_taken > 0; --m_taken) m_cutter.TellDone();
    return true;
  }

  // A tile above the units.
  bool IsThere(const TileId& tile) {
    const auto wanted = m_cutter.m_journal.ChecksumOf(tile);
    m_checksum = 0;
    if (!wanted || !AddOwnFiles(tile) || m_checksum != *wanted) return false;
    m_cutter.TellDone();
    return true;
  }

  // Of the tile, and of all those that it stands for, in the order in which Make writes them; false when one
  // is missing. Leaves the content of the tile's own image.
  bool AddFiles(const TileId& tile) {
    if (m_cutter.IsOver()) throw Stopped();
    for (const TileId& each : m_cutter.m_plan.Finer(tile)) {
      if (!AddFiles(each)) return false;
    }
    ++m_taken;
    return AddOwnFiles(tile);
  }

  bool AddOwnFiles(const TileId& tile) {
    for (const TileKind kind : KindsOf(m_cutter.m_format)) {
      auto content = m_cutter.m_output.ReadTile(tile, ExtensionOf(kind));
      if (!content) continue;
      m_content = std::move(*content);
      m_image = {kind, m_content};
      AddToChecksum(m_content);
      m_cutter.Note(tile, kind);
      if (!m_cutter.HasDocument(tile)) return true;
      const auto document = m_cutter.m_output.ReadTile(tile, kDocument);
      if (document) AddToChecksum(*document);
      return document.has_value();
    }
    return false;
  }

  void AddToChecksum(std::string_view content) {
    m_checksum = libdeflate_crc32(m_checksum, content.data(), content.size());
  }

  // The tile, and all those that it stands for.
  Tile Make(const TileId& tile) {
    if (m_cutter.IsOver()) throw Stopped();
    Tile pixels;
    Parts parts;
    if (tile.level == m_cutter.m_pyramid.Finest()) {
      pixels = m_reader->Read(tile);
    } else {
      for (const TileId& each : m_cutter.m_plan.Finer(tile)) {
        const Tile below = Make(each);
        parts.quarters[PlaceInAbove(each)] = Halved(below);
        parts.shown[PlaceInAbove(each)] = Shown(each, below);
      }
      pixels = JoinedTile(parts.quarters);
    }
    Write(tile, pixels, parts);
    return pixels;
  }

  // Of the tile that was written or read last.
  ShownTile Shown(const TileId& tile, const Tile& pixels) const {
    const bool isFinest = tile.level == m_cutter.m_pyramid.Finest();
    const bool isCoarsest = tile.level == m_cutter.m_pyramid.Coarsest();
    return {tile, m_image.kind, isCoarsest, isFinest, !isFinest && m_cutter.m_kml && IsTranslucent(pixels)};
  }

  Quarter Halved(const Tile& tile) const {
    return m_cutter.m_view.exact ? HalvedByOpacity(tile) : HalvedTile(tile);
  }

  void Write(const TileId& tile, const Tile& pixels, const Parts& parts) {
    m_image = m_encoder.Encode(pixels);
    WriteFile(tile, ExtensionOf(m_image.kind), m_image.content);
    if (m_cutter.HasDocument(tile)) WriteFile(tile, kDocument, Document(Shown(tile, pixels), parts));
    if (m_cutter.m_wasInUse) RemoveOldFiles(tile);
    m_cutter.Note(tile, m_image.kind);
    m_cutter.TellDone();
  }

  // Of a map that had other files: who takes the folder for what it is now has no use for them.
  void RemoveOldFiles(const TileId& tile) {
    for (const TileKind kind : {TileKind::kPng, TileKind::kJpeg, TileKind::kWebp}) {
      if (kind != m_image.kind) m_cutter.m_output.RemoveTile(tile, ExtensionOf(kind));
    }
    if (!m_cutter.HasDocument(tile)) m_cutter.m_output.RemoveTile(tile, kDocument);
  }

  std::string Document(const ShownTile& own, const Parts& parts) const {
    const std::vector<TileId> finer = m_cutter.m_plan.Finer(own.tile);
    if (!m_cutter.m_view.exact) return TileKml(own.tile, finer);
    std::vector<ShownTile> shown = {own};
    std::vector<TileId> linked;
    for (const TileId& each : finer) {
      if (m_cutter.HasDocument(each)) {
        linked.push_back(each);
        continue;
      }
      shown.push_back(parts.shown[PlaceInAbove(each)]);
      const std::vector<TileId> below = m_cutter.m_plan.Finer(each);
      linked.insert(linked.end(), below.begin(), below.end());
    }
    return MapTileKml(shown, linked);
  }

  // What a later run would read of the tile that was written last, so that it goes on with the same.
  Tile AsWritten(Tile pixels) const {
    if (m_image.kind == TileKind::kPng) return pixels;
    auto read = DecodedTile(std::string(m_image.content));
    if (!read) throw TilerError("a tile could not be read after it was written");
    return std::move(*read);
  }

  void WriteFile(const TileId& tile, const char* extension, std::string_view content) {
    m_cutter.m_output.WriteTile(tile, extension, content);
    AddToChecksum(content);
  }

  PyramidCutter& m_cutter;
  std::unique_ptr<TileReader> m_reader;
  TileEncoder m_encoder;
  EncodedTile m_image;           // the one that was written or read last
  std::uint32_t m_checksum = 0;  // of the files of a unit
  std::int64_t m_taken = 0;      // tiles of a unit that was finished before
  std::string m_content;
};

PyramidCutter::PyramidCutter(const MapView& view, const Pyramid& pyramid, const TilePlan& plan,
                             const OutputFolder& output, TileFormat format, bool kml, UnitJournal& journal,
                             RunLog& log)
    : m_view(view),
      m_pyramid(pyramid),
      m_plan(plan),
      m_total(plan.TileCount()),
      m_output(output),
      m_format(format),
      m_kml(kml),
      m_journal(journal),
      m_log(log),
      m_kinds(pyramid, format) {}

void PyramidCutter::Cut(int threads, const std::atomic<bool>& stop, const OnTile& onTile) {
  m_stop = &stop;
  m_onTile = &onTile;
  m_wasInUse = m_output.HasTiles();
  CreateFolders();
  {
    std::vector<std::jthread> others;
    const auto useful = std::min(static_cast<std::size_t>(threads), m_plan.Units().size());
    try {
      for (std::size_t i = 1; i < useful; ++i) others.emplace_back([this] { Work(); });
    } catch (const std::system_error&) {
      m_log.Line("The system gives no more than " + std::to_string(others.size() + 1) + " threads.");
    }
    Work();
  }
  if (m_failure) std::rethrow_exception(m_failure);
}

void PyramidCutter::Work() {
  try {
    Worker worker(*this);
    const std::vector<TileId>& units = m_plan.Units();
    for (std::size_t next = m_nextUnit++; next < units.size(); next = m_nextUnit++) {
      worker.MakeUnit(units[next]);
    }
  } catch (...) {
    Fail();
  }
}

void PyramidCutter::Fail() {
  const std::lock_guard lock(m_mutex);
  if (!m_failure) m_failure = std::current_exception();
  m_failed = true;
}

bool PyramidCutter::HasDocument(const TileId& tile) const {
  return m_kml && (!m_view.exact || BeginsFile(tile.level, m_pyramid.Coarsest(), m_pyramid.Finest()));
}

void PyramidCutter::CreateFolders() const {
  for (int level = m_pyramid.Coarsest(); level <= m_pyramid.Finest(); ++level) {
    const TileRange& range = m_pyramid.Range(level);
    for (int column = range.west; column <= range.east; ++column) m_output.CreateColumn(level, column);
  }
}

void PyramidCutter::TellDone() {
  const std::lock_guard lock(m_mutex);
  (*m_onTile)(++m_done, m_total);
}

void PyramidCutter::Note(const TileId& tile, TileKind kind) {
  const std::lock_guard lock(m_mutex);
  m_kinds.Set(tile, kind);
}

bool PyramidCutter::IsComplete(const ShownTile& shown, Quarter quarter, Parts& parts) {
  const TileId above = Above(shown.tile);
  const std::size_t needed = m_plan.Finer(above).size();
  const std::lock_guard lock(m_mutex);
  Waiting& waiting = m_waiting[above];
  waiting.parts.quarters[PlaceInAbove(shown.tile)] = std::move(quarter);
  waiting.parts.shown[PlaceInAbove(shown.tile)] = shown;
  if (++waiting.count < needed) return false;
  parts = std::move(waiting.parts);
  m_waiting.erase(above);
  return true;
}

}  // namespace tiler
