#include "batch/map_extent.h"

#include <algorithm>
#include <cmath>

namespace {

// Where the map of the whole globe is a square, and what rounding may add.
constexpr double kLatitudeLimit = 85.0511287798066 + 1e-6;
constexpr double kHalfGlobe = 180.0 + 1e-6;

}  // namespace

std::string FindExtentProblem(const std::vector<TifCorner>& corners) {
  const auto [west, east] = std::minmax_element(
      corners.begin(), corners.end(),
      [](const TifCorner& left, const TifCorner& right) { return left.dfLon < right.dfLon; });
  // Projected coordinates jump at the cut, degrees go on beyond it: either is seen here.
  if (east->dfLon - west->dfLon > kHalfGlobe || east->dfLon > kHalfGlobe || west->dfLon < -kHalfGlobe) {
    return "the image reaches across 180 degrees of longitude, where web maps are cut open, or covers more "
           "than half of the globe";
  }
  if (std::any_of(corners.begin(), corners.end(),
                  [](const TifCorner& corner) { return std::fabs(corner.dfLat) > kLatitudeLimit; })) {
    return "the image reaches beyond 85.05 degrees of latitude, where web maps end";
  }
  return "";
}
