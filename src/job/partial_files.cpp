#include "job/partial_files.h"

#include <algorithm>

#include "kvtools/steady_time.h"

namespace {

constexpr int kAttempts = 20;
constexpr std::chrono::milliseconds kPause{100};

// The folders directly in a folder whose names are numbers.
std::vector<std::string> FindNumbered(const std::string& folder, FileSystem& files) {
  std::vector<std::string> numbered;
  for (const FoundFile& found : FindFiles(files, folder + "\\*")) {
    const bool isNumber = std::all_of(found.name.begin(), found.name.end(),
                                      [](char letter) { return letter >= '0' && letter <= '9'; });
    if (found.isDirectory && isNumber) numbered.push_back(found.path);
  }
  return numbered;
}

std::vector<std::string> FindPartialFiles(const std::string& folder, FileSystem& files) {
  std::vector<std::string> folders{folder};
  for (const std::string& level : FindNumbered(folder, files)) {
    const std::vector<std::string> columns = FindNumbered(level, files);
    folders.insert(folders.end(), columns.begin(), columns.end());
  }
  std::vector<std::string> partial;
  for (const std::string& each : folders) {
    for (const FoundFile& found : FindFiles(files, each + "\\*." + kPartialExtension)) {
      if (!found.isDirectory) partial.push_back(found.path);
    }
  }
  return partial;
}

}  // namespace

void RemovePartialFiles(const std::string& folder, FileSystem& files) {
  std::vector<std::string> partial = FindPartialFiles(folder, files);
  const auto removed = [&files](const std::string& path) {
    return files.Delete(path) || !files.Exists(path);
  };
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    partial.erase(std::remove_if(partial.begin(), partial.end(), removed), partial.end());
    if (partial.empty()) return;
    CurrentSteadyTime().Wait(kPause);
  }
}
