#include "job/window_place.h"

#include <gtest/gtest.h>

#include <utility>

#include "kvtools/kvtools.h"

namespace {

TEST(WindowPlace, ComesBackAsItWasSaved) {
  SaveWindowPlace({-1200, 35});
  const auto place = LoadWindowPlace();
  ASSERT_TRUE(place.has_value());
  EXPECT_EQ(place->x, -1200);
  EXPECT_EQ(place->y, 35);
}

TEST(WindowPlace, IsUnknownWhenWhatIsStoredIsNoNumber) {
  for (const char* stored : {"", "abc", "12x", "99999999999", " 5"}) {
    SaveWindowPlace({1, 2});
    KVT_WriteUserProfileString("Input", "WindowTop", stored);
    EXPECT_FALSE(LoadWindowPlace().has_value()) << stored;
  }
}

TEST(WindowPlace, IsKeptBesideTheForm) {
  SaveWindowPlace({-1200, 35});
  SaveLastFolder("d:\\maps");
  for (const auto& [key, value] : {std::pair("WindowLeft", "-1200"), std::pair("WindowTop", "35"),
                                   std::pair("LastFolder", "d:\\maps")}) {
    char stored[64] = "";
    KVT_GetUserProfileString("Input", key, "(none)", stored, sizeof stored);
    EXPECT_STREQ(stored, value) << key;
  }
}

TEST(LastFolder, ComesBackAsItWasSaved) {
  SaveLastFolder("d:\\my maps");
  EXPECT_EQ(LoadLastFolder(), "d:\\my maps");
}

TEST(WindowPlace, IsMovedIntoTheWorkArea) {
  const ScreenRectangle screen = {0, 0, 1920, 1040};
  struct Case {
    ScreenPoint saved;
    ScreenPoint fitted;
  };
  const Case cases[] = {
      {{100, 50}, {100, 50}}, {{1800, 50}, {920, 50}},  {{100, 900}, {100, 540}},
      {{-300, -20}, {0, 0}},  {{920, 540}, {920, 540}}, {{921, 541}, {920, 540}},
  };
  for (const Case& each : cases) {
    const ScreenPoint fitted = FitIntoWorkArea(each.saved, 1000, 500, screen);
    EXPECT_EQ(fitted.x, each.fitted.x) << each.saved.x;
    EXPECT_EQ(fitted.y, each.fitted.y) << each.saved.y;
  }
}

TEST(WindowPlace, ShowsTheUpperLeftCornerOnASmallScreen) {
  const ScreenPoint fitted = FitIntoWorkArea({200, 100}, 1000, 700, {-800, 0, 0, 600});
  EXPECT_EQ(fitted.x, -800);
  EXPECT_EQ(fitted.y, 0);
}

}  // namespace
