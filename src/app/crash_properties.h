// What is attached to every crash report besides the crash itself. Portable; text in the ANSI code
// page.
#ifndef MOSAICON_APP_CRASH_PROPERTIES_H_
#define MOSAICON_APP_CRASH_PROPERTIES_H_

#include <string>
#include <utility>
#include <vector>

#include "app/user_data.h"

// Texts about the computer, each as KVTools tells it.
struct SystemTexts {
  std::string os;
  std::string pixelDepth;
  std::string resolution;
  std::string ram;
  std::vector<std::string> graphicAdapters;
};

// Each system text is cut to this many bytes, the terminator included.
inline constexpr int kSystemTextBuffer = 1024;

using CrashProperty = std::pair<std::string, std::string>;  // name, value

// In the order in which reports show them: first those of the computer.
std::vector<CrashProperty> MakeSystemProperties(const SystemTexts& system);
std::vector<CrashProperty> MakeUserProperties(const UserData& user);

// "<application> (ver. <version>) Error report", at most 1024 bytes with the terminator.
std::string MakeReportSubject(const std::string& application, const std::string& version);

#endif  // MOSAICON_APP_CRASH_PROPERTIES_H_
