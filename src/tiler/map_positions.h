// Where places on the map lie in a source image.
#ifndef MOSAICON_TILER_MAP_POSITIONS_H_
#define MOSAICON_TILER_MAP_POSITIONS_H_

#include <array>
#include <string>
#include <vector>

#include "tiler/gdal_objects.h"

namespace tiler {

// One thread at a time.
class MapPositions {
 public:
  // srs: of the image, well-known text. place: what turns the positions that are asked for into metres of the
  // map, as GDAL has it. The image is not needed any more once this is made. Throws TilerError.
  MapPositions(SharedImage& image, const std::string& srs, std::array<double, 6> place);

  // Turns positions on the map into pixels of the image. What has none becomes no number.
  void Ask(std::vector<double>& xs, std::vector<double>& ys);

 private:
  Transformer m_transformer;
  std::vector<double> m_heights;
  std::vector<int> m_found;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_MAP_POSITIONS_H_
