// The georeference of one orthophoto, as read before a job and used for the command lines of its
// tools. Plain values, copied freely.
#ifndef MOSAICON_JOB_TIF_DATA_H_
#define MOSAICON_JOB_TIF_DATA_H_

#include <string>
#include <vector>

// One corner of the image.
struct TifCorner {
  double dfPixel = 0.0;     // column: 0 or the raster width
  double dfLine = 0.0;      // row: 0 or the raster height
  double dfLon = 0.0;       // degrees, WGS84
  double dfLat = 0.0;       // degrees, WGS84
  double dfEasting = 0.0;   // metres in the UTM zone of the image centre
  double dfNorthing = 0.0;  // metres in the UTM zone of the image centre
};

class CTifData {
 public:
  CTifData() = default;
  CTifData(const CTifData&) = default;
  CTifData& operator=(const CTifData&) = default;
  virtual ~CTifData() = default;

  std::string m_strFileName;          // full path of the orthophoto
  std::vector<TifCorner> m_vCorners;  // upper left, lower left, upper right, lower right
  std::string m_strTargetEPSG;        // "EPSG:<code>" of the UTM zone on WGS84
  std::string m_strSourceEPSG;        // "EPSG:<code>" of the file's own reference system
  bool m_bRotationLost = false;       // it is reprojected by its corners, which know nothing of its rotation
};

#endif  // MOSAICON_JOB_TIF_DATA_H_
