// Reads what the tiling script wrote about a run. Portable.
#ifndef MOSAICON_BATCH_TILER_LOG_H_
#define MOSAICON_BATCH_TILER_LOG_H_

#include <string>
#include <vector>

struct TilerResult {
  bool ok = false;
  bool told = false;   // false: the log holds no result line
  std::string reason;  // one sentence, when not ok
};

// The last result line of text, the part of the log that one run added. A text without one is the
// log of a script that never started or was killed.
TilerResult ReadTilerResult(const std::string& text);

// The quoted arguments of a tool's command line, in order. For every tool the last one is the file or
// folder that it makes and the one before that its input.
std::vector<std::string> QuotedArguments(const std::string& commandLine);

#endif  // MOSAICON_BATCH_TILER_LOG_H_
