// What became of the map of one orthophoto, and how a person is told. Portable.
#ifndef MOSAICON_JOB_MAP_OUTCOME_H_
#define MOSAICON_JOB_MAP_OUTCOME_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum class MapState {
  kComplete,
  kFailed,   // it is missing or incomplete, because something went wrong
  kLeftOut,  // it is missing or incomplete, because it was not made, or not to its end
  kKept,     // it was not made, because the user wants to keep what is there
};

struct MapOutcome {
  std::string orthophoto;
  MapState state = MapState::kLeftOut;
  std::string problem;               // what went wrong, or why it was not made; a sentence without its end
  std::optional<uint32_t> exitCode;  // of the tool that failed, where that tells anything
};

// Whether something went wrong that the log of the tools may explain.
bool AnyFailed(const std::vector<MapOutcome>& maps);

// How many maps are missing or incomplete, as a heading; empty when none is.
std::string CountProblems(const std::vector<MapOutcome>& maps);

// A line for each of them, ended by "\r\n", and one that says where the details are, unless that is empty.
std::string DescribeProblems(const std::vector<MapOutcome>& maps, const std::string& details);

#endif  // MOSAICON_JOB_MAP_OUTCOME_H_
