#include "mfc/dc.h"

#include <gtest/gtest.h>

#include "mfc/gdi_objects.h"
#include "mfc/testing/canvas.h"

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

TEST(DeviceContext, IsDeletedWithItsOwner) {
  HDC handle = nullptr;
  {
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    handle = dc.m_hDC;
    ASSERT_EQ(GetObjectType(handle), static_cast<DWORD>(OBJ_MEMDC));
  }
  EXPECT_EQ(GetObjectType(handle), 0U);
}

TEST(DeviceContext, SurvivesItsOwnerOnceDetached) {
  HDC handle = nullptr;
  {
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    EXPECT_EQ(dc.m_hAttribDC, dc.m_hDC);
    handle = dc.Detach();
    EXPECT_EQ(dc.m_hDC, nullptr);
    EXPECT_EQ(dc.m_hAttribDC, nullptr);
    EXPECT_FALSE(dc.DeleteDC());
  }
  ASSERT_EQ(GetObjectType(handle), static_cast<DWORD>(OBJ_MEMDC));
  CDC owner;
  EXPECT_TRUE(owner.Attach(handle));
  EXPECT_EQ(owner.m_hAttribDC, handle);
  EXPECT_FALSE(owner.Attach(handle)) << "it has one";
  EXPECT_TRUE(owner.DeleteDC());
  EXPECT_EQ(GetObjectType(handle), 0U);
}

TEST(DeviceContext, DoesNothingWithoutAHandle) {
  CDC dc;
  RECT rect = {0, 0, 10, 10};
  EXPECT_FALSE(dc.Attach(nullptr));
  EXPECT_FALSE(dc.IsPrinting());
  EXPECT_EQ(dc.SaveDC(), 0);
  EXPECT_FALSE(dc.RestoreDC(1));
  EXPECT_EQ(dc.SelectObject(GetStockObject(BLACK_BRUSH)), nullptr);
  EXPECT_EQ(dc.SetTextColor(kRed), CLR_INVALID);
  EXPECT_EQ(dc.IntersectClipRect(&rect), ERROR);
  EXPECT_FALSE(dc.TextOut(0, 0, "x", 1));
}

TEST(DeviceContext, TellsWhatWasSelectedBefore) {
  TestCanvas dc(40, 20);
  const CBrush first(kRed);
  const CBrush second(kGreen);
  const HGDIOBJ original = dc.SelectObject(first);
  EXPECT_NE(original, nullptr);
  EXPECT_EQ(dc.SelectObject(second), first.GetSafeHandle());
  EXPECT_EQ(dc.SelectObject(original), second.GetSafeHandle());
  EXPECT_EQ(dc.SelectObject(nullptr), nullptr);
}

TEST(DeviceContext, TellsWhatWasSetBefore) {
  TestCanvas dc(40, 20);
  dc.SetTextColor(kRed);
  EXPECT_EQ(dc.SetTextColor(kGreen), kRed);
  dc.SetBkMode(TRANSPARENT);
  EXPECT_EQ(dc.SetBkMode(OPAQUE), TRANSPARENT);
  EXPECT_EQ(dc.SetMapMode(MM_LOMETRIC), MM_TEXT);
  EXPECT_EQ(dc.GetMapMode(), MM_LOMETRIC);
  dc.SetWindowOrg(3, 4);
  const POINT previous = dc.SetWindowOrg(0, 0);
  EXPECT_EQ(previous.x, 3);
  EXPECT_EQ(previous.y, 4);
}

TEST(DeviceContext, RestoresEverythingThatItSaved) {
  TestCanvas dc(40, 20);
  dc.SetTextColor(kRed);
  const RECT left = {0, 0, 10, 20};
  const int outer = dc.SaveDC();
  ASSERT_GT(outer, 0);
  dc.SetTextColor(kGreen);
  dc.IntersectClipRect(&left);
  ASSERT_GT(dc.SaveDC(), outer);
  dc.SetTextColor(kBlue);

  EXPECT_TRUE(dc.RestoreDC(outer)) << "both at once";
  EXPECT_EQ(dc.SetTextColor(kRed), kRed);
  EXPECT_TRUE(dc.PtVisible(39, 19));
  EXPECT_FALSE(dc.RestoreDC(outer)) << "nothing is saved any more";
}

TEST(DeviceContext, PaintsInsideOfItsClipRegionOnly) {
  TestCanvas dc(40, 20);
  const RECT all = {0, 0, 40, 20};
  const RECT left = {0, 0, 10, 20};
  const RECT topLeft = {0, 0, 10, 5};
  EXPECT_EQ(dc.IntersectClipRect(&left), SIMPLEREGION);
  dc.ExcludeClipRect(&topLeft);
  dc.FillSolidRect(&all, kRed);
  EXPECT_FALSE(dc.PtVisible(9, 4));
  EXPECT_TRUE(dc.PtVisible(9, 5));
  EXPECT_FALSE(dc.RectVisible(&topLeft));
  EXPECT_TRUE(dc.RectVisible(&left));
  RECT box = {};
  EXPECT_NE(dc.GetClipBox(&box), ERROR);
  EXPECT_EQ(box.top, 5);
  EXPECT_EQ(box.right, 10);
  EXPECT_EQ(dc.Pixel(9, 5), kRed);
  EXPECT_EQ(dc.Pixel(9, 4), 0U);
  EXPECT_EQ(dc.Pixel(10, 5), 0U);
}

TEST(DeviceContext, FillsRectangles) {
  TestCanvas dc(40, 20);
  const RECT left = {0, 0, 10, 20};
  const RECT right = {30, 0, 40, 20};
  const COLORREF background = dc.GetBkColor();
  dc.FillSolidRect(&left, kGreen);
  EXPECT_EQ(dc.GetBkColor(), background);
  dc.FillRect(&right, CBrush(kBlue));
  EXPECT_EQ(dc.Pixel(9, 19), kGreen);
  EXPECT_EQ(dc.Pixel(10, 19), 0U);
  EXPECT_EQ(dc.Pixel(29, 0), 0U);
  EXPECT_EQ(dc.Pixel(30, 0), kBlue);
}

TEST(DeviceContext, CopiesPixels) {
  TestCanvas source(40, 20);
  const RECT rect = {5, 5, 6, 6};
  source.FillSolidRect(&rect, kRed);
  TestCanvas target(40, 20);
  EXPECT_TRUE(target.BitBlt(20, 10, 10, 10, &source, 5, 5, SRCCOPY));
  EXPECT_EQ(target.Pixel(20, 10), kRed);
  EXPECT_EQ(target.Pixel(21, 10), 0U);
}

TEST(DeviceContext, ConvertsBetweenUnits) {
  TestCanvas dc(40, 20);
  dc.SetWindowOrg(100, 50);
  RECT rect = {110, 60, 120, 70};
  dc.LPtoDP(&rect);
  EXPECT_EQ(rect.left, 10);
  EXPECT_EQ(rect.bottom, 20);
  dc.DPtoLP(&rect);
  EXPECT_EQ(rect.left, 110);
  EXPECT_EQ(rect.bottom, 70);
}

TEST(DeviceContext, WritesTextInEveryWayInTheSamePlace) {
  const auto picture = [](auto write) {
    TestCanvas dc(40, 20);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(kRed);
    write(dc);
    return dc.Pixels();
  };
  const auto written = picture([](CDC& dc) { EXPECT_TRUE(dc.TextOut(2, 1, "Ab", 2)); });
  EXPECT_NE(written, picture([](CDC&) {}));
  EXPECT_EQ(written,
            picture([](CDC& dc) { EXPECT_TRUE(dc.ExtTextOut(2, 1, 0, nullptr, "Ab", 2, nullptr)); }));
  EXPECT_EQ(written, picture([](CDC& dc) {
              const SIZE size = dc.TabbedTextOut(2, 1, "Ab", 2, 0, nullptr, 0);
              EXPECT_EQ(size.cx, dc.GetTextExtent("Ab").cx);
              EXPECT_EQ(size.cy, dc.GetTextExtent("Ab").cy);
            }));
  RECT rect = {2, 1, 40, 20};
  EXPECT_EQ(written, picture([&](CDC& dc) {
              EXPECT_EQ(dc.DrawText("Ab", 2, &rect, DT_LEFT | DT_TOP), dc.GetTextExtent("Ab").cy);
            }));
  char text[] = "Ab";
  EXPECT_EQ(written, picture([&](CDC& dc) {
              EXPECT_NE(dc.DrawTextEx(text, 2, &rect, DT_LEFT | DT_TOP, nullptr), 0);
            }));
  EXPECT_NE(written, picture([&](CDC& dc) {
              EXPECT_TRUE(dc.GrayString(static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)), nullptr,
                                        reinterpret_cast<LPARAM>(text), 2, 2, 1, 0, 0));
            }));
}

TEST(DeviceContext, SpeaksToItsDriver) {
  TestCanvas dc(40, 20);
  POINT paper = {-1, -1};
  EXPECT_GT(dc.Escape(GETPHYSPAGESIZE, 0, nullptr, &paper), 0);
  EXPECT_EQ(paper.x, GetDeviceCaps(dc.m_hDC, PHYSICALWIDTH));
  EXPECT_EQ(paper.y, GetDeviceCaps(dc.m_hDC, PHYSICALHEIGHT));
}

// As while printing with a preview: what is drawn goes to one, questions to the other.
class TwoHandles : public testing::Test {
 protected:
  void SetUp() override {
    m_dc.Attach(m_output.m_hDC);
    m_dc.m_hAttribDC = m_attributes.m_hDC;
  }
  void TearDown() override { m_dc.Detach(); }

  TestCanvas m_output{40, 20};
  TestCanvas m_attributes{40, 20};
  CDC m_dc;
};

TEST_F(TwoHandles, AreBothSet) {
  const CBrush brush(kRed);
  m_dc.SetTextColor(kGreen);
  m_dc.SetBkMode(TRANSPARENT);
  m_dc.SelectObject(brush);
  for (HDC each : {m_output.m_hDC, m_attributes.m_hDC}) {
    EXPECT_EQ(GetTextColor(each), kGreen);
    EXPECT_EQ(GetBkMode(each), TRANSPARENT);
    EXPECT_EQ(GetCurrentObject(each, OBJ_BRUSH), brush.GetSafeHandle());
    ::SelectObject(each, GetStockObject(WHITE_BRUSH));
  }
}

TEST_F(TwoHandles, AreSavedAndRestoredTogether) {
  m_output.SaveDC();  // so that their own numbers differ
  m_dc.SetTextColor(kRed);
  const int saved = m_dc.SaveDC();
  ASSERT_NE(saved, 0);
  m_dc.SetTextColor(kGreen);
  EXPECT_TRUE(m_dc.RestoreDC(saved));
  EXPECT_EQ(GetTextColor(m_output.m_hDC), kRed);
  EXPECT_EQ(GetTextColor(m_attributes.m_hDC), kRed);
}

TEST_F(TwoHandles, AreDrawnOnAndAskedApart) {
  const RECT rect = {0, 0, 10, 10};
  ::SetBkColor(m_attributes.m_hDC, kBlue);
  EXPECT_EQ(m_dc.GetBkColor(), kBlue);
  m_dc.FillSolidRect(&rect, kRed);
  EXPECT_EQ(m_output.Pixel(5, 5), kRed);
  EXPECT_EQ(m_attributes.Pixel(5, 5), 0U);
}

}  // namespace
