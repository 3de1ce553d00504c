// An image that comes as a warped virtual raster, as gdalwarp makes them.
#ifndef MOSAICON_TILER_WARPED_INPUT_H_
#define MOSAICON_TILER_WARPED_INPUT_H_

#include <optional>
#include <string>

class GDALDataset;

namespace tiler {

class GdalErrors;

struct WarpedInput {
  std::string xml;       // the same image, with a band of transparency behind the others
  bool hasMask = false;  // the warped image has one; else what lies outside of it is all that is transparent
};

// What gdalwarp makes of an image without a band of transparency is black outside of the image, and where a
// mask hides it. With such a band both are transparent. Nothing for other images, for those that have such a
// band or a mask, and for those that call a value no data, which gdalwarp fills with.
// path: of the file. Throws TilerError.
std::optional<WarpedInput> WithTransparency(GDALDataset& image, const std::string& path, GdalErrors& errors);

}  // namespace tiler

#endif  // MOSAICON_TILER_WARPED_INPUT_H_
