#include "tiler/map_pages.h"

#include <cmath>
#include <string_view>

#include "tiler/kml_text.h"
#include "tiler/map_page.h"
#include "tiler/number_text.h"
#include "tiler/page_template.h"

namespace tiler {

namespace {

constexpr std::string_view kGoogleMaps =
#include "tiler/pages/googlemaps.inc"
    ;
constexpr std::string_view kLeaflet =
#include "tiler/pages/leaflet.inc"
    ;
constexpr std::string_view kOpenLayers =
#include "tiler/pages/openlayers.inc"
    ;

constexpr char kGoogleMapsUrl[] = "https://maps.googleapis.com/maps/api/js";
constexpr int kFineDecimals = 14;
constexpr double kMetresPerPixelOfLevel0 = 156543.0339;  // as the format has it

constexpr char kTileUrlFunction[] =
    "tileUrlFunction: function (at) { return './' + Mosaicon.tileName(orthophoto, at[0], at[1], "
    "Math.pow(2, at[0]) - 1 - at[2]); }";

std::string WithEscapedQuotes(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '"') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string TileSet(int level, const std::string& escapedUrl) {
  const std::string number = std::to_string(level);
  const double metresPerPixel = std::ldexp(kMetresPerPixelOfLevel0, -level);
  return "        <TileSet href=\"" + escapedUrl + number + "\" units-per-pixel=\"" +
         WithDecimals(metresPerPixel, kFineDecimals) + "\" order=\"" + number + "\"/>\n";
}

std::string MimeTypeAndExtension(TileKind kind) {
  return std::string("mime-type=\"") + MimeTypeOf(kind) + "\" extension=\"" + ExtensionOf(kind) + "\"";
}

// How many tiles of a level are of the usual kind, then of the other, and so on, eastwards from the
// south-west corner, row by row.
std::string OtherTiles(const Pyramid& pyramid, const TileKinds& kinds) {
  std::string text;
  for (const TileKind kind : kinds.Other()) {
    text += "      <OtherTiles xmlns=\"urn:mosaicon:tiles\" " + MimeTypeAndExtension(kind) + ">\n";
    for (int level = pyramid.Coarsest(); level <= pyramid.Finest(); ++level) {
      const std::vector<std::int64_t> runs = kinds.RunsOf(level);
      if (runs.empty()) continue;
      text += "        <Runs order=\"" + std::to_string(level) + "\">";
      for (std::size_t i = 0; i < runs.size(); ++i) text += (i == 0 ? "" : " ") + std::to_string(runs[i]);
      text += "</Runs>\n";
    }
    text += "      </OtherTiles>\n";
  }
  return text;
}

MarkValues CommonValues(const Pyramid& pyramid, const PageTexts& texts) {
  const Bounds degrees = pyramid.Degrees();
  return {{"TITLE", XmlEscaped(texts.title)},           {"COARSEST", std::to_string(pyramid.Coarsest())},
          {"FINEST", std::to_string(pyramid.Finest())}, {"SOUTH", ShortestText(degrees.south)},
          {"WEST", ShortestText(degrees.west)},         {"NORTH", ShortestText(degrees.north)},
          {"EAST", ShortestText(degrees.east)}};
}

}  // namespace

std::string GoogleMapsPage(const Pyramid& pyramid, const PageTexts& texts, const TileKinds& kinds) {
  MarkValues values = CommonValues(pyramid, texts);
  values["TILE_SCRIPTS"] = kinds.AreExact() ? "" : TileNameScripts(pyramid, kinds);
  values["TILE_NAME"] = kinds.AreExact() ? "zoom+\"/\"+tile.x+\"/\"+tile.y+\".png\""
                                         : "Mosaicon.tileName(orthophoto, zoom, tile.x, tile.y)";
  const std::string url = kGoogleMapsUrl;
  values["MAPS_URL"] = texts.googleKey.empty() ? url : url + "?key=" + texts.googleKey;
  values["KEY_HINT"] =
      texts.googleKey.empty() ? "<!-- Replace URL below with " + url + "?key=INSERT_YOUR_KEY_HERE -->" : "";
  return FilledIn(kGoogleMaps, values);
}

std::string LeafletPage(const Pyramid& pyramid, const PageTexts& texts) {
  const Bounds degrees = pyramid.Degrees();
  MarkValues values = CommonValues(pyramid, texts);
  values["QUOTED_TITLE"] = WithEscapedQuotes(texts.title);
  values["CENTRE_LATITUDE"] = ShortestText((degrees.north + degrees.south) / 2.0);
  values["CENTRE_LONGITUDE"] = ShortestText((degrees.west + degrees.east) / 2.0);
  return FilledIn(kLeaflet, values);
}

std::string OpenLayersPage(const Pyramid& pyramid, const PageTexts& texts, const TileKinds& kinds) {
  constexpr int kDecimals = 6;
  const Bounds& metres = pyramid.Metres();
  MarkValues values = CommonValues(pyramid, texts);
  values["TILE_SCRIPTS"] = kinds.AreExact() ? "" : TileNameScripts(pyramid, kinds);
  values["TILE_URL"] = kinds.AreExact() ? "url: './{z}/{x}/{-y}.png'" : kTileUrlFunction;
  values["LEFT"] = WithDecimals(metres.west, kDecimals);
  values["BOTTOM"] = WithDecimals(metres.south, kDecimals);
  values["RIGHT"] = WithDecimals(metres.east, kDecimals);
  values["TOP"] = WithDecimals(metres.north, kDecimals);
  values["CENTRE_X"] = WithDecimals((metres.west + metres.east) / 2, kDecimals);
  values["CENTRE_Y"] = WithDecimals((metres.south + metres.north) / 2, kDecimals);
  return FilledIn(kOpenLayers, values);
}

std::string TileMapResource(const Pyramid& pyramid, const std::string& title, const std::string& url,
                            const TileKinds& kinds) {
  const Bounds degrees = pyramid.Degrees();
  const std::string south = WithDecimals(degrees.south, kFineDecimals);
  const std::string west = WithDecimals(degrees.west, kFineDecimals);
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "    <TileMap version=\"1.0.0\" tilemapservice=\"http://tms.osgeo.org/1.0.0\">\n"
      "      <Title>" +
      XmlEscaped(title) +
      "</Title>\n"
      "      <Abstract></Abstract>\n"
      "      <SRS>EPSG:3857</SRS>\n"
      "      <BoundingBox minx=\"" +
      west + "\" miny=\"" + south + "\" maxx=\"" + WithDecimals(degrees.east, kFineDecimals) + "\" maxy=\"" +
      WithDecimals(degrees.north, kFineDecimals) +
      "\"/>\n"
      "      <Origin x=\"" +
      west + "\" y=\"" + south +
      "\"/>\n"
      "      <TileFormat width=\"256\" height=\"256\" " +
      MimeTypeAndExtension(kinds.Usual()) +
      "/>\n"
      "      <TileSets profile=\"mercator\">\n";
  for (int level = pyramid.Coarsest(); level <= pyramid.Finest(); ++level) {
    text += TileSet(level, XmlEscaped(url));
  }
  return text + "      </TileSets>\n" + OtherTiles(pyramid, kinds) + "    </TileMap>\n    ";
}

}  // namespace tiler
