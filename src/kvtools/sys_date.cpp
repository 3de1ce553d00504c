#include <ctime>

#include "kvtools/kvtools.h"

std::string KVT_GetCurrentSysDate(int dateOnly, int universalTime) {
  const std::time_t now = std::time(nullptr);
  const std::tm* parts = universalTime != 0 ? std::gmtime(&now) : std::localtime(&now);
  char text[64];
  const char* format = dateOnly != 0 ? "%Y-%m-%d" : "%Y-%m-%d %H:%M";
  if (parts == nullptr || std::strftime(text, sizeof text, format, parts) == 0) return "";
  return text;
}
