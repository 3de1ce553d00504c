// The image as the map shows it: in the map's projection, its transparency settled.
#ifndef MOSAICON_TILER_MAP_VIEW_H_
#define MOSAICON_TILER_MAP_VIEW_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tiler/pyramid.h"

namespace tiler {

class RunLog;
class SourceImage;
struct SharedImage;

// What the virtual raster does, where that is simple: each pixel is one of the source image, or it lies
// outside of it and shows nothing.
struct DirectWarp {
  std::string source;            // the image, as GDAL opens it
  std::string srs;               // its coordinate system, well-known text
  std::vector<int> transparent;  // a colour that shows nothing; empty: there is none
  bool hasAlpha = false;         // its last band is transparency; there is no transparent colour then
  // All threads read from this one when there is one: its strips are decoded once then, and kept once.
  std::shared_ptr<SharedImage> shared;
};

struct MapView {
  // A virtual raster, as GDAL opens it. It refers to the source image, which has to live as long.
  std::string xml;
  MapImage image;
  // Bands of colours, 1 (grey) or 3.
  int colours = 0;
  // A colour that shows nothing either, a value for each colour band, which readers have to see to: the
  // virtual raster has transparency of another kind. Empty: there is none.
  std::vector<int> hidden;
  std::optional<DirectWarp> direct;
};

// Decides everything as gdal2tiles does: size and position in the map, pixels by nearest neighbour, and which
// of them are transparent. Throws TilerError.
MapView MakeMapView(const SourceImage& source, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_VIEW_H_
