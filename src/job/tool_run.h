// One run of a tool, and what became of it, as data: whoever runs the tool needs to know nothing of the job,
// and whoever judges the result nothing of how it was run. Portable.
#ifndef MOSAICON_JOB_TOOL_RUN_H_
#define MOSAICON_JOB_TOOL_RUN_H_

#include <cstdint>
#include <optional>
#include <string>

enum class Tool {
  kTranslator,  // ties an orthophoto down at its corners
  kWarper,      // brings it into its UTM zone
  kTiler,       // cuts the tiles
};

struct ToolRun {
  Tool tool = Tool::kTiler;
  std::string program;     // full path
  std::string arguments;   // the command line, which begins with a blank and holds the arguments only
  std::string orthophoto;  // that the map is made of
  std::string input;       // the file that the tool reads: the orthophoto, or what another tool made of it
  std::string output;      // the file that it writes; the folder of the tiles
  bool withKml = true;     // of a tiler
};

struct ToolOutcome {
  // Nothing when the tool was not started or was ended from outside.
  std::optional<uint32_t> exitCode;
  // The line that tells the result, as the tool wrote it into its log in this run; empty when there is none,
  // as always for the tools that write no log.
  std::string lastWords;
  // The file that the last words come from, which tells more.
  std::string log;
  // Whether the product was written in this run. Filled in by whoever looks at the files.
  bool madeProduct = false;
};

// The file that is there when a run has succeeded: the last one that its tool writes.
std::string ProductOf(const ToolRun& run);

// What went wrong, in one sentence; empty when the run succeeded.
std::string FindProblem(const ToolRun& run, const ToolOutcome& outcome);

#endif  // MOSAICON_JOB_TOOL_RUN_H_
