#include "mfc/gdi_objects.h"

#include <gtest/gtest.h>

#include "mfc/dc.h"

namespace {

bool Exists(HGDIOBJ object) {
  return GetObjectType(object) != 0;
}

LOGFONTA Describe(const CFont& font) {
  LOGFONTA description = {};
  GetObjectA(font, sizeof description, &description);
  return description;
}

TEST(GdiObject, IsDeletedWithItsOwner) {
  HGDIOBJ handle = nullptr;
  {
    const CBrush brush(RGB(1, 2, 3));
    handle = brush.GetSafeHandle();
    ASSERT_TRUE(Exists(handle));
  }
  EXPECT_FALSE(Exists(handle));
}

TEST(GdiObject, SurvivesItsOwnerOnceDetached) {
  HGDIOBJ handle = nullptr;
  {
    CBrush brush(RGB(1, 2, 3));
    handle = brush.Detach();
    EXPECT_EQ(brush.GetSafeHandle(), nullptr);
    EXPECT_FALSE(brush.DeleteObject());
  }
  ASSERT_TRUE(Exists(handle));
  CGdiObject owner;
  EXPECT_TRUE(owner.Attach(handle));
  EXPECT_TRUE(owner.DeleteObject());
  EXPECT_FALSE(Exists(handle));
}

TEST(GdiObject, TakesOneHandleOnly) {
  CBrush brush(RGB(1, 2, 3));
  const HGDIOBJ first = brush.GetSafeHandle();
  CBrush other(RGB(4, 5, 6));
  EXPECT_FALSE(brush.Attach(other.GetSafeHandle()));
  EXPECT_FALSE(brush.Attach(nullptr));
  EXPECT_EQ(brush.GetSafeHandle(), first);
  EXPECT_TRUE(Exists(other.GetSafeHandle()));
}

TEST(Brush, HasItsColour) {
  const CBrush brush(RGB(1, 2, 3));
  LOGBRUSH description = {};
  ASSERT_EQ(GetObjectA(brush, sizeof description, &description), static_cast<int>(sizeof description));
  EXPECT_EQ(description.lbStyle, static_cast<UINT>(BS_SOLID));
  EXPECT_EQ(description.lbColor, static_cast<COLORREF>(RGB(1, 2, 3)));
}

TEST(Font, HasItsSizeInTenthsOfAPoint) {
  const HDC screen = GetDC(nullptr);
  const int pixelsPerInch = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  LOGFONTA wanted = {};
  wanted.lfHeight = 720;
  CFont font;
  ASSERT_TRUE(font.CreatePointFontIndirect(&wanted));
  EXPECT_EQ(Describe(font).lfHeight, -pixelsPerInch) << "72 points are an inch";
}

TEST(Font, HasItsSizeAtAnotherResolution) {
  LOGFONTA wanted = {};
  wanted.lfHeight = 90;
  CFont font;
  ASSERT_TRUE(font.CreatePointFontIndirect(&wanted, 192));
  EXPECT_EQ(Describe(font).lfHeight, -24);
}

TEST(Font, KeepsTheOtherAttributes) {
  LOGFONTA wanted = {};
  wanted.lfHeight = 90;
  wanted.lfEscapement = 900;
  wanted.lfOrientation = 900;
  wanted.lfWeight = FW_BOLD;
  lstrcpyA(wanted.lfFaceName, "MS Sans");
  CFont font;
  ASSERT_TRUE(font.CreatePointFontIndirect(&wanted));
  EXPECT_EQ(Describe(font).lfEscapement, 900);
  EXPECT_EQ(Describe(font).lfOrientation, 900);
  EXPECT_EQ(Describe(font).lfWeight, FW_BOLD);
  EXPECT_STREQ(Describe(font).lfFaceName, "MS Sans");
}

TEST(Bitmap, HasTheColoursOfItsDeviceContext) {
  CDC screen;
  ASSERT_TRUE(screen.CreateCompatibleDC(nullptr));
  CBitmap monochrome;
  ASSERT_TRUE(monochrome.CreateCompatibleBitmap(&screen, 20, 10));
  BITMAP description = {};
  ASSERT_NE(GetObjectA(monochrome, sizeof description, &description), 0);
  EXPECT_EQ(description.bmWidth, 20);
  EXPECT_EQ(description.bmHeight, 10);
  EXPECT_EQ(description.bmBitsPixel, 1) << "a new memory context holds one monochrome pixel";
}

}  // namespace
