// What virtual rasters are made of. No state.
#ifndef MOSAICON_TILER_VIRTUAL_SOURCES_H_
#define MOSAICON_TILER_VIRTUAL_SOURCES_H_

#include <optional>
#include <string>
#include <vector>

namespace tiler {

// The image that a warped virtual raster shows: all of its bands in their order, each pixel that of its
// nearest neighbour, nothing replaced or cut out.
struct PlainWarp {
  std::string path;
  // The coordinate system that it is taken to have; empty: that of the virtual raster.
  std::string srs;
  // Values of its bands that are not shown; not a number: the band has none.
  std::vector<double> nodata;
};
// Nothing for any other description. folder: of the file that xml comes from. Throws TilerError when xml is
// no virtual raster.
std::optional<PlainWarp> PlainlyWarped(const std::string& xml, const std::string& folder);

// The image that a virtual raster of this size shows whole: all of its bands in their order, no pixel moved
// or changed. Empty for any other description. Throws TilerError when xml is no virtual raster.
std::string PlainlyShown(const std::string& xml, const std::string& folder, int width, int height);

}  // namespace tiler

#endif  // MOSAICON_TILER_VIRTUAL_SOURCES_H_
