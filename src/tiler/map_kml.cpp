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

PixelLimits LimitsOf(const ShownTile& shown) {
  return {shown.isCoarsest ? kLeastPixelsOfCoarsest : kLeastPixels, shown.isFinest        ? kForEver
                                                                    : shown.isTranslucent ? kMostPixels
                                                                                          : kMostPixelsBelow};
}

std::string Suffix(const ShownTile& shown) {
  return std::string(".") + ExtensionOf(shown.kind);
}

// From a tile's file to the folder of the map.
const std::string kUp = "../../";
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

bool BeginsFile(int level, int coarsest, int finest) {
  return level == coarsest || (finest - level) % 2 == 1;
}

std::string MapTileKml(const std::vector<ShownTile>& shown, const std::vector<TileId>& linked) {
  const TileId& own = shown.front().tile;
  const Bounds ownBox = TileBoundsInDegrees(own);
  std::string text = Head(Path(own), "") + Region(ownBox, LimitsOf(shown.front()), "    ") +
                     Overlay(own, ownBox, std::to_string(own.row) + Suffix(shown.front()));
  for (std::size_t i = 1; i < shown.size(); ++i) {
    const TileId& tile = shown[i].tile;
    const Bounds box = TileBoundsInDegrees(tile);
    text +=
        Overlay(tile, box, kUp + Path(tile) + Suffix(shown[i]), Region(box, LimitsOf(shown[i]), "      "));
  }
  for (const TileId& each : linked) text += Link(each, kLeastPixels, kUp);
  return text + kEnd + "\n";
}

std::string MapRootKml(const std::string& title, const std::string& url, const std::vector<TileId>& coarsest,
                       const Bounds& degrees) {
  std::string text = Head(XmlEscaped(title), LookFromAbove(degrees));
  for (const TileId& each : coarsest) text += Link(each, kLeastPixelsOfCoarsest, XmlEscaped(url));
  return text + kEnd;
}

}  // namespace tiler
