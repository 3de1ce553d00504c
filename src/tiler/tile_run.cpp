#include "tiler/tile_run.h"

#include <gdal.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "files/path_text.h"
#include "files/write_file.h"
#include "tiler/damaged_place.h"
#include "tiler/kml_text.h"
#include "tiler/map_kml.h"
#include "tiler/map_page.h"
#include "tiler/map_pages.h"
#include "tiler/map_view.h"
#include "tiler/memory_plan.h"
#include "tiler/output_folder.h"
#include "tiler/progress_records.h"
#include "tiler/pyramid_cutter.h"
#include "tiler/see_through.h"
#include "tiler/settled_request.h"
#include "tiler/share_journals.h"
#include "tiler/source_image.h"
#include "tiler/tile_plan.h"
#include "tiler/tiler_error.h"
#include "tiler/unit_journal.h"

namespace tiler {

namespace {

constexpr const char* kDocument = "doc.kml";

// Where the tiles are from where doc.kml is wanted: the folder of the request, and this run's below it.
std::string UrlOfTiles(const Request& request, const OutputFolder& output) {
  if (request.url.empty()) return "";
  return request.url + (request.url.ends_with('/') ? "" : "/") + output.Name() + "/";
}

std::vector<TileId> CoarsestTiles(const Pyramid& pyramid) {
  const TileRange& range = pyramid.Range(pyramid.Coarsest());
  std::vector<TileId> tiles;
  for (int column = range.west; column <= range.east; ++column) {
    for (int row = range.south; row <= range.north; ++row) tiles.push_back({pyramid.Coarsest(), column, row});
  }
  return tiles;
}

// MOSAICON_TILER_DOCUMENTS is for who renames doc.kml afterwards: its name then, and behind a "|" that of the
// document with links for the web, if there will be one.
PageDocuments DocumentsFor(const Request& request) {
  if (!request.kml) return {};
  const char* names = std::getenv("MOSAICON_TILER_DOCUMENTS");
  if (names == nullptr || *names == '\0') {
    return {kDocument, request.url.find("://") == std::string::npos ? "" : kDocument};
  }
  const std::string both = names;
  const std::size_t sign = both.find('|');
  return {both.substr(0, sign), sign == std::string::npos ? "" : both.substr(sign + 1)};
}

void WritePages(const Request& request, const Pyramid& pyramid, const TileKinds& kinds,
                const OutputFolder& output) {
  const PageTexts texts = {request.title, request.key};
  const std::string url = UrlOfTiles(request, output);
  output.WritePage("googlemaps.html", GoogleMapsPage(pyramid, texts, kinds));
  if (request.sampling == Sampling::kSharp) {
    for (const PageFile& file : PageFiles()) output.WritePageFile(kPageFolder, file.name, file.content);
    output.WritePage("leaflet.html", MapPage(pyramid, request.title, DocumentsFor(request), kinds));
  } else {
    output.WritePage("leaflet.html", LeafletPage(pyramid, texts));
  }
  output.WritePage("openlayers.html", OpenLayersPage(pyramid, texts, kinds));
  output.WritePage("tilemapresource.xml", TileMapResource(pyramid, request.title, url, kinds));
  if (!request.kml) return;
  const std::vector<TileId> coarsest = CoarsestTiles(pyramid);
  output.WritePage(kDocument, request.sampling == Sampling::kSharp
                                  ? MapRootKml(request.title, url, coarsest, pyramid.Degrees())
                                  : RootKml(request.title, url, coarsest));
}

// Changes with whatever changes a byte of the result, or which run makes it.
constexpr const char* kVersion = "3";

// The same text for all runs that make the same, of the same image, in the same pieces.
std::string IdentityOf(const Request& request, const SourceImage& source, const MapView& view,
                       int unitLevels) {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  const auto add = [&hash](const std::string& text) {
    for (const char c : text + '\0') hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  };
  for (const std::string& each :
       {std::string(kVersion), std::string(GDALVersionInfo("RELEASE_NAME")), source.State(), view.State()})
    add(each);
  add(request.kml ? "kml" : "");
  for (const TileKind kind : KindsOf(*request.tiles)) add(ExtensionOf(kind));
  add(std::to_string(unitLevels));
  return std::to_string(hash);
}

// Rows of the image that a tile of the finest level covers.
double RowsOfTile(const Pyramid& pyramid, const MapImage& image) {
  return kTileSize * Resolution(pyramid.Finest()) / -image.pixelHeight;
}

// GDAL keeps so many bytes of decoded blocks, for all threads.
void LimitMemory(const Request& request, const SourceImage& source, const MapView& view,
                 const Pyramid& pyramid, int unitLevels) {
  const std::int64_t memory = request.memory > 0 ? request.memory * kMebibyte : UsualMemory(request.threads);
  const int level = std::max(pyramid.Coarsest(), pyramid.Finest() - unitLevels);
  const std::int64_t waiting = WaitingFor(pyramid.Range(level).Columns());
  GDALSetCacheMax64(CacheFor(source.Layout(), RowsOfTile(pyramid, view.image), view.IsShared(),
                             request.threads, memory - waiting));
}

// What ended runs left. A share leaves alone what others may be writing at this moment.
void RemovePartialFiles(const OutputFolder& output, const Request& request, const TilePlan& plan) {
  if (request.share) {
    output.RemovePartialTiles([&plan](const TileId& tile) { return plan.Makes(tile); });
  } else {
    output.RemovePartialFiles();
  }
}

void FinishMap(const Request& request, const Pyramid& pyramid, const TileKinds& kinds,
               const OutputFolder& output, UnitJournal& journal) {
  WritePages(request, pyramid, kinds, output);
  journal.Close();
  RemoveJournals(output.Path());
}

// Without its journal a share would work for nothing.
void CheckWritten(const std::error_code& failure, const std::filesystem::path& path) {
  if (failure) throw TilerError("could not write " + files::Utf8Of(path) + ": " + files::WordsFor(failure));
}

}  // namespace

void RunTiler(const Request& asked, RunLog& log, ProgressRecords& records, const std::atomic<bool>& stop) {
  const Request request = Settled(asked, log);
  const OutputFolder output(request.output);
  CheckNobodyIsAtWork(output.Path(), request.share);
  const bool isAlone = !request.share && !request.merge;
  if (isAlone) output.RemovePartialFiles();
  if (isAlone) output.RemoveOldDocument();
  const bool isExact = request.sampling == Sampling::kSharp;
  const Request seen = isExact ? SeenThrough(request, log) : request;
  const SourceImage source(seen, log);
  records.Start();
  const MapView view =
      isExact ? MakeExactView(request, source, *request.resampling, log) : MakeMapView(source, log);
  const Pyramid pyramid(view.image);
  const int unitLevels = UnitLevelsFor(source.Layout(), RowsOfTile(pyramid, view.image), view.IsShared());
  const TilePlan plan(pyramid, unitLevels, request.share);
  LimitMemory(request, source, view, pyramid, unitLevels);
  const std::string identity = IdentityOf(request, source, view, unitLevels);
  std::vector<std::filesystem::path> shares;
  if (request.merge) shares = CompleteShares(output.Path(), identity);
  if (!isAlone) {
    RemovePartialFiles(output, request, plan);
    output.RemoveOldDocument();
  }
  output.Create();
  const std::filesystem::path path = JournalOf(output.Path(), request.share);
  UnitJournal journal(path, identity);
  if (request.share) CheckWritten(journal.Failure(), path);
  for (const std::filesystem::path& share : shares) journal.TakeOver(share, identity);
  try {
    PyramidCutter cutter(view, pyramid, plan, output, *request.tiles, request.kml, journal, log);
    cutter.Cut(request.threads, stop,
               [&](std::int64_t done, std::int64_t total) { records.Report(done, total); });
    if (request.share) {
      CheckWritten(journal.Complete(), path);
    } else {
      FinishMap(request, pyramid, cutter.Kinds(), output, journal);
    }
  } catch (const NotRead& failure) {
    RemovePartialFiles(output, request, plan);
    const std::string place = DamagedPlace(seen.input, stop, log);
    throw TilerError(failure.what() + (place.empty() ? "" : "; " + place));
  } catch (...) {
    RemovePartialFiles(output, request, plan);
    throw;
  }
  records.Finish();
}

}  // namespace tiler
