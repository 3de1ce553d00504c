// Tells what the engine decides and writes before any pixel, for texts_test.py, which has the same from
// gdal2tiles.
//
//   tiler_tell_texts leaf|overview|root          KML of a fixed sample
//   tiler_tell_texts plan LEFT TOP PIXEL WIDTH HEIGHT
//   tiler_tell_texts google|leaflet|openlayers|tilemap LEFT TOP PIXEL WIDTH HEIGHT TITLE KEY URL
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tiler/kml_text.h"
#include "tiler/map_pages.h"
#include "tiler/number_text.h"

namespace {

using tiler::Pyramid;
using Words = std::vector<std::string>;

void Print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

Pyramid PyramidOf(const Words& words) {
  const double pixel = std::atof(words[3].c_str());
  return Pyramid({std::atoi(words[4].c_str()), std::atoi(words[5].c_str()), std::atof(words[1].c_str()),
                  std::atof(words[2].c_str()), pixel, -pixel});
}

std::string Line(const std::vector<std::int64_t>& numbers) {
  std::string line;
  for (const std::int64_t number : numbers) line += (line.empty() ? "" : " ") + std::to_string(number);
  return line + "\n";
}

std::string Plan(const Pyramid& pyramid) {
  std::string text = Line({pyramid.Coarsest(), pyramid.Finest(), pyramid.TileCount()});
  for (int level = pyramid.Coarsest(); level <= pyramid.Finest(); ++level) {
    const tiler::TileRange& range = pyramid.Range(level);
    text += Line({range.west, range.south, range.east, range.north});
  }
  const tiler::TileRange& range = pyramid.Range(pyramid.Finest());
  for (int row = range.north; row >= range.south; --row) {
    for (int column = range.west; column <= range.east; ++column) {
      const tiler::TileQuery query = pyramid.QueryOf({pyramid.Finest(), column, row});
      text += Line({query.x, query.y, query.width, query.height, query.queryX, query.queryY, query.queryWidth,
                    query.queryHeight});
    }
  }
  const tiler::Bounds degrees = pyramid.Degrees();
  for (const double side : {degrees.south, degrees.west, degrees.north, degrees.east}) {
    text += tiler::ShortestText(side) + "\n";
  }
  return text;
}

tiler::TileKinds ExactTiles(const tiler::Pyramid& pyramid) {
  return {pyramid, tiler::TileFormat::kPng};
}

}  // namespace

int main(int argc, char** argv) {
  const Words words(argv + 1, argv + argc);
  const std::map<std::string, std::function<std::string()>> parts = {
      {"leaf",
       [] {
         return tiler::TileKml({18, 139430, 172265}, {});
       }},
      {"overview",
       [] {
         return tiler::TileKml({3, 0, 5}, {{4, 0, 11}, {4, 1, 11}, {4, 0, 10}});
       }},
      {"root",
       [] {
         return tiler::RootKml("H\xC3\xA4 & \"<x>", "../a&b/c d/", {{3, 0, 5}, {3, 1, 5}});
       }},
      {"plan", [&] { return Plan(PyramidOf(words)); }},
      {"google",
       [&] {
         const tiler::Pyramid pyramid = PyramidOf(words);
         return tiler::GoogleMapsPage(pyramid, {words[6], words[7]}, ExactTiles(pyramid));
       }},
      {"leaflet",
       [&] {
         return tiler::LeafletPage(PyramidOf(words), {words[6], words[7]});
       }},
      {"openlayers",
       [&] {
         const tiler::Pyramid pyramid = PyramidOf(words);
         return tiler::OpenLayersPage(pyramid, {words[6], words[7]}, ExactTiles(pyramid));
       }},
      {"tilemap",
       [&] {
         const tiler::Pyramid pyramid = PyramidOf(words);
         return tiler::TileMapResource(pyramid, words[6], words[8], ExactTiles(pyramid));
       }},
  };
  Print(parts.at(words.at(0))());
  return 0;
}
