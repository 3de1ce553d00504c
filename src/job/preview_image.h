// Makes the small picture of a finished orthophoto. Needs GDAL with its drivers registered.
#ifndef MOSAICON_JOB_PREVIEW_IMAGE_H_
#define MOSAICON_JOB_PREVIEW_IMAGE_H_

#include <string>

// Writes a copy of inputPath with about 76,800 pixels (320 x 240; smaller images are enlarged) to
// outputPath. The format follows its extension, in lower case only: jpg, tif or png. Of two bands a JPEG
// gets the first one; of values that are no bytes, of a palette or of more than four bands, the colours of
// the tiles.
//
// Returns 1 on success and 0 on failure, after which a file at outputPath is what it was before; reason, if
// not null, is GDAL's word why, as far as it has one. A file that the input consists of is never replaced.
int MakePreviewImage(const std::string& inputPath, const std::string& outputPath,
                     std::string* reason = nullptr);

// Whether the file at path may be one that MakePreviewImage made: an image with that many pixels, but
// for the rounding of its sides.
bool IsPreviewImage(const std::string& path);

// The size of that picture for an image of width x height pixels; 0 for a side that vanishes.
void ComputePreviewSize(int width, int height, int& previewWidth, int& previewHeight);

#endif  // MOSAICON_JOB_PREVIEW_IMAGE_H_
