// The image as the map shows it: in the map's projection, its transparency settled.
#ifndef MOSAICON_TILER_MAP_VIEW_H_
#define MOSAICON_TILER_MAP_VIEW_H_

#include <optional>
#include <string>
#include <vector>

#include "tiler/axis_weights.h"
#include "tiler/pyramid.h"
#include "tiler/request.h"
#include "tiler/source_pixels.h"

namespace tiler {

class RunLog;
class SourceImage;

// What the virtual raster does, where that is simple: each pixel is one of the source image, or it lies
// outside of it and shows nothing.
struct DirectWarp {
  PixelSource pixels;
  std::string srs;           // the coordinate system of the image, well-known text
  std::vector<int> outside;  // the colour that lies around it and shows nothing; empty: black
};

// Tiles that are made in one step from the pixels of an image, at their exact places.
struct ExactWarp {
  PixelSource pixels;
  std::string srs;  // the coordinate system of the image, well-known text
  Resampling resampling = Resampling::kAverage;
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
  std::optional<ExactWarp> exact;  // nothing of what is above but image and colours then

  // The same text for views of the same pixels that make the same tiles of them.
  std::string State() const;
  // Whether all threads read from one and the same image.
  bool IsShared() const { return (direct && direct->pixels.shared) || (exact && exact->pixels.shared); }
};

// Decides everything as gdal2tiles does: size and position in the map, pixels by nearest neighbour, and which
// of them are transparent. Throws TilerError.
MapView MakeMapView(const SourceImage& source, RunLog& log);

// Size and position in the map as gdal2tiles decides them for the image of the request, pixels of the source.
// Throws TilerError.
MapView MakeExactView(const Request& request, const SourceImage& source, Resampling resampling, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_VIEW_H_
