#include "tiler/tile_run.h"

#include <gdal.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "tiler/kml_text.h"
#include "tiler/map_pages.h"
#include "tiler/map_view.h"
#include "tiler/output_folder.h"
#include "tiler/progress_records.h"
#include "tiler/pyramid_cutter.h"
#include "tiler/source_image.h"
#include "tiler/unit_journal.h"

namespace tiler {

namespace {

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

void WritePages(const Request& request, const Pyramid& pyramid, const OutputFolder& output) {
  const PageTexts texts = {request.title, request.key};
  const std::string url = UrlOfTiles(request, output);
  output.WritePage("googlemaps.html", GoogleMapsPage(pyramid, texts));
  output.WritePage("leaflet.html", LeafletPage(pyramid, texts));
  output.WritePage("openlayers.html", OpenLayersPage(pyramid, texts));
  output.WritePage("tilemapresource.xml", TileMapResource(pyramid, request.title, url));
  if (request.kml) output.WritePage("doc.kml", RootKml(request.title, url, CoarsestTiles(pyramid)));
}

// Changes with whatever changes a byte of the result.
constexpr const char* kVersion = "1";

// The same text for all runs that make the same, of the same image.
std::string IdentityOf(const Request& request, const SourceImage& source, const MapView& view) {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  const auto add = [&hash](const std::string& text) {
    for (const char c : text + '\0') hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  };
  for (const std::string& each :
       {std::string(kVersion), std::string(GDALVersionInfo("RELEASE_NAME")), source.State(), view.xml})
    add(each);
  add(request.kml ? "kml" : "");
  return std::to_string(hash);
}

// MOSAICON_TILER_PROCESSES is for who cannot change the command line.
int ThreadsFor(const Request& request) {
  if (request.threads > 0) return request.threads;
  const char* wanted = std::getenv("MOSAICON_TILER_PROCESSES");
  const int count = wanted == nullptr ? 0 : std::atoi(wanted);
  if (count > 0) return std::min(count, kMostThreads);
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

}  // namespace

void RunTiler(const Request& request, RunLog& log, ProgressRecords& records, const std::atomic<bool>& stop) {
  const OutputFolder output(request.output);
  output.RemovePartialFiles();
  output.RemoveOldDocument();
  const SourceImage source(request, log);
  records.Start();
  const MapView view = MakeMapView(source, log);
  const Pyramid pyramid(view.image);
  output.Create();
  UnitJournal journal(output.PathOf(".mosaicon-tiles"), IdentityOf(request, source, view));
  try {
    PyramidCutter(view, pyramid, output, request.kml, journal, log)
        .Cut(ThreadsFor(request), stop,
             [&](std::int64_t done, std::int64_t total) { records.Report(done, total); });
    WritePages(request, pyramid, output);
    journal.Remove();
  } catch (...) {
    output.RemovePartialFiles();
    throw;
  }
  records.Finish();
}

}  // namespace tiler
