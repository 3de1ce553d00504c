#include "tiler/kml_text.h"

#include "tiler/number_text.h"

namespace tiler {

namespace {

// Sizes on the screen, in pixels, between which a tile is shown: from half of its own on, to eight times that
// or, where there is nothing finer, for ever.
constexpr const char* kLeastPixels = "128";
constexpr const char* kMostPixels = "2048";
constexpr const char* kForEver = "-1";

std::string Degrees(double value) {
  return WithDecimals(value, 14);
}

std::string Path(const TileId& tile) {
  return std::to_string(tile.level) + "/" + std::to_string(tile.column) + "/" + std::to_string(tile.row);
}

std::string Sides(const Bounds& box, const std::string& indent) {
  return indent + "<north>" + Degrees(box.north) + "</north>\n" +  //
         indent + "<south>" + Degrees(box.south) + "</south>\n" +  //
         indent + "<east>" + Degrees(box.east) + "</east>\n" +     //
         indent + "<west>" + Degrees(box.west) + "</west>\n";
}

std::string Region(const Bounds& box, const char* most, const std::string& indent) {
  return indent + "<Region>\n" +                                               //
         indent + "  <LatLonAltBox>\n" +                                       //
         Sides(box, indent + "    ") +                                         //
         indent + "  </LatLonAltBox>\n" +                                      //
         indent + "  <Lod>\n" +                                                //
         indent + "    <minLodPixels>" + kLeastPixels + "</minLodPixels>\n" +  //
         indent + "    <maxLodPixels>" + most + "</maxLodPixels>\n" +          //
         indent + "  </Lod>\n" +                                               //
         indent + "</Region>\n";
}

std::string Head(const std::string& escapedName) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n"
         "  <Document>\n"
         "    <name>" +
         escapedName +
         "</name>\n"
         "    <description></description>\n"
         "    <Style>\n"
         "      <ListStyle id=\"hideChildren\">\n"
         "        <listItemType>checkHideChildren</listItemType>\n"
         "      </ListStyle>\n"
         "    </Style>";
}

std::string Overlay(const TileId& tile, const Bounds& box) {
  // The first column of tiles of the world is drawn above its neighbours.
  const int order = 2 * tile.level + (tile.column == 0 ? 1 : 0);
  return "    <GroundOverlay>\n"
         "      <drawOrder>" +
         std::to_string(order) +
         "</drawOrder>\n"
         "      <Icon>\n"
         "        <href>" +
         std::to_string(tile.row) +
         ".png</href>\n"
         "      </Icon>\n"
         "      <LatLonBox>\n" +
         Sides(box, "        ") +
         "      </LatLonBox>\n"
         "    </GroundOverlay>\n";
}

std::string Link(const TileId& tile, const std::string& escapedUrl) {
  return "\n    <NetworkLink>\n"
         "      <name>" +
         Path(tile) + ".png</name>\n" +                           //
         Region(TileBoundsInDegrees(tile), kForEver, "      ") +  //
         "      <Link>\n"
         "        <href>" +
         escapedUrl + Path(tile) +
         ".kml</href>\n"
         "        <viewRefreshMode>onRegion</viewRefreshMode>\n"
         "        <viewFormat/>\n"
         "      </Link>\n"
         "    </NetworkLink>\n"
         "        ";
}

constexpr const char* kEnd = "      </Document>\n</kml>";

}  // namespace

std::string XmlEscaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '&':
        escaped += "&amp;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        if (static_cast<unsigned char>(c) >= ' ' || c == '\t' || c == '\n' || c == '\r') escaped += c;
    }
  }
  return escaped;
}

std::string TileKml(const TileId& tile, const std::vector<TileId>& finer) {
  const Bounds box = TileBoundsInDegrees(tile);
  std::string text = Head(Path(tile) + ".kml") + "\n" +
                     Region(box, finer.empty() ? kForEver : kMostPixels, "    ") + Overlay(tile, box);
  for (const TileId& each : finer) text += Link(each, "../../");
  return text + kEnd + "\n    ";
}

std::string RootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest) {
  std::string text = Head(XmlEscaped(title));
  for (const TileId& each : coarsest) text += Link(each, XmlEscaped(url));
  return text + kEnd;
}

}  // namespace tiler
