// mosaicon-batch --publish: publishes folders one after the other, and tells how far it is. Portable; main
// thread.
#ifndef MOSAICON_BATCH_PUBLISH_COMMAND_H_
#define MOSAICON_BATCH_PUBLISH_COMMAND_H_

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>

#include "batch/publish_arguments.h"

struct PublishConsole {
  std::ostream& out;
  std::ostream& problems;
  std::function<bool()> isInterrupted;
  // Turns the text of an argument into a path, and UTF-8 into what the console shows.
  std::function<std::filesystem::path(const std::string&)> pathOf;
  std::function<std::string(const std::string&)> shown;
};

struct PublishSecrets {
  std::string password;
  std::string passphrase;
};

// Exit codes of the program.
inline constexpr int kPublished = 0;
inline constexpr int kPublishedInPart = 1;
inline constexpr int kPublishingAborted = 130;

// dataFolder: of this user, for what is remembered.
int Publish(const PublishArguments& arguments, const PublishSecrets& secrets,
            const std::filesystem::path& dataFolder, const PublishConsole& console);

#endif  // MOSAICON_BATCH_PUBLISH_COMMAND_H_
