#include "progress/progress_mem_dc.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "mfc/testing/canvas.h"
#include "support/open_handles.h"

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);

class MemDC : public testing::Test {
 protected:
  void SetUp() override { ::SetBkColor(m_target.m_hDC, kGreen); }

  TestCanvas m_target{60, 40};
};

TEST_F(MemDC, ShowsItselfOnlyWhenItIsDone) {
  {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    EXPECT_NE(dc.m_hDC, m_target.m_hDC);
    const RECT rect = {10, 10, 20, 20};
    dc.FillSolidRect(&rect, kRed);
    EXPECT_EQ(m_target.Pixel(15, 15), 0U);
  }
  EXPECT_EQ(m_target.Pixel(10, 10), kRed);
  EXPECT_EQ(m_target.Pixel(19, 19), kRed);
  EXPECT_EQ(m_target.Pixel(20, 20), kGreen);
  EXPECT_EQ(m_target.Pixel(9, 9), kGreen) << "the target's background colour";
  EXPECT_EQ(m_target.Pixel(59, 39), kGreen);
}

TEST_F(MemDC, CoversWhatTheTargetHasToPaint) {
  const RECT clip = {20, 10, 50, 30};
  m_target.IntersectClipRect(&clip);
  {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    const RECT rect = {0, 0, 25, 15};
    dc.FillSolidRect(&rect, kRed);
  }
  EXPECT_EQ(m_target.Pixel(19, 15), 0U);
  EXPECT_EQ(m_target.Pixel(20, 10), kRed);
  EXPECT_EQ(m_target.Pixel(24, 14), kRed);
  EXPECT_EQ(m_target.Pixel(25, 15), kGreen);
  EXPECT_EQ(m_target.Pixel(49, 29), kGreen);
  EXPECT_EQ(m_target.Pixel(50, 29), 0U);
}

TEST_F(MemDC, HasTheUnitsOfItsTarget) {
  m_target.SetWindowOrg(1000, 500);
  {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    const RECT rect = {1010, 510, 1020, 520};
    dc.FillSolidRect(&rect, kRed);
  }
  EXPECT_EQ(m_target.Pixel(9, 9), kGreen);
  EXPECT_EQ(m_target.Pixel(10, 10), kRed);
  EXPECT_EQ(m_target.Pixel(19, 19), kRed);
  EXPECT_EQ(m_target.Pixel(20, 20), kGreen);
}

TEST_F(MemDC, HasTheMappingModeOfItsTarget) {
  // A tenth of a millimetre, upwards: the picture lies below the origin.
  m_target.SetMapMode(MM_LOMETRIC);
  RECT rect = {10, 10, 20, 20};
  m_target.DPtoLP(&rect);
  {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    EXPECT_EQ(dc.GetMapMode(), MM_LOMETRIC);
    dc.FillRect(&rect, CBrush(kRed));
    EXPECT_EQ(m_target.Pixel(15, 15), 0U);
  }
  EXPECT_EQ(m_target.Pixel(15, 15), kRed);
  EXPECT_EQ(m_target.Pixel(15, 25), kGreen);
  EXPECT_EQ(m_target.Pixel(25, 15), kGreen);
  EXPECT_EQ(m_target.Pixel(5, 5), kGreen);
}

TEST_F(MemDC, DrawsDirectlyOnWhatPrints) {
  m_target.m_bPrinting = TRUE;
  {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    EXPECT_TRUE(dc.IsPrinting());
    EXPECT_EQ(dc.m_hDC, m_target.m_hDC);
    EXPECT_EQ(dc.m_hAttribDC, m_target.m_hAttribDC);
    EXPECT_EQ(m_target.Pixel(5, 5), kGreen);
    const RECT rect = {10, 10, 20, 20};
    dc.FillSolidRect(&rect, kRed);
    EXPECT_EQ(m_target.Pixel(15, 15), kRed);
  }
  EXPECT_EQ(GetObjectType(m_target.m_hDC), static_cast<DWORD>(OBJ_MEMDC)) << "it is the target's own";
  EXPECT_EQ(m_target.Pixel(15, 15), kRed);
}

// The system has a limited number of drawing objects for each program.
TEST_F(MemDC, LeavesTheTargetAloneWithoutABitmap) {
  const std::vector<COLORREF> before = m_target.Pixels();
  std::vector<std::unique_ptr<CBrush>> brushes;
  do {
    brushes.push_back(std::make_unique<CBrush>(kRed));
  } while (brushes.back()->GetSafeHandle() != nullptr);
  // Room for a device context.
  brushes[0].reset();
  { CTProgressTimeToCompleteMemDC dc(&m_target); }
  brushes.clear();
  EXPECT_EQ(m_target.Pixels(), before);
}

TEST_F(MemDC, LeavesNoObjectsBehind) {
  const int objects = CountGdiObjects();
  for (int i = 0; i < 100; ++i) {
    CTProgressTimeToCompleteMemDC dc(&m_target);
    EXPECT_GE(CountGdiObjects(), objects + 2) << "a device context and a bitmap";
  }
  EXPECT_EQ(CountGdiObjects(), objects);
}

TEST_F(MemDC, WritesToItsOwnOutputOnly) {
  char text[] = "Ab";
  RECT rect = {0, 0, 60, 40};
  const std::function<void(CDC&)> ways[] = {
      [&](CDC& dc) { dc.TextOut(0, 0, text, 2); },
      [&](CDC& dc) { dc.ExtTextOut(0, 0, 0, nullptr, text, 2, nullptr); },
      [&](CDC& dc) { dc.TabbedTextOut(0, 0, text, 2, 0, nullptr, 0); },
      [&](CDC& dc) { dc.DrawText(text, 2, &rect, DT_LEFT); },
      [&](CDC& dc) { dc.DrawTextEx(text, 2, &rect, DT_LEFT, nullptr); },
      [&](CDC& dc) {
        dc.GrayString(static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)), nullptr,
                      reinterpret_cast<LPARAM>(text), 2, 0, 0, 0, 0);
      },
  };
  const std::vector<COLORREF> black = TestCanvas(60, 40).Pixels();
  for (const auto& write : ways) {
    TestCanvas target(60, 40);
    TestCanvas attributes(60, 40);
    ::SetBkColor(target.m_hDC, kGreen);
    {
      CTProgressTimeToCompleteMemDC dc(&target);
      dc.SetTextColor(kRed);
      dc.SetBkMode(TRANSPARENT);
      dc.m_hAttribDC = attributes.m_hDC;
      write(dc);
      dc.m_hAttribDC = dc.m_hDC;
    }
    EXPECT_EQ(attributes.Pixels(), black);
    int written = 0;
    for (const COLORREF pixel : target.Pixels()) written += pixel != kGreen ? 1 : 0;
    EXPECT_GT(written, 5);
  }
}

TEST_F(MemDC, AsksItsOwnOutput) {
  TestCanvas attributes(60, 40);
  const RECT corner = {0, 0, 1, 1};
  const RECT middle = {20, 20, 30, 30};
  attributes.IntersectClipRect(&corner);
  CTProgressTimeToCompleteMemDC dc(&m_target);
  dc.m_hAttribDC = attributes.m_hDC;
  EXPECT_TRUE(dc.PtVisible(25, 25));
  EXPECT_TRUE(dc.RectVisible(&middle));
  EXPECT_FALSE(dc.PtVisible(60, 40));
  POINT paper = {-1, -1};
  EXPECT_GT(dc.Escape(GETPHYSPAGESIZE, 0, nullptr, &paper), 0);
  EXPECT_EQ(paper.x, GetDeviceCaps(dc.m_hDC, PHYSICALWIDTH));
  EXPECT_EQ(paper.y, GetDeviceCaps(dc.m_hDC, PHYSICALHEIGHT));
  dc.m_hAttribDC = dc.m_hDC;
}

}  // namespace
