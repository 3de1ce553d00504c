// Prepares the GDAL library of this process. Win32.
#ifndef MOSAICON_JOB_WINDOWS_GDAL_H_
#define MOSAICON_JOB_WINDOWS_GDAL_H_

#include <string>

// Tells GDAL that file names are in the ANSI code page and where its data and PROJ's are (beside
// programPath), silences its own messages, and registers all drivers. Once, before anything else
// uses GDAL.
void SetUpGdal(const std::string& programPath);

#endif  // MOSAICON_JOB_WINDOWS_GDAL_H_
