// The command line of mosaicon-batch --publish. Portable.
#ifndef MOSAICON_BATCH_PUBLISH_ARGUMENTS_H_
#define MOSAICON_BATCH_PUBLISH_ARGUMENTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "mirror/publish_address.h"

struct PublishArguments {
  mirror::PublishAddress address;
  std::vector<std::string> folders;  // as typed
  bool dryRun = false;
  bool deleteExtras = false;
  int connections = 4;
  std::uint64_t bytesPerSecond = 0;
  std::string user;
  std::string netrcFile;
  std::string keyFile;
  bool useAgent = false;
  std::string webAddress;    // of the folder at the address; empty: it is not looked at
  std::string hostKey;       // accepted when the host is not known yet
  std::string certificates;  // a file
  bool quiet = false;
  bool help = false;
};

// Whether these arguments are about publishing.
bool IsAboutPublishing(const std::vector<std::string>& words);

// Reads the arguments after the program's name. Returns an empty text, or one sentence that says what is
// wrong.
std::string ParsePublishArguments(const std::vector<std::string>& words, PublishArguments& arguments);

std::string PublishHelp();

#endif  // MOSAICON_BATCH_PUBLISH_ARGUMENTS_H_
