#include "tiler/map_limits.h"

#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tiler/gdal_objects.h"
#include "tiler/map_srs.h"
#include "tiler/mercator.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

constexpr double kHalfGlobe = 180.0;
constexpr int kSteps = 20;  // in each direction

struct Degrees {
  double longitude = 0;  // -180 to 180
  double latitude = 0;
};
using Line = std::vector<Degrees>;

// Centres of pixels from the first to the last: an image may end exactly at the limits.
std::vector<double> Positions(int size) {
  const int steps = std::min(kSteps, size - 1);
  std::vector<double> positions;
  for (int i = 0; i <= steps; ++i) {
    positions.push_back(0.5 + static_cast<double>(size - 1) * i / std::max(1, steps));
  }
  return positions;
}

// As far as from -180 to 180 degrees.
double Wrapped(double degrees) {
  double rest = std::fmod(degrees + kHalfGlobe, 2 * kHalfGlobe);
  if (rest < 0) rest += 2 * kHalfGlobe;
  return rest - kHalfGlobe;
}

// Rows of the image; empty when a part of it lies nowhere on the globe.
std::vector<Line> PlacesOnTheGlobe(GDALDataset& image, const OGRSpatialReference& srs) {
  OGRSpatialReference wgs84;
  wgs84.importFromEPSG(4326);
  CPLStringList options;
  options.SetNameValue("SRC_SRS", WktOf(srs).c_str());
  options.SetNameValue("DST_SRS", WktOf(wgs84).c_str());
  options.SetNameValue("INSERT_CENTER_LONG", "NO");
  const Transformer transformer(
      GDALCreateGenImgProjTransformer2(GDALDataset::ToHandle(&image), nullptr, options.List()));
  if (!transformer) return {};
  std::vector<Line> rows;
  for (const double y : Positions(image.GetRasterYSize())) {
    std::vector<double> xs = Positions(image.GetRasterXSize());
    std::vector<double> ys(xs.size(), y);
    std::vector<double> heights(xs.size(), 0.0);
    std::vector<int> found(xs.size(), FALSE);
    GDALGenImgProjTransform(transformer.get(), FALSE, static_cast<int>(xs.size()), xs.data(), ys.data(),
                            heights.data(), found.data());
    Line& row = rows.emplace_back();
    for (std::size_t i = 0; i < xs.size(); ++i) {
      if (found[i] == FALSE || !std::isfinite(xs[i] + ys[i])) return {};
      row.push_back({Wrapped(xs[i]), ys[i]});
    }
  }
  return rows;
}

// The rows, and behind them the columns.
std::vector<Line> WithColumns(std::vector<Line> lines) {
  const std::size_t rows = lines.size();
  for (std::size_t x = 0; x < lines.front().size(); ++x) {
    Line column;
    for (std::size_t y = 0; y < rows; ++y) column.push_back(lines[y][x]);
    lines.push_back(std::move(column));
  }
  return lines;
}

// Degrees from the westernmost to the easternmost of neighbours, counted on across the cut.
double Span(const Line& line) {
  double place = 0;
  double west = 0;
  double east = 0;
  for (std::size_t i = 1; i < line.size(); ++i) {
    place += Wrapped(line[i].longitude - line[i - 1].longitude);
    west = std::min(west, place);
    east = std::max(east, place);
  }
  return east - west;
}

bool ReachesBeyondTheEnds(const Line& line) {
  return std::any_of(line.begin(), line.end(),
                     [](const Degrees& place) { return std::fabs(place.latitude) > kLatitudeLimit; });
}

bool ReachesAcrossTheCut(const Line& line) {
  const auto [west, east] = std::minmax_element(
      line.begin(), line.end(), [](const Degrees& a, const Degrees& b) { return a.longitude < b.longitude; });
  return east->longitude - west->longitude > kHalfGlobe;
}

}  // namespace

void CheckExtent(GDALDataset& image, const OGRSpatialReference& srs) {
  const std::vector<Line> rows = PlacesOnTheGlobe(image, srs);
  if (rows.empty()) throw TilerError("the image has parts that lie nowhere on the globe");
  const std::vector<Line> lines = WithColumns(rows);
  if (std::any_of(lines.begin(), lines.end(), [](const Line& line) { return Span(line) > kHalfGlobe; })) {
    throw TilerError("the image covers more than half of the globe");
  }
  if (std::any_of(rows.begin(), rows.end(), ReachesBeyondTheEnds)) {
    throw TilerError("the image reaches beyond 85.05 degrees of latitude, where web maps end");
  }
  if (std::any_of(lines.begin(), lines.end(), ReachesAcrossTheCut)) {
    throw TilerError(
        "the image reaches across 180 degrees of longitude, where web maps are cut open; tile its western and"
        " its eastern part on their own");
  }
}

}  // namespace tiler
