// Reads where an orthophoto lies on the Earth. Needs GDAL with its drivers registered; opens the
// file read-only and leaves nothing open. Any thread, one file at a time per thread.
#ifndef MOSAICON_JOB_GEOREFERENCE_H_
#define MOSAICON_JOB_GEOREFERENCE_H_

#include <string>
#include <vector>

#include "job/tif_data.h"

// Finds the four corners of the image at path (in the code page that GDAL was told to expect), the
// code of its own reference system and that of the WGS84 UTM zone of its centre. When the file is in
// that zone already, both texts are equal; they are the zone's when the reference has no code of its own.
//
// Returns 4, the number of corners, or 0 on any failure: no raster, no reference, a reference
// without authority code or of more than 4095 characters, no geotransform, no UTM zone. corners is
// emptied first in every case; after a failure the outputs hold nothing of use.
int ReadTifGeoInfo(std::string path, std::vector<TifCorner>& corners, std::string& targetEPSG,
                   std::string& sourceEPSG);

// The same for a whole record: true when its file has four corners.
bool ReadTifData(const std::string& path, CTifData& data);

// Why a file is refused, in a few words ("it ..."); empty when it is not. Reads it once more, for a program
// that tells its user more than that.
std::string ExplainRefusal(const std::string& path);

#endif  // MOSAICON_JOB_GEOREFERENCE_H_
