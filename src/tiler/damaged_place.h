// Where an image cannot be read.
#ifndef MOSAICON_TILER_DAMAGED_PLACE_H_
#define MOSAICON_TILER_DAMAGED_PLACE_H_

#include <atomic>
#include <string>

namespace tiler {

class RunLog;

// The first block that cannot be read, of the image or of the images that it is made of, as the end of a
// sentence:
//     pixels 0 to 255 from the left and 512 to 767 from the top of C:\bilder\a.tif are damaged
// Empty when all can be read, and soon after stop becomes true. Reads everything before it, which takes as
// long as decoding it takes.
std::string DamagedPlace(const std::string& path, const std::atomic<bool>& stop, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_DAMAGED_PLACE_H_
