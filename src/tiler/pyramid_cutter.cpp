#include "tiler/pyramid_cutter.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

#include "tiler/kml_text.h"
#include "tiler/map_reader.h"
#include "tiler/output_folder.h"
#include "tiler/png_tile.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr int kUnitLevels = 2;

TileId Above(const TileId& tile) {
  return {tile.level - 1, tile.column / 2, tile.row / 2};
}

// Of the four that a tile stands for, as HalvedTile takes them.
std::size_t PlaceInAbove(const TileId& tile) {
  return static_cast<std::size_t>(tile.row % 2 * 2 + tile.column % 2);
}

Tile Halved(const std::array<Tile, 4>& finer) {
  std::array<const Tile*, 4> parts = {};
  for (std::size_t i = 0; i < finer.size(); ++i) parts[i] = finer[i].empty() ? nullptr : &finer[i];
  return HalvedTile(parts);
}

}  // namespace

// What a thread has for itself.
class PyramidCutter::Worker {
 public:
  explicit Worker(PyramidCutter& cutter)
      : m_cutter(cutter), m_reader(cutter.m_view, cutter.m_log), m_encoder(cutter.m_view.colours) {}

  void MakeUnit(const TileId& unit) {
    TileId tile = unit;
    Tile pixels = Make(unit);
    std::array<Tile, 4> finer;
    while (tile.level > m_cutter.m_pyramid.Coarsest() &&
           m_cutter.IsComplete(tile, std::move(pixels), finer)) {
      tile = Above(tile);
      pixels = Halved(finer);
      Write(tile, pixels);
    }
  }

 private:
  // The tile, and all those that it stands for.
  Tile Make(const TileId& tile) {
    if (m_cutter.IsOver()) throw Stopped();
    Tile pixels;
    if (tile.level == m_cutter.m_pyramid.Finest()) {
      pixels = m_reader.Read(m_cutter.m_pyramid.QueryOf(tile));
    } else {
      std::array<Tile, 4> finer;
      for (const TileId& each : m_cutter.Finer(tile)) finer[PlaceInAbove(each)] = Make(each);
      pixels = Halved(finer);
    }
    Write(tile, pixels);
    return pixels;
  }

  void Write(const TileId& tile, const Tile& pixels) {
    m_cutter.m_output.WriteTile(tile, "png", m_encoder.Encode(pixels));
    if (m_cutter.m_kml) m_cutter.m_output.WriteTile(tile, "kml", TileKml(tile, m_cutter.Finer(tile)));
    m_cutter.TellDone();
  }

  PyramidCutter& m_cutter;
  MapReader m_reader;
  PngEncoder m_encoder;
};

PyramidCutter::PyramidCutter(const MapView& view, const Pyramid& pyramid, const OutputFolder& output,
                             bool kml, RunLog& log)
    : m_view(view),
      m_pyramid(pyramid),
      m_output(output),
      m_kml(kml),
      m_log(log),
      m_unitLevel(std::max(pyramid.Coarsest(), pyramid.Finest() - kUnitLevels)) {}

void PyramidCutter::Cut(int threads, const std::atomic<bool>& stop, const OnTile& onTile) {
  m_stop = &stop;
  m_onTile = &onTile;
  CreateFolders();
  const std::vector<TileId> units = Units();
  {
    std::vector<std::jthread> others;
    const int useful =
        static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(threads), units.size()));
    for (int i = 1; i < useful; ++i) others.emplace_back([&] { Work(units); });
    Work(units);
  }
  if (m_failure) std::rethrow_exception(m_failure);
}

void PyramidCutter::Work(const std::vector<TileId>& units) {
  try {
    Worker worker(*this);
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

std::vector<TileId> PyramidCutter::Units() const {
  const TileRange& range = m_pyramid.Range(m_unitLevel);
  std::vector<TileId> units;
  for (int row = range.north; row >= range.south; --row) {
    for (int column = range.west; column <= range.east; ++column) units.push_back({m_unitLevel, column, row});
  }
  return units;
}

std::vector<TileId> PyramidCutter::Finer(const TileId& tile) const {
  std::vector<TileId> finer;
  if (tile.level == m_pyramid.Finest()) return finer;
  const TileRange& range = m_pyramid.Range(tile.level + 1);
  for (int row = std::min(range.north, 2 * tile.row + 1); row >= std::max(range.south, 2 * tile.row); --row) {
    for (int column = std::max(range.west, 2 * tile.column);
         column <= std::min(range.east, 2 * tile.column + 1); ++column) {
      finer.push_back({tile.level + 1, column, row});
    }
  }
  return finer;
}

void PyramidCutter::CreateFolders() const {
  for (int level = m_pyramid.Coarsest(); level <= m_pyramid.Finest(); ++level) {
    const TileRange& range = m_pyramid.Range(level);
    for (int column = range.west; column <= range.east; ++column) m_output.CreateColumn(level, column);
  }
}

void PyramidCutter::TellDone() {
  const std::lock_guard lock(m_mutex);
  (*m_onTile)(++m_done, m_pyramid.TileCount());
}

bool PyramidCutter::IsComplete(const TileId& tile, Tile pixels, std::array<Tile, 4>& tiles) {
  const TileId above = Above(tile);
  const std::size_t needed = Finer(above).size();
  const std::lock_guard lock(m_mutex);
  Waiting& waiting = m_waiting[above];
  waiting.tiles[PlaceInAbove(tile)] = std::move(pixels);
  if (++waiting.count < needed) return false;
  tiles = std::move(waiting.tiles);
  m_waiting.erase(above);
  return true;
}

}  // namespace tiler
