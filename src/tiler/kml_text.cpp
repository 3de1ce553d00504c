#include "tiler/kml_text.h"

#include "tiler/kml_parts.h"

namespace tiler {

namespace {

// Sizes on the screen, in pixels, between which a tile is shown: from half of its own on, to eight times
// that.
constexpr int kLeastPixels = 128;
constexpr int kMostPixels = 2048;

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

std::string Link(const TileId& tile, const std::string& escapedUrl) {
  return "\n    <NetworkLink>\n"
         "      <name>" +
         Path(tile) + ".png</name>\n" +                                           //
         Region(TileBoundsInDegrees(tile), {kLeastPixels, kForEver}, "      ") +  //
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
                     Region(box, {kLeastPixels, finer.empty() ? kForEver : kMostPixels}, "    ") +
                     Overlay(tile, box, std::to_string(tile.row) + ".png");
  for (const TileId& each : finer) text += Link(each, "../../");
  return text + kEnd + "\n    ";
}

std::string RootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest) {
  std::string text = Head(XmlEscaped(title));
  for (const TileId& each : coarsest) text += Link(each, XmlEscaped(url));
  return text + kEnd;
}

}  // namespace tiler
