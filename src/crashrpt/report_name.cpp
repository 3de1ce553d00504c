#include "crashrpt/report_name.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

// d digit, x digit of a GUID, anything else itself.
constexpr char kPattern[] = "ddddddddTddddddZ-xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool Matches(char c, char pattern) {
  if (pattern == 'd') return IsDigit(c);
  if (pattern == 'x') return IsDigit(c) || (c >= 'a' && c <= 'f');
  return c == pattern;
}

struct CivilTime {
  int year;
  unsigned month, day, hour, minute, second;
};

CivilTime CivilTimeOf(uint64_t fileTime) {
  using std::chrono::days;
  using std::chrono::seconds;
  const std::chrono::sys_days epoch = std::chrono::year{1601} / 1 / 1;
  const seconds all(fileTime / 10'000'000);
  const auto wholeDays = std::chrono::duration_cast<days>(all);
  const std::chrono::year_month_day date(epoch + wholeDays);
  const auto rest = static_cast<unsigned>((all - wholeDays).count());
  return {static_cast<int>(date.year()),
          static_cast<unsigned>(date.month()),
          static_cast<unsigned>(date.day()),
          rest / 3600,
          rest / 60 % 60,
          rest % 60};
}

std::string Format(const char* format, const CivilTime& time) {
  std::array<char, 64> text = {};
  std::snprintf(text.data(), text.size(), format, time.year, time.month, time.day, time.hour, time.minute,
                time.second);
  return text.data();
}

}  // namespace

std::string IsoTime(uint64_t fileTime) {
  return Format("%04d-%02u-%02uT%02u:%02u:%02uZ", CivilTimeOf(fileTime));
}

std::string ReportName(uint64_t fileTime, const std::string& guid) {
  return Format("%04d%02u%02uT%02u%02u%02uZ-", CivilTimeOf(fileTime)) + guid;
}

bool IsReportName(const std::string& name) {
  if (name.size() != std::strlen(kPattern)) return false;
  for (size_t i = 0; i < name.size(); ++i) {
    if (!Matches(name[i], kPattern[i])) return false;
  }
  return true;
}

std::string FileNameOf(const std::string& text) {
  std::string name = text;
  for (char& c : name) {
    const bool control = static_cast<unsigned char>(c) < 32;
    if (control || std::strchr("<>:\"/\\|?*", c) != nullptr) c = '_';
  }
  for (size_t i = name.size(); i > 0 && (name[i - 1] == ' ' || name[i - 1] == '.'); --i) name[i - 1] = '_';
  return name.empty() ? "_" : name;
}
