#include "progress/progress_control.h"

#include <gtest/gtest.h>

#include <atomic>
#include <ctime>
#include <thread>

#include "kvtools/kvtools.h"
#include "mfc/dpi.h"
#include "progress/testing/bar_fixture.h"
#include "support/open_handles.h"

namespace {

class Bar : public BarTest {
 protected:
  void SetUp() override {
    BarTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(Create(0));
    KVT_PumpMessages();
  }

  LRESULT SendCaption(const char* caption) {
    return m_bar.SendMessage(RegisterWindowMessageA("WM_SETCUROP_MT"), 0, reinterpret_cast<LPARAM>(caption));
  }
  void PostToOwner() { PostMessageA(m_owner.GetSafeHwnd(), kOwnerMessage, 0, 0); }
  bool IsInvalid() const { return GetUpdateRect(m_bar.GetSafeHwnd(), nullptr, FALSE) != 0; }
};

TEST_F(Bar, BeginsItsClockWhenItIsMade) {
  const std::int32_t before = static_cast<std::int32_t>(clock());
  const TProgressTimeToComplete bar;
  EXPECT_GE(bar.m_startTicks, before);
  EXPECT_LE(bar.m_startTicks, static_cast<std::int32_t>(clock()));
  EXPECT_EQ(bar.m_bShowTime, 1);
  EXPECT_EQ(bar.m_idleText, "");
  EXPECT_EQ(bar.m_caption, "");
  EXPECT_EQ(bar.m_barColor, GetSysColor(COLOR_HIGHLIGHT));
}

TEST_F(Bar, BeginsItsClockAnewWhenTold) {
  m_bar.m_startTicks = 0;
  const std::int32_t before = static_cast<std::int32_t>(clock());
  m_bar.RestartClock();
  EXPECT_GE(m_bar.m_startTicks, before);
  EXPECT_LE(m_bar.m_startTicks, static_cast<std::int32_t>(clock()));
}

TEST_F(Bar, EstimatesFromItsPositionAndItsClock) {
  m_bar.SetRange(0, 200);
  m_bar.SetPos(50);
  m_bar.m_startTicks = static_cast<std::int32_t>(clock()) - 10000;
  Repaint();
  EXPECT_EQ(m_bar.m_fraction, 0.25);
  EXPECT_EQ(m_bar.askedFraction, 0.25);
  EXPECT_GE(m_bar.askedSeconds, 30.0);
  EXPECT_LT(m_bar.askedSeconds, 60.0);
}

TEST_F(Bar, DoesNotShiftItsFractionByTheLowerBound) {
  m_bar.SetRange(50, 150);
  m_bar.SetPos(75);
  EXPECT_EQ(m_bar.m_fraction, 0.75);
}

TEST_F(Bar, AsksForWordsOnlyAboveTheLeastFraction) {
  m_bar.SetPos(2);
  Repaint();
  EXPECT_EQ(m_bar.m_fraction, 0.02);
  EXPECT_EQ(m_bar.asked, 0);
  m_bar.SetPos(3);
  EXPECT_GT(m_bar.asked, 0);
}

TEST_F(Bar, PumpsMessagesBeforeItMoves) {
  m_bar.SetPos(10);
  int positionMeanwhile = -1;
  m_owner.onMessage = [&] { positionMeanwhile = m_bar.GetPos(); };
  PostToOwner();
  EXPECT_EQ(m_bar.SetPos(20), 10);
  EXPECT_EQ(m_owner.handled, 1);
  EXPECT_EQ(positionMeanwhile, 10);
  EXPECT_EQ(m_bar.GetPos(), 20);
}

TEST_F(Bar, PumpsMessagesForNothingElse) {
  PostToOwner();
  m_bar.SetRange(0, 50);
  m_bar.GetPos();
  m_bar.SetCaption("Reading");
  Repaint();
  EXPECT_EQ(m_owner.handled, 0);
}

TEST_F(Bar, MovesWithinAHandlerThatItPumped) {
  m_owner.onMessage = [&] { EXPECT_EQ(m_bar.SetPos(30), 10); };
  m_bar.SetPos(10);
  PostToOwner();
  EXPECT_EQ(m_bar.SetPos(20), 30);
  EXPECT_EQ(m_bar.GetPos(), 20);
}

TEST_F(Bar, TakesItsCaptionFromAMessage) {
  PostToOwner();
  std::string caption = "Reading";
  EXPECT_EQ(SendCaption(caption.c_str()), 0);
  EXPECT_EQ(m_owner.handled, 1) << "and pumps as well";
  caption = "Changed";
  EXPECT_EQ(m_bar.m_caption, "Reading");
  SendCaption(nullptr);
  EXPECT_EQ(m_bar.m_caption, "Reading");
  SendCaption("");
  EXPECT_EQ(m_bar.m_caption, "");
}

TEST_F(Bar, IsNotRepaintedForItsCaption) {
  m_bar.SetPos(50);
  UpdateWindow(m_bar.GetSafeHwnd());
  ASSERT_FALSE(IsInvalid());
  m_bar.SetCaption("Reading");
  EXPECT_EQ(m_bar.m_caption, "Reading");
  EXPECT_FALSE(IsInvalid());
  SendCaption("Writing");
  EXPECT_FALSE(IsInvalid());
}

TEST_F(Bar, DoesNothingMoreWhenAHandlerEndedItsWindow) {
  m_owner.onMessage = [&] { DestroyWindow(m_bar.GetSafeHwnd()); };
  PostToOwner();
  EXPECT_EQ(m_bar.SetPos(20), 0);
  EXPECT_EQ(m_owner.handled, 1);
  EXPECT_EQ(m_bar.GetSafeHwnd(), nullptr);

  ASSERT_NO_FATAL_FAILURE(Create(0));
  PostToOwner();
  EXPECT_EQ(SendCaption("Reading"), 0);
  EXPECT_EQ(m_owner.handled, 2);
  EXPECT_EQ(m_bar.GetSafeHwnd(), nullptr);
  EXPECT_EQ(m_bar.m_caption, "");
}

TEST_F(Bar, IsMovedAndCaptionedByOtherThreads) {
  const HWND window = m_bar.GetSafeHwnd();
  std::atomic<bool> done = false;
  std::thread sender([&] {
    for (int position = 1; position <= 60; ++position) SendMessageA(window, PBM_SETPOS, position, 0);
    SendMessageA(window, WM_SETCUROP_MT, 0, reinterpret_cast<LPARAM>("Reading"));
    done = true;
  });
  const ULONGLONG end = GetTickCount64() + 60000;
  while (!done && GetTickCount64() < end) KVT_PumpMessages();
  EXPECT_TRUE(done);
  // Lets the sender go even when it was not served.
  if (!done) DestroyWindow(window);
  sender.join();
  EXPECT_EQ(m_bar.GetPos(), 60);
  EXPECT_EQ(m_bar.m_caption, "Reading");
  UpdateWindow(m_bar.GetSafeHwnd());
  EXPECT_EQ(m_bar.m_fraction, 0.6);
}

TEST_F(Bar, TellsTheTimeAnewWhereItStandsStill) {
  m_bar.SetPos(50);
  UpdateWindow(m_bar.GetSafeHwnd());
  const int asked = m_bar.asked;
  m_bar.SetPos(50);
  UpdateWindow(m_bar.GetSafeHwnd());
  EXPECT_GT(m_bar.asked, asked);
}

class FontsOfABar : public TProgressTimeToComplete {
 public:
  // Replaces both fonts by others that are far too large.
  void Spoil() {
    for (CFont* font : {&m_fontHorizontal, &m_fontVertical}) {
      font->DeleteObject();
      font->Attach(CreateFontA(-77, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial"));
    }
  }
  static LOGFONTA Describe(const CFont& font) {
    LOGFONTA description = {};
    GetObjectA(font, sizeof description, &description);
    return description;
  }
  void ExpectNinePoints() const {
    const int height = -MulDiv(90, static_cast<int>(afx::GetWindowDpi(m_hWnd)), 720);
    for (const CFont* font : {&m_fontHorizontal, &m_fontVertical}) {
      EXPECT_EQ(Describe(*font).lfHeight, height);
      EXPECT_STREQ(Describe(*font).lfFaceName, "MS Sans");
    }
    EXPECT_EQ(Describe(m_fontHorizontal).lfEscapement, 0);
    EXPECT_EQ(Describe(m_fontHorizontal).lfOrientation, 0);
    EXPECT_EQ(Describe(m_fontVertical).lfEscapement, 900);
    EXPECT_EQ(Describe(m_fontVertical).lfOrientation, 900);
  }
};

TEST_F(BarTest, FontsAreThoseOfTheMonitor) {
  FontsOfABar bar;
  bar.ExpectNinePoints();
  bar.Spoil();
  ASSERT_TRUE(bar.SubclassWindow(CreateWindowExA(0, PROGRESS_CLASSA, "", WS_CHILD, 0, 0, 200, 24,
                                                 m_owner.GetSafeHwnd(), nullptr, nullptr, nullptr)));
  bar.ExpectNinePoints();
  bar.Spoil();
  bar.SendMessage(afx::kDpiChangedAfterParent);
  bar.ExpectNinePoints();
  ::DestroyWindow(bar.GetSafeHwnd());
}

TEST(GdiObjects, AreCounted) {
  const int before = CountGdiObjects();
  const CBrush first(RGB(1, 2, 3));
  const CBrush second(RGB(4, 5, 6));
  EXPECT_EQ(CountGdiObjects(), before + 2);
}

TEST_F(Bar, LeaksNothingInAThousandPaints) {
  m_bar.SetPos(50);
  for (LONG_PTR style : {0, PBS_SMOOTH, PBS_VERTICAL, PBS_VERTICAL | PBS_SMOOTH}) {
    const LONG_PTR others =
        GetWindowLongPtrA(m_bar.GetSafeHwnd(), GWL_STYLE) & ~LONG_PTR{PBS_VERTICAL | PBS_SMOOTH};
    SetWindowLongPtrA(m_bar.GetSafeHwnd(), GWL_STYLE, others | style);
    // The system keeps some objects after the first time.
    for (int i = 0; i < 10; ++i) Repaint();
    const int objects = CountGdiObjects();
    const int painted = m_bar.asked;
    for (int i = 0; i < 1000; ++i) Repaint();
    EXPECT_EQ(m_bar.asked, painted + 1000);
    EXPECT_LE(CountGdiObjects(), objects + 2) << "style " << style;
  }
}

TEST(BarLifetime, LeavesNoObjectsBehind) {
  { const TProgressTimeToComplete bar; }
  const int objects = CountGdiObjects();
  for (int i = 0; i < 100; ++i) {
    const TProgressTimeToComplete bar;
    EXPECT_GT(CountGdiObjects(), objects);
  }
  EXPECT_EQ(CountGdiObjects(), objects);
}

}  // namespace
