// Recognises the two virtual rasters that a job leaves beside an orthophoto. A later job may replace
// them; any other file of such a name is the user's own. When in doubt, a file is not ours. Portable;
// uses GDAL's XML parser.
#ifndef MOSAICON_JOB_INTERMEDIATES_H_
#define MOSAICON_JOB_INTERMEDIATES_H_

#include <cstddef>
#include <string>

#include "job/tif_data.h"

// In bytes. Larger files are not ours.
inline constexpr size_t kMaxIntermediate = 1 << 20;

// Whether xml, the text of a file beside data's file, is what the translator makes of it: all its
// pixels come from that file, and it is tied down at the four corners and nowhere else.
bool IsTranslationOf(const CTifData& data, const std::string& xml);

// Whether xml is what the warper makes of translatedFile, in the same folder.
bool IsWarpOf(const std::string& translatedFile, const std::string& xml);

#endif  // MOSAICON_JOB_INTERMEDIATES_H_
