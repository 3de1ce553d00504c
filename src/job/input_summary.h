// What the window says of the chosen orthophotos before a job. Portable, no state.
#ifndef MOSAICON_JOB_INPUT_SUMMARY_H_
#define MOSAICON_JOB_INPUT_SUMMARY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "job/tif_data.h"
#include "tiler/tile_kind.h"

// What a map will be like, from the corners of the orthophoto alone.
struct MapForecast {
  int coarsest = 0;  // zoom levels
  int finest = 0;
  int64_t tiles = 0;
  double bytes = 0;  // of the tiles, if they show a photograph
};

// Right to within one level and a few tiles: the tiler looks at more than the corners. All zero for data
// without four corners.
MapForecast ForecastOf(const CTifData& data, tiler::TileFormat tiles);

// Two lines with "\n" between them: how large the orthophotos are and where they lie, and what their maps
// will be like. Without orthophotos, what to do first.
std::string SummaryOf(const std::vector<CTifData>& orthophotos, tiler::TileFormat tiles);

#endif  // MOSAICON_JOB_INPUT_SUMMARY_H_
