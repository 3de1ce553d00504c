#include "files/name_pattern.h"

#include <gtest/gtest.h>

namespace {

TEST(NamePattern, StandsForNames) {
  struct Case {
    const char* name;
    const char* pattern;
    bool matches;
  };
  const Case cases[] = {
      {"a.tif", "*.tif", true},     {"B.TIF", "*.tif", true},
      {"a.tif", "*.TIF", true},     {".tif", "*.tif", true},
      {"a.tif.tif", "*.tif", true}, {"a.tif.jpg", "*.tif", false},
      {"a.tiff", "*.tif", false},   {"a.jpg", "*.tif", false},
      {"tif", "*.tif", false},      {"a", "*.*", true},
      {"a.b", "*.*", true},         {"", "*", true},
      {"ab", "a*", true},           {"ba", "a*", false},
      {"axbxc", "a*b*c", true},     {"axbx", "a*b*c", false},
      {"aab", "*ab", true},         {"ab", "**ab**", true},
      {"ab", "a?", true},           {"a", "a?", false},
      {"abc", "a?", false},         {"a.tif", "a.tif", true},
      {"a.tif", "b.tif", false},    {"a", "", false},
      {"caf\xE9", "CAF?", true},    {"caf\xE9", "caf\xC9", false},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(MatchesPattern(each.name, each.pattern), each.matches) << each.name << " " << each.pattern;
  }
}

// One that tries every way would not come back.
TEST(NamePattern, IsDecidedQuickly) {
  std::string pattern;
  for (int i = 0; i < 50; ++i) pattern += "*a";
  EXPECT_FALSE(MatchesPattern(std::string(2000, 'a') + "b", pattern));
}

}  // namespace
