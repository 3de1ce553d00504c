// The command line of mosaicon-batch. Portable.
#ifndef MOSAICON_BATCH_ARGUMENTS_H_
#define MOSAICON_BATCH_ARGUMENTS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tiler/tile_kind.h"

struct BatchArguments {
  std::vector<std::string> inputs;  // orthophotos and folders, as typed
  std::string title;
  std::string target;
  std::optional<std::string> url;  // nullopt: no web output
  std::string googleKey;
  uint32_t transparency = 0;  // R + 256 * G + 65536 * B
  int resampling = 0;         // index into ResamplingModes
  tiler::TileFormat tiles = tiler::TileFormat::kPng;
  std::optional<bool> overwrite;
  bool quiet = false;
  bool help = false;
  bool version = false;
};

// Reads the arguments after the program's name. An option takes its value from the next argument or
// after "="; "--" ends the options. Returns an empty text, or one sentence that says what is wrong.
std::string ParseBatchArguments(const std::vector<std::string>& words, BatchArguments& arguments);

// What --help prints.
std::string BatchHelp();

#endif  // MOSAICON_BATCH_ARGUMENTS_H_
