#include "tiler/map_kml.h"

#include "tiler/kml_parts.h"
#include "tiler/kml_text.h"

namespace tiler {

namespace {

// A tile is shown from half of its own size on: then the next coarser one is as large as its own.
constexpr int kLeastPixels = 128;
// Nothing coarser stands for these.
constexpr int kLeastPixelsOfCoarsest = 16;
// A tile goes when its four finer ones have come. In a tilted view the farther ones come later, and all of
// them take their time to be loaded: what nothing shines through stays below them until they must be there.
constexpr int kMostPixels = 2 * kLeastPixels;
constexpr int kMostPixelsBelow = 2 * kMostPixels;

std::string Head(const std::string& escapedName, const std::string& view) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n"
         "  <Document>\n"
         "    <name>" +
         escapedName + "</name>\n" + view +
         "    <styleUrl>#hideChildren</styleUrl>\n"
         "    <Style id=\"hideChildren\">\n"
         "      <ListStyle>\n"
         "        <listItemType>checkHideChildren</listItemType>\n"
         "      </ListStyle>\n"
         "    </Style>\n";
}

std::string Link(const TileId& tile, int least, const std::string& escapedUrl) {
  return "    <NetworkLink>\n"
         "      <name>" +
         Path(tile) + "</name>\n" + Region(TileBoundsInDegrees(tile), {least, kForEver}, "      ") +
         "      <Link>\n"
         "        <href>" +
         escapedUrl + Path(tile) +
         ".kml</href>\n"
         "        <viewRefreshMode>onRegion</viewRefreshMode>\n"
         "      </Link>\n"
         "    </NetworkLink>\n";
}

constexpr const char* kEnd = "  </Document>\n</kml>";

}  // namespace

bool IsTranslucent(const Tile& pixels) {
  std::size_t visible = 0;
  std::size_t half = 0;
  for (const Pixel& pixel : pixels) {
    visible += pixel.alpha > 0 ? 1 : 0;
    half += pixel.alpha > 0 && pixel.alpha < 255 ? 1 : 0;
  }
  return 8 * half > visible;
}

std::string MapTileKml(const TileId& tile, const std::vector<TileId>& finer, const TileLook& look) {
  const Bounds box = TileBoundsInDegrees(tile);
  const int least = look.isCoarsest ? kLeastPixelsOfCoarsest : kLeastPixels;
  const int most = look.isTranslucent ? kMostPixels : kMostPixelsBelow;
  std::string text = Head(Path(tile), "") + Region(box, {least, finer.empty() ? kForEver : most}, "    ") +
                     Overlay(tile, look.kind, box);
  for (const TileId& each : finer) text += Link(each, kLeastPixels, "../../");
  return text + kEnd + "\n";
}

std::string MapRootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest,
                       const Bounds& degrees) {
  std::string text = Head(XmlEscaped(title), LookFromAbove(degrees));
  for (const TileId& each : coarsest) text += Link(each, kLeastPixelsOfCoarsest, XmlEscaped(url));
  return text + kEnd;
}

}  // namespace tiler
