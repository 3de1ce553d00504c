// Changes to the description of a warped virtual raster, which say what becomes of pixels that show nothing.
// Portable, no state.
#ifndef MOSAICON_TILER_WARP_OPTIONS_H_
#define MOSAICON_TILER_WARP_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

namespace tiler {

// Pixels whose bands all hold their value of no data are not shown, and what lies outside of the image is
// filled: with the transparent colour, or when that is empty with what was decided before. Throws TilerError
// when xml is no XML.
std::string WithNodata(const std::string& xml, const std::vector<int>& transparent);

// With a band of transparency behind the others: transparent is what lies outside of the image. bands: how
// many there are.
std::string WithAlphaBand(const std::string& xml, int bands);

struct WarpSource {
  std::string path;  // of the image that is warped
  std::string xml;   // the description, which means that image wherever it lies itself
};
// folder: of the file that xml comes from. Nothing where no image is warped.
std::optional<WarpSource> WithAbsoluteSource(const std::string& xml, const std::string& folder);

}  // namespace tiler

#endif  // MOSAICON_TILER_WARP_OPTIONS_H_
