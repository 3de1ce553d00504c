#include "tiler/settled_request.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>

#include "tiler/run_log.h"

namespace tiler {

namespace {

// Empty when it is not set.
std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

int UsualThreads() {
  const int wanted = std::atoi(Variable("MOSAICON_TILER_PROCESSES").c_str());
  if (wanted > 0) return std::min(wanted, kMostThreads);
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

// What is to be as gdal2tiles makes it does not ask for the variables.
Resampling UsualResampling(Sampling sampling) {
  const std::string wanted = Variable("MOSAICON_TILER_RESAMPLING");
  return wanted.empty() || sampling != Sampling::kSharp ? Resampling::kAverage : ResamplingOf(wanted);
}

TileFormat UsualTiles(Sampling sampling) {
  const std::string wanted = Variable("MOSAICON_TILER_TILES");
  return wanted.empty() || sampling != Sampling::kSharp ? TileFormat::kPng : TileFormatOf(wanted);
}

}  // namespace

Request Settled(Request request, RunLog& log) {
  if (request.threads == 0) request.threads = UsualThreads();
  if (!request.resampling) request.resampling = UsualResampling(request.sampling);
  if (!request.tiles) request.tiles = UsualTiles(request.sampling);
  if (request.kml && *request.tiles == TileFormat::kWebp) {
    request.kml = false;
    log.Line("No KML is made: Google Earth does not show WebP images.");
  }
  return request;
}

}  // namespace tiler
