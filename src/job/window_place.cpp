#include "job/window_place.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "kvtools/profile_section.h"

namespace {

// Beside what the form is filled in with.
constexpr ProfileSection kProfile("Input", 4096);

std::optional<int> LoadNumber(const char* key) {
  const std::string text = kProfile.Load(key);
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
  kProfile.Save("WindowLeft", std::to_string(topLeft.x));
  kProfile.Save("WindowTop", std::to_string(topLeft.y));
}

std::string LoadLastFolder() {
  return kProfile.Load("LastFolder");
}

void SaveLastFolder(const std::string& folder) {
  kProfile.Save("LastFolder", folder);
}

ScreenPoint FitIntoWorkArea(const ScreenPoint& topLeft, int width, int height,
                            const ScreenRectangle& workArea) {
  return {Fit(topLeft.x, width, workArea.left, workArea.right),
          Fit(topLeft.y, height, workArea.top, workArea.bottom)};
}
