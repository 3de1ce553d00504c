#include "job/tool_run.h"

namespace {

constexpr char kSuccess[] = "RESULT OK";
constexpr char kFailure[] = "RESULT FAILED ";

// The last file that the tiler writes, in the folder of the tiles.
const char* LastPage(const ToolRun& run) {
  return run.withKml ? "doc.kml" : "tilemapresource.xml";
}

std::string FindTilerProblem(const ToolRun& run, const ToolOutcome& outcome) {
  const std::string& words = outcome.lastWords;
  if (words.rfind(kFailure, 0) == 0) return words.substr(sizeof kFailure - 1);
  if (words != kSuccess) {
    if (!outcome.madeProduct) return "the tiler did not start or was ended from outside";
    return "the tiler could not write its log " + outcome.log + ", so nothing is known of its success";
  }
  return outcome.madeProduct ? "" : std::string("the tiler made no ") + LastPage(run);
}

}  // namespace

std::string ProductOf(const ToolRun& run) {
  return run.tool == Tool::kTiler ? run.output + "\\" + LastPage(run) : run.output;
}

std::string FindProblem(const ToolRun& run, const ToolOutcome& outcome) {
  if (run.tool == Tool::kTiler) return FindTilerProblem(run, outcome);
  if (outcome.madeProduct) return "";
  return std::string(run.tool == Tool::kTranslator ? "gdal_translate" : "gdalwarp") + " could not write " +
         run.output;
}
