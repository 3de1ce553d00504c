#include "net/ftp_listing.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>

#include "net/net_text.h"

namespace {

using std::string_view;

constexpr int kFieldsWithoutGroup = 8;
constexpr size_t kLongestSize = 59;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::int32_t CutToInt32(std::int64_t number) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

// As strtol of the 32-bit world reads it, but without its blanks before the number.
std::int32_t Number(string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  std::int64_t number = 0;
  for (const char c : text) {
    if (!IsDigit(c)) break;
    number = std::min<std::int64_t>(number * 10 + (c - '0'), std::int64_t{1} << 40);
  }
  return CutToInt32(isNegative ? -number : number);
}

// At most two digits, removed from the text.
std::int32_t TakeTwoDigits(string_view& text) {
  std::int32_t number = 0;
  for (int i = 0; i < 2 && !text.empty() && IsDigit(text.front()); ++i) {
    number = number * 10 + (text.front() - '0');
    text.remove_prefix(1);
  }
  return number;
}

std::int32_t DosYear(string_view text) {
  constexpr size_t kWholeYear = 4;
  if (std::min(text.find_first_not_of("0123456789"), text.size()) == kWholeYear) return Number(text);
  const std::int32_t twoDigits = TakeTwoDigits(text);
  return 1900 + twoDigits + (twoDigits < 70 ? 100 : 0);
}

// From the start of a field to the end of the line; empty when there is no such field.
string_view FromField(string_view line, int index) {
  for (; index >= 0; --index) {
    const size_t begin = line.find_first_not_of(' ');
    if (begin == string_view::npos) return {};
    line.remove_prefix(begin);
    if (index > 0) line.remove_prefix(std::min(line.find(' '), line.size()));
  }
  return line;
}

string_view Field(string_view line, int index) {
  const string_view rest = FromField(line, index);
  return rest.substr(0, rest.find(' '));
}

// What follows the first occurrence of separator; empty without one.
string_view After(string_view text, char separator) {
  const size_t place = text.find(separator);
  return place == string_view::npos ? string_view() : text.substr(place + 1);
}

std::int32_t MonthNumber(string_view month) {
  static constexpr string_view kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                            "jul", "aug", "sep", "oct", "nov", "dec"};
  const auto isSame = [month](string_view name) { return IsSameIgnoringCase(month, name); };
  const auto* const found = std::find_if(std::begin(kMonths), std::end(kMonths), isSame);
  return found == std::end(kMonths) ? 1 : static_cast<std::int32_t>(found - std::begin(kMonths)) + 1;
}

// Everything but the link is set anew, so that nothing of an earlier line shines through.
void Reset(FtpDirEntry& entry) {
  FtpDirEntry* const next = entry.next;
  entry = {};
  entry.next = next;
}

void SetName(string_view name, FtpDirEntry& entry) {
  name.copy(entry.name, sizeof entry.name - 1);
}

string_view View(const char* line) {
  return line == nullptr ? string_view() : line;
}

}  // namespace

void ParseUnixListLine(const char* line, int currentYear, FtpDirEntry& entry) {
  Reset(entry);
  const string_view text = View(line);
  const int x = CountTokens(line, " ") > kFieldsWithoutGroup ? 1 : 0;
  entry.directory = text.starts_with('d') || text.starts_with('D') ? 1 : 0;
  const string_view size = Field(text, 3 + x);
  entry.size = size.size() > kLongestSize ? 0 : Number(size);
  entry.month = MonthNumber(Field(text, 4 + x));
  entry.day = Number(Field(text, 5 + x));
  entry.year = 1900;
  const string_view timeOrYear = Field(text, 6 + x);
  if (timeOrYear.find(':') != string_view::npos) {
    entry.hour = Number(timeOrYear);
    entry.minute = Number(After(timeOrYear, ':'));
    entry.year = currentYear;
  } else if (!timeOrYear.empty()) {
    entry.year = Number(timeOrYear);
  }
  SetName(FromField(text, 7 + x), entry);
}

void ParseDosListLine(const char* line, FtpDirEntry& entry) {
  Reset(entry);
  const string_view text = View(line);
  SetName(FromField(text, 3), entry);

  const string_view sizeOrMark = Field(text, 2);
  entry.directory = sizeOrMark.size() > 1 && IsSameIgnoringCase(sizeOrMark.substr(1, 1), "d") ? 1 : 0;
  entry.size = Number(sizeOrMark);

  string_view month = Field(text, 0);
  string_view day = After(month, '-');
  const string_view year = After(day, '-');
  entry.month = TakeTwoDigits(month);
  entry.day = TakeTwoDigits(day);
  entry.year = DosYear(year);

  const string_view time = Field(text, 1);
  if (time.find(':') == string_view::npos) return;
  entry.hour = Number(time);
  string_view minute = After(time, ':');
  entry.minute = TakeTwoDigits(minute);
  if (minute.starts_with('P')) entry.hour = CutToInt32(std::int64_t{entry.hour} + 12);
}
