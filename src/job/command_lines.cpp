#include "job/command_lines.h"

#include "job/bounded_text.h"

std::optional<std::string> FormatTilingArguments(const TilingRequest& request) {
  std::string keyOption;
  if (!request.googleApiKey.empty()) {
    const auto text = FormatBounded(kMaxOptionText, "-g %s", request.googleApiKey.c_str());
    if (!text) return std::nullopt;
    keyOption = *text;
  }
  std::string titleOption;
  if (!request.mapName.empty()) titleOption = "-t \"" + request.mapName + "\"";
  std::string script;
  if (!request.scriptPath.empty()) script = " \"" + request.scriptPath + "\"";
  // The place of a resampling option, left empty on purpose: the script's own choice suits all maps.
  const char* resamplingSlot = "";

  return FormatBounded(kMaxPathText, "%s -a %d -s %s -p mercator %s %s -k -u %s %s \"%s\" \"%s\"",
                       script.c_str(), static_cast<int>(request.transparency), request.sourceEPSG.c_str(),
                       titleOption.c_str(), resamplingSlot, request.baseUrl.c_str(), keyOption.c_str(),
                       request.inputPath.c_str(), request.outputFolder.c_str());
}

std::optional<std::string> FormatTranslateArguments(const CTifData& data, const std::string& translatedFile) {
  std::string points;
  for (const TifCorner& corner : data.m_vCorners) {
    const auto point = FormatBounded(kMaxPathText, " -gcp %.0lf %.0lf %.20lf %.20lf", corner.dfPixel,
                                     corner.dfLine, corner.dfEasting, corner.dfNorthing);
    if (!point) return std::nullopt;
    points += *point;
  }
  return FormatBounded(kMaxPathText, " -of VRT -a_srs %s%s \"%s\" \"%s\"", data.m_strTargetEPSG.c_str(),
                       points.c_str(), data.m_strFileName.c_str(), translatedFile.c_str());
}

std::optional<std::string> FormatWarpArguments(const std::string& targetEPSG,
                                               const std::string& translatedFile,
                                               const std::string& warpedFile) {
  return FormatBounded(kMaxPathText, " -of VRT -t_srs %s \"%s\" \"%s\"", targetEPSG.c_str(),
                       translatedFile.c_str(), warpedFile.c_str());
}
