// The command lines of the three tools. Each begins with a blank and holds arguments only: the
// program is given to the system separately. Portable.
#ifndef MOSAICON_JOB_COMMAND_LINES_H_
#define MOSAICON_JOB_COMMAND_LINES_H_

#include <cstdint>
#include <optional>
#include <string>

#include "job/tif_data.h"

// What the tiling script is asked to do for one orthophoto.
struct TilingRequest {
  std::string scriptPath;     // empty: the program itself cuts the tiles
  uint32_t transparency = 0;  // R + 256 * G + 65536 * B, handed over as that one number
  std::string sourceEPSG;     // reference of inputPath
  std::string mapName;        // empty: no title option
  std::string baseUrl;        // "../" or "../../<folder>"
  std::string googleApiKey;   // empty: no key option
  std::string inputPath;
  std::string outputFolder;
};

// nullopt when an option or the whole text is longer than its buffer.
std::optional<std::string> FormatTilingArguments(const TilingRequest& request);

// Gives data's file its target reference by four ground control points, as a virtual raster. data
// must hold four corners.
std::optional<std::string> FormatTranslateArguments(const CTifData& data, const std::string& translatedFile);

// Reprojects the translated file to targetEPSG, as a virtual raster.
std::optional<std::string> FormatWarpArguments(const std::string& targetEPSG,
                                               const std::string& translatedFile,
                                               const std::string& warpedFile);

#endif  // MOSAICON_JOB_COMMAND_LINES_H_
