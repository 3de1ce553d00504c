// Cuts all tiles of a plan, with several threads.
#ifndef MOSAICON_TILER_PYRAMID_CUTTER_H_
#define MOSAICON_TILER_PYRAMID_CUTTER_H_

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "tiler/map_kml.h"
#include "tiler/map_view.h"
#include "tiler/tile_kinds.h"
#include "tiler/tile_pixels.h"
#include "tiler/tile_plan.h"

namespace tiler {

class OutputFolder;
class RunLog;
class UnitJournal;

// A thread makes a unit of the plan alone, each tile from the four below it, and holds no more than a few
// tiles meanwhile. Whoever makes the last of four tiles above the units goes on with the one that stands for
// them. So no tile is ever read again, no level waits for another, and what is written does not depend on who
// was quicker. A unit that the journal has, of an ended run or of other shares, and whose files are still
// what they were, is taken up as it is; so is a tile above the units.
class PyramidCutter {
 public:
  // After each tile, from any thread, one at a time.
  using OnTile = std::function<void(std::int64_t done, std::int64_t total)>;

  // format: another than PNG for exact views alone.
  PyramidCutter(const MapView& view, const Pyramid& pyramid, const TilePlan& plan, const OutputFolder& output,
                TileFormat format, bool kml, UnitJournal& journal, RunLog& log);

  // Throws TilerError, Stopped among them soon after stop becomes true, or std::bad_alloc. No thread is left
  // then.
  void Cut(int threads, const std::atomic<bool>& stop, const OnTile& onTile);

  // Of the tiles of the plan, when they are cut.
  const TileKinds& Kinds() const { return m_kinds; }

 private:
  class Worker;

  // What a tile needs of the four that it stands for, in the order of JoinedTile.
  struct Parts {
    std::array<Quarter, 4> quarters;
    std::array<ShownTile, 4> shown;
  };
  // What has come of it. It waits for the row below in wide images, so it is kept at the size that is needed.
  struct Waiting {
    Parts parts;
    std::size_t count = 0;
  };

  // Whether there is a document beside the tile.
  bool HasDocument(const TileId& tile) const;
  void CreateFolders() const;
  void Work();
  void Fail();
  bool IsOver() const { return m_failed || *m_stop; }
  void TellDone();
  void Note(const TileId& tile, TileKind kind);
  // Takes what the one above needs of a tile; when it was the last of them, moves them all to parts.
  bool IsComplete(const ShownTile& shown, Quarter quarter, Parts& parts);

  const MapView& m_view;
  const Pyramid& m_pyramid;
  const TilePlan& m_plan;
  const std::int64_t m_total;
  const OutputFolder& m_output;
  const TileFormat m_format;
  const bool m_kml;
  UnitJournal& m_journal;
  RunLog& m_log;

  const std::atomic<bool>* m_stop = nullptr;
  const OnTile* m_onTile = nullptr;
  bool m_wasInUse = false;  // the output folder
  std::atomic<std::size_t> m_nextUnit = 0;
  std::atomic<bool> m_failed = false;
  std::mutex m_mutex;  // of what follows
  std::map<TileId, Waiting> m_waiting;
  TileKinds m_kinds;
  std::int64_t m_done = 0;
  std::exception_ptr m_failure;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PYRAMID_CUTTER_H_
