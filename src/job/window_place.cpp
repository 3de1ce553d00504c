#include "job/window_place.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "kvtools/kvtools.h"

namespace {

// Beside what the form is filled in with.
constexpr char kSection[] = "Input";
constexpr int kNumberBuffer = 16;
constexpr int kFolderBuffer = 4096;

std::optional<int> LoadNumber(const char* key) {
  char buffer[kNumberBuffer];
  KVT_GetUserProfileString(kSection, key, "", buffer, kNumberBuffer);
  const std::string_view text = buffer;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

int Fit(int start, int length, int low, int high) {
  return std::max(low, std::min(start, high - length));
}

}  // namespace

std::optional<ScreenPoint> LoadWindowPlace() {
  const auto left = LoadNumber("WindowLeft");
  const auto top = LoadNumber("WindowTop");
  if (!left || !top) return std::nullopt;
  return ScreenPoint{*left, *top};
}

void SaveWindowPlace(const ScreenPoint& topLeft) {
  KVT_WriteUserProfileString(kSection, "WindowLeft", std::to_string(topLeft.x).c_str());
  KVT_WriteUserProfileString(kSection, "WindowTop", std::to_string(topLeft.y).c_str());
}

std::string LoadLastFolder() {
  char buffer[kFolderBuffer];
  KVT_GetUserProfileString(kSection, "LastFolder", "", buffer, kFolderBuffer);
  return buffer;
}

void SaveLastFolder(const std::string& folder) {
  KVT_WriteUserProfileString(kSection, "LastFolder", folder.c_str());
}

ScreenPoint FitIntoWorkArea(const ScreenPoint& topLeft, int width, int height,
                            const ScreenRectangle& workArea) {
  return {Fit(topLeft.x, width, workArea.left, workArea.right),
          Fit(topLeft.y, height, workArea.top, workArea.bottom)};
}
