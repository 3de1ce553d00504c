#include "tiler/map_page.h"

#include <algorithm>

#include "tiler/kml_text.h"
#include "tiler/number_text.h"
#include "tiler/page_template.h"
#include "tiler/pages/map_files.h"

namespace tiler {

namespace {

std::string Name(const std::string& name) {
  return name.empty() ? "null" : QuotedForPage(name);
}

std::string LevelsOf(const Pyramid& pyramid) {
  std::string text;
  for (int level = pyramid.Coarsest(); level <= pyramid.Finest(); ++level) {
    const TileRange& range = pyramid.Range(level);
    text += (text.empty() ? "\"" : ", \"") + std::to_string(level) + "\": [" +
            Joined({range.west, range.south, range.east, range.north}, ", ") + "]";
  }
  return "{" + text + "}";
}

// Which tiles there are, and what they are, as tiles.js takes it: members of an object.
std::string TilesOf(const Pyramid& pyramid, const TileKinds& kinds) {
  const std::string levels = "\"levels\": " + LevelsOf(pyramid);
  return kinds.AreExact() ? levels : levels + ", \"tiles\": " + kinds.Text();
}

}  // namespace

std::string QuotedForPage(const std::string& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (byte < ' ' || c == '<') {
      quoted += "\\u00";
      quoted += kDigits[byte >> 4];
      quoted += kDigits[byte & 15];
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string MapPage(const Pyramid& pyramid, const std::string& title, const PageDocuments& documents,
                    const TileKinds& kinds) {
  const Bounds degrees = pyramid.Degrees();
  const std::string map =
      "{\"title\": " + QuotedForPage(title) + ", \"coarsest\": " + std::to_string(pyramid.Coarsest()) +
      ", \"finest\": " + std::to_string(pyramid.Finest()) + ", \"bounds\": [[" + ShortestText(degrees.south) +
      ", " + ShortestText(degrees.west) + "], [" + ShortestText(degrees.north) + ", " +
      ShortestText(degrees.east) + "]], " + TilesOf(pyramid, kinds) +
      ", \"kml\": {\"disk\": " + Name(documents.disk) + ", \"web\": " + Name(documents.web) + "}}";
  return FilledIn(kPage, {{"TITLE", XmlEscaped(title)}, {"KIND", "map"}, {"DATA", map}});
}

std::string TileNameScripts(const Pyramid& pyramid, const TileKinds& kinds) {
  return std::string("<script src=\"") + kPageFolder + "/tiles.js\"></script><script>var orthophoto = {" +
         TilesOf(pyramid, kinds) + "};</script>";
}

const std::vector<PageFile>& PageFiles() {
  static const std::vector<PageFile> files = {{"leaflet.css", kLeafletStyles},
                                              {"leaflet.js", kLeafletScript},
                                              {"leaflet-licence.txt", kLeafletLicence},
                                              {"map.css", kMapStyles},
                                              {"map.js", kMapScript},
                                              {"position.js", kPositionScript},
                                              {"tiles.js", kTilesScript},
                                              {"tools.js", kToolsScript}};
  return files;
}

}  // namespace tiler
