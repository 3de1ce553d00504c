#include "job/input_summary.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <set>

#include "tiler/pyramid.h"

namespace {

constexpr size_t kCornerCount = 4;
constexpr char kHint[] =
    "Choose an orthophoto, or tick \"Pick Folder\" and choose a folder of them.\n"
    "Then name a target folder and press Start.";

// Bytes that a pixel of a photograph takes; scripts/tile-sizes measures it.
constexpr double kExactBytes = 1.65;
constexpr double kJpegBytes = 0.26;
constexpr double kWebpBytes = 0.17;
constexpr double kOverviews = 4.0 / 3;  // all levels in proportion to the finest

struct Position {
  double x = 0;  // metres of the map
  double y = 0;
};

Position OnMap(const TifCorner& corner) {
  constexpr double kRadius = 6378137;
  constexpr double kRadians = std::numbers::pi / 180;
  const double latitude = std::clamp(corner.dfLat, -tiler::kLatitudeLimit, tiler::kLatitudeLimit);
  return {kRadius * corner.dfLon * kRadians,
          kRadius * std::log(std::tan(std::numbers::pi / 4 + latitude * kRadians / 2))};
}

double Width(const CTifData& data) {
  return data.m_vCorners.back().dfPixel;
}
double Height(const CTifData& data) {
  return data.m_vCorners.back().dfLine;
}

bool HasExtent(const CTifData& data) {
  return data.m_vCorners.size() == kCornerCount && Width(data) > 0 && Height(data) > 0;
}

// The image as the tiler sees it: upright, with square pixels of which as many lie on a diagonal as before.
tiler::MapImage ImageOf(const CTifData& data) {
  double west = 0;
  double east = 0;
  double south = 0;
  double north = 0;
  for (size_t i = 0; i < kCornerCount; ++i) {
    const Position corner = OnMap(data.m_vCorners[i]);
    west = i == 0 ? corner.x : std::min(west, corner.x);
    east = i == 0 ? corner.x : std::max(east, corner.x);
    south = i == 0 ? corner.y : std::min(south, corner.y);
    north = i == 0 ? corner.y : std::max(north, corner.y);
  }
  const Position first = OnMap(data.m_vCorners.front());
  const Position last = OnMap(data.m_vCorners.back());
  const double size = std::hypot(last.x - first.x, last.y - first.y) / std::hypot(Width(data), Height(data));
  if (!std::isfinite(size) || !(size > 0) || !(east > west) || !(north > south)) return {};
  const auto pixels = [size](double metres) {
    return static_cast<int32_t>(std::clamp(std::round(metres / size), 1.0, 2e9));
  };
  return {pixels(east - west), pixels(north - south), west, north, size, -size};
}

// Along the edge of the image tiles are exact, because parts of them are transparent.
double BytesOf(const tiler::Pyramid& pyramid, double pixels, tiler::TileFormat tiles) {
  if (tiles == tiler::TileFormat::kPng) return kExactBytes * pixels * kOverviews;
  if (tiles == tiler::TileFormat::kWebp) return kWebpBytes * pixels * kOverviews;
  const tiler::TileRange& range = pyramid.Range(pyramid.Finest());
  const auto halves = static_cast<double>(range.Columns() + range.Rows());
  const double edge = std::min(pixels, halves * tiler::kTileSize * tiler::kTileSize);
  return (kExactBytes * edge + kJpegBytes * (pixels - edge)) * kOverviews;
}

std::string WithThousands(double number) {
  std::string text = std::to_string(std::llround(number));
  for (size_t place = text.size(); place > 3;) text.insert(place -= 3, ",");
  return text;
}

// Two digits that count, in the unit that suits.
std::string InWords(double bytes) {
  const bool isLarge = bytes >= 999.5e6;
  const double number = bytes / (isLarge ? 1e9 : 1e6);
  char text[32];
  std::snprintf(text, sizeof text, number < 10 ? "%.1f" : "%.0f", number);
  return std::string(text) + (isLarge ? " GB" : " MB");
}

// Metres on the ground, in its UTM zone.
double GroundResolution(const CTifData& data) {
  const TifCorner& left = data.m_vCorners[0];
  const TifCorner& right = data.m_vCorners[2];
  return std::hypot(right.dfEasting - left.dfEasting, right.dfNorthing - left.dfNorthing) / Width(data);
}

std::string InMetres(double metres) {
  char text[32];
  std::snprintf(text, sizeof text, metres < 1 ? "%.2g" : "%.3g", metres);
  return text;
}

// Of "EPSG:32632": "UTM zone 32 N". Anything else stays as it is.
std::string ZoneOf(const std::string& epsg) {
  int code = 0;
  if (std::sscanf(epsg.c_str(), "EPSG:%d", &code) != 1) return epsg;
  const int zone = code % 100;
  const bool isNorth = code / 100 == 326;
  if ((!isNorth && code / 100 != 327) || zone < 1 || zone > 60) return epsg;
  return "UTM zone " + std::to_string(zone) + (isNorth ? " N" : " S");
}

std::string Input(const CTifData& data) {
  const std::string zone = ZoneOf(data.m_strTargetEPSG);
  std::string text = WithThousands(Width(data)) + " x " + WithThousands(Height(data)) + " pixels of " +
                     InMetres(GroundResolution(data)) + " m, " + data.m_strSourceEPSG;
  if (data.m_strSourceEPSG == data.m_strTargetEPSG) return text + " (" + zone + ")";
  return text + ", to be brought into " + zone;
}

std::string Inputs(const std::vector<CTifData>& all) {
  double finest = 0;
  double coarsest = 0;
  std::set<std::string> systems;
  for (const CTifData& each : all) {
    const double metres = GroundResolution(each);
    finest = finest == 0 ? metres : std::min(finest, metres);
    coarsest = std::max(coarsest, metres);
    systems.insert(each.m_strSourceEPSG);
  }
  const std::string from = InMetres(finest);
  const std::string to = InMetres(coarsest);
  return WithThousands(static_cast<double>(all.size())) + " orthophotos with pixels of " + from +
         (from == to ? "" : " to " + to) + " m, " + *systems.begin() +
         (systems.size() == 1 ? "" : " and other systems");
}

}  // namespace

MapForecast ForecastOf(const CTifData& data, tiler::TileFormat tiles) {
  if (!HasExtent(data)) return {};
  const tiler::MapImage image = ImageOf(data);
  if (image.width == 0) return {};
  const tiler::Pyramid pyramid(image);
  const double scale = image.pixelWidth / tiler::Resolution(pyramid.Finest());
  const double pixels = Width(data) * Height(data) * scale * scale;
  return {pyramid.Coarsest(), pyramid.Finest(), pyramid.TileCount(), BytesOf(pyramid, pixels, tiles)};
}

std::string SummaryOf(const std::vector<CTifData>& orthophotos, tiler::TileFormat tiles) {
  std::vector<CTifData> all;
  std::copy_if(orthophotos.begin(), orthophotos.end(), std::back_inserter(all), HasExtent);
  if (all.empty()) return kHint;
  MapForecast whole;
  for (const CTifData& each : all) {
    const MapForecast one = ForecastOf(each, tiles);
    whole.coarsest = whole.tiles == 0 ? one.coarsest : std::min(whole.coarsest, one.coarsest);
    whole.finest = std::max(whole.finest, one.finest);
    whole.tiles += one.tiles;
    whole.bytes += one.bytes;
  }
  const std::string levels =
      whole.coarsest == whole.finest
          ? "zoom level " + std::to_string(whole.finest)
          : "zoom levels " + std::to_string(whole.coarsest) + " to " + std::to_string(whole.finest);
  return (all.size() == 1 ? Input(all.front()) : Inputs(all)) + "\nThe map" + (all.size() == 1 ? "" : "s") +
         ": " + levels + ", about " + WithThousands(static_cast<double>(whole.tiles)) + " tiles and " +
         InWords(whole.bytes);
}
