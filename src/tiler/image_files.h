// How an image lies on the disk.
#ifndef MOSAICON_TILER_IMAGE_FILES_H_
#define MOSAICON_TILER_IMAGE_FILES_H_

#include <string>

#include "tiler/memory_plan.h"

class GDALDataset;

namespace tiler {

// Whether its pixels are those of other images, and perhaps computed from them.
bool IsVirtual(GDALDataset& dataset);

// Of an image of bytes.
SourceLayout LayoutOf(GDALDataset& dataset);

// The same text for an image that nobody has changed, and another for any other: the names of its files, how
// large they are and when they were written; of small ones, what they hold.
std::string StateOf(GDALDataset& dataset);

}  // namespace tiler

#endif  // MOSAICON_TILER_IMAGE_FILES_H_
