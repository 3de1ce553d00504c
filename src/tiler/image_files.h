// How an image lies on the disk.
#ifndef MOSAICON_TILER_IMAGE_FILES_H_
#define MOSAICON_TILER_IMAGE_FILES_H_

#include <string>
#include <vector>

#include "tiler/memory_plan.h"

class GDALDataset;

namespace tiler {

// Whether its pixels are those of other images, and perhaps computed from them.
bool IsVirtual(GDALDataset& dataset);

// The images that hold its pixels, as GDAL opens them: itself, or those that it is made of, as far as they
// open.
std::vector<std::string> FilesOfPixels(const std::string& path);

SourceLayout LayoutOf(GDALDataset& dataset);

// The same text for an image that nobody has changed, and another for any other: the names of its files, how
// large they are and when they were written; of small ones, what they hold.
std::string StateOf(GDALDataset& dataset);

}  // namespace tiler

#endif  // MOSAICON_TILER_IMAGE_FILES_H_
