#include "tiler/kml_parts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tiler/number_text.h"

namespace tiler {

namespace {

std::string Degrees(double value) {
  return WithDecimals(value, 14);
}

std::string Sides(const Bounds& box, const std::string& indent) {
  return indent + "<north>" + Degrees(box.north) + "</north>\n" +  //
         indent + "<south>" + Degrees(box.south) + "</south>\n" +  //
         indent + "<east>" + Degrees(box.east) + "</east>\n" +     //
         indent + "<west>" + Degrees(box.west) + "</west>\n";
}

}  // namespace

std::string Path(const TileId& tile) {
  return std::to_string(tile.level) + "/" + std::to_string(tile.column) + "/" + std::to_string(tile.row);
}

std::string Region(const Bounds& box, const PixelLimits& limits, const std::string& indent) {
  return indent + "<Region>\n" +                                                               //
         indent + "  <LatLonAltBox>\n" +                                                       //
         Sides(box, indent + "    ") +                                                         //
         indent + "  </LatLonAltBox>\n" +                                                      //
         indent + "  <Lod>\n" +                                                                //
         indent + "    <minLodPixels>" + std::to_string(limits.least) + "</minLodPixels>\n" +  //
         indent + "    <maxLodPixels>" + std::to_string(limits.most) + "</maxLodPixels>\n" +   //
         indent + "  </Lod>\n" +                                                               //
         indent + "</Region>\n";
}

std::string Overlay(const TileId& tile, const Bounds& box, const std::string& href,
                    const std::string& region) {
  // The first column of tiles of the world is drawn above its neighbours.
  const int order = 2 * tile.level + (tile.column == 0 ? 1 : 0);
  return "    <GroundOverlay>\n" + region + "      <drawOrder>" + std::to_string(order) +
         "</drawOrder>\n"
         "      <Icon>\n"
         "        <href>" +
         href +
         "</href>\n"
         "      </Icon>\n"
         "      <LatLonBox>\n" +
         Sides(box, "        ") +
         "      </LatLonBox>\n"
         "    </GroundOverlay>\n";
}

std::string LookFromAbove(const Bounds& degrees) {
  constexpr double kRadius = 6378137;  // metres
  constexpr double kRangeForSize = 1.3;
  constexpr double kLeastRange = 100;  // metres
  constexpr int kDecimals = 8;
  const double latitude = (degrees.south + degrees.north) / 2;
  const double metresPerDegree = kRadius * std::numbers::pi / 180;
  const double across =
      (degrees.east - degrees.west) * metresPerDegree * std::cos(latitude * std::numbers::pi / 180);
  const double down = (degrees.north - degrees.south) * metresPerDegree;
  const double range = std::max(kLeastRange, kRangeForSize * std::max(across, down));
  return "    <LookAt>\n"
         "      <longitude>" +
         WithDecimals((degrees.west + degrees.east) / 2, kDecimals) +
         "</longitude>\n"
         "      <latitude>" +
         WithDecimals(latitude, kDecimals) +
         "</latitude>\n"
         "      <altitude>0</altitude>\n"
         "      <heading>0</heading>\n"
         "      <tilt>0</tilt>\n"
         "      <range>" +
         WithDecimals(range, 0) +
         "</range>\n"
         "    </LookAt>\n";
}

}  // namespace tiler
