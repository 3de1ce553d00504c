#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "pictures_test.h"
#include "window_pixels.h"

namespace {

constexpr uint32_t kDialogGrey = 0xF0F0F0;

// The icon as Windows draws it on a dialog, in the frame that it finds for this size.
Pixels DrawIcon(int id, int side) {
  HANDLE icon = LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), IMAGE_ICON, side, side, 0);
  EXPECT_NE(icon, nullptr) << id << " at " << side;
  const Canvas canvas(side, side);
  const RECT all = {0, 0, side, side};
  const GdiObject<HBRUSH> grey(CreateSolidBrush(RGB(0xF0, 0xF0, 0xF0)));
  FillRect(canvas.Context(), &all, grey.get());
  EXPECT_TRUE(
      DrawIconEx(canvas.Context(), 0, 0, static_cast<HICON>(icon), side, side, 0, nullptr, DI_NORMAL));
  DestroyIcon(static_cast<HICON>(icon));
  return canvas.Read();
}

bool Has(const Pixels& pixels, uint32_t colour) {
  return std::find(pixels.begin(), pixels.end(), colour) != pixels.end();
}

TEST(Icons, AreDrawnWithTheirColoursAndATransparentGround) {
  for (const int side : {16, 20, 24, 32, 40, 48}) {
    const Pixels start = DrawIcon(ID_TEST_START, side);
    EXPECT_EQ(start.front(), kDialogGrey) << side;
    EXPECT_TRUE(Has(start, 0x4F9A35)) << side;
    EXPECT_TRUE(Has(start, 0xFFFFFF)) << side;
  }
}

TEST(Icons, TheApplicationIconComesInEverySize) {
  for (const int side : {16, 20, 24, 32, 40, 48, 64, 256}) {
    const Pixels application = DrawIcon(ID_TEST_APPLICATION, side);
    EXPECT_EQ(application.front(), kDialogGrey) << side;
    EXPECT_TRUE(Has(application, 0x8FBF3F)) << side;
  }
}

TEST(Icons, TheLogoIsDrawnFromItsPngFrameToo) {
  for (const int side : {64, 96, 256}) {
    const Pixels logo = DrawIcon(ID_TEST_MAKER, side);
    EXPECT_EQ(logo.front(), kDialogGrey) << side;
    EXPECT_EQ(logo[static_cast<size_t>(side / 2)], 0x163F52u) << side;
  }
}

TEST(SplashPicture, LoadsInItsSize) {
  HANDLE loaded = LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(ID_TEST_SPLASH), IMAGE_BITMAP, 0, 0,
                             LR_CREATEDIBSECTION);
  ASSERT_NE(loaded, nullptr);
  BITMAP bitmap = {};
  GetObjectA(loaded, sizeof bitmap, &bitmap);
  EXPECT_EQ(bitmap.bmWidth, 480);
  EXPECT_EQ(bitmap.bmHeight, 270);
  EXPECT_EQ(bitmap.bmBitsPixel, 24);
  DeleteObject(loaded);
}

}  // namespace
