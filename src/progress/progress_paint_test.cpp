// What the progress bar shows, pixel by pixel. The text's shape depends on the fonts of the machine and on
// how it smooths edges, so it is drawn here too, but in one colour on one background and without clipping;
// the expected picture takes each pixel from the drawing that belongs there.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <ostream>
#include <string>
#include <vector>

#include "progress/testing/bar_fixture.h"

namespace {

constexpr COLORREF kBarColor = RGB(160, 32, 64);

struct Look {
  DWORD style;
  int lower;
  int upper;
  int position;
  int filled;  // pixels
  int blocks;
  std::string text;
};

void PrintTo(const Look& look, std::ostream* out) {
  *out << "style " << look.style << ", position " << look.position << " of " << look.lower << " to "
       << look.upper;
}

class Painted : public BarTest {
 protected:
  bool IsVertical(const Look& look) const { return (look.style & PBS_VERTICAL) != 0; }

  void Paint(const Look& look) {
    ASSERT_NO_FATAL_FAILURE(Create(look.style));
    m_bar.m_barColor = kBarColor;
    m_bar.m_idleText = "Please wait";
    m_bar.words = "This is what the subclass says";
    m_bar.SendMessage(PBM_SETRANGE32, static_cast<WPARAM>(look.lower), look.upper);
    m_bar.SendMessage(PBM_SETPOS, static_cast<WPARAM>(look.position));
    Repaint();
  }

  std::vector<COLORREF> DrawText(const Look& look, COLORREF textColor, COLORREF background) const {
    TestCanvas canvas(m_nWidth, m_nHeight);
    RECT client = {0, 0, m_nWidth, m_nHeight};
    canvas.FillSolidRect(&client, background);
    LOGFONTA description = {};
    description.lfCharSet = DEFAULT_CHARSET;
    description.lfHeight = -MulDiv(GetDeviceCaps(canvas.m_hDC, LOGPIXELSY), 90, 720);
    description.lfEscapement = description.lfOrientation = IsVertical(look) ? 900 : 0;
    lstrcpynA(description.lfFaceName, "MS Sans", LF_FACESIZE);
    CGdiObject font;
    font.Attach(CreateFontIndirectA(&description));
    const HGDIOBJ oldFont = ::SelectObject(canvas.m_hDC, font.GetSafeHandle());
    ::SetTextColor(canvas.m_hDC, textColor);
    ::SetBkMode(canvas.m_hDC, TRANSPARENT);
    const char* text = look.text.c_str();
    const int length = static_cast<int>(look.text.size());
    if (IsVertical(look)) {
      SIZE size = {};
      GetTextExtentPoint32A(canvas.m_hDC, text, length, &size);
      const int x = static_cast<int>(std::floor((24 - size.cy) / 2.0));
      const int y = 200 - static_cast<int>(std::floor((200 - size.cx) / 2.0));
      ::ExtTextOutA(canvas.m_hDC, x, y, ETO_CLIPPED, &client, text, static_cast<UINT>(length), nullptr);
    } else {
      ::DrawTextA(canvas.m_hDC, text, length, &client, 0x825);
    }
    ::SelectObject(canvas.m_hDC, oldFont);
    return canvas.Pixels();
  }

  // How far the pixel is from where the bar starts.
  int Distance(const Look& look, int index) const {
    return IsVertical(look) ? 199 - index / m_nWidth : index % m_nWidth;
  }
  bool IsFilled(const Look& look, int index) const { return Distance(look, index) < look.filled; }
  bool IsBar(const Look& look, int index) const {
    const int distance = Distance(look, index);
    if ((look.style & PBS_SMOOTH) != 0) return distance < look.filled;
    return distance / 12 < look.blocks && distance % 12 < 10;
  }

  std::vector<COLORREF> Expected(const Look& look) const {
    const COLORREF highlightText = GetSysColor(COLOR_HIGHLIGHTTEXT);
    const COLORREF windowText = GetSysColor(COLOR_WINDOWTEXT);
    const auto highlightOnBar = DrawText(look, highlightText, kBarColor);
    const auto highlightOnGap = DrawText(look, highlightText, kOwnerColor);
    const auto windowOnBar = DrawText(look, windowText, kBarColor);
    const auto windowOnRest = DrawText(look, windowText, kOwnerColor);
    std::vector<COLORREF> pixels(windowOnRest.size());
    for (size_t i = 0; i < pixels.size(); ++i) {
      const int index = static_cast<int>(i);
      const bool bar = IsBar(look, index);
      if (IsFilled(look, index)) {
        pixels[i] = bar ? highlightOnBar[i] : highlightOnGap[i];
      } else {
        pixels[i] = bar ? windowOnBar[i] : windowOnRest[i];
      }
    }
    return pixels;
  }

  int CountDifferences(const std::vector<COLORREF>& shown, const std::vector<COLORREF>& expected) const {
    int different = 0;
    for (size_t i = 0; i < shown.size(); ++i) different += shown[i] != expected[i] ? 1 : 0;
    return different;
  }

  // Pixels of one colour in the filled part, or in the rest.
  int CountColor(const Look& look, const std::vector<COLORREF>& shown, COLORREF color, bool filled) const {
    int count = 0;
    for (size_t i = 0; i < shown.size(); ++i) {
      if (shown[i] == color && IsFilled(look, static_cast<int>(i)) == filled) ++count;
    }
    return count;
  }
};

class EveryLook : public Painted, public testing::WithParamInterface<Look> {};

TEST_P(EveryLook, IsPaintedPixelForPixel) {
  const Look& look = GetParam();
  ASSERT_NO_FATAL_FAILURE(Paint(look));
  const std::vector<COLORREF> shown = Shown();
  EXPECT_EQ(CountDifferences(shown, Expected(look)), 0);
  Look silent = look;
  silent.text.clear();
  EXPECT_GT(CountDifferences(shown, Expected(silent)), 50) << "there is no text";
}

std::vector<Look> Looks() {
  const char* words = "This is what the subclass says";
  std::vector<Look> looks;
  for (DWORD style : {0, PBS_SMOOTH, PBS_VERTICAL, PBS_VERTICAL | PBS_SMOOTH}) {
    looks.push_back({style, 0, 100, 0, 0, 0, "Please wait"});
    looks.push_back({style, 0, 100, 2, 4, 1, "Please wait"});
    looks.push_back({style, 0, 1000, 21, 4, 1, words});
    looks.push_back({style, 0, 100, 50, 100, 9, words});
    looks.push_back({style, 0, 100, 100, 200, 18, words});
    looks.push_back({style, 0, 100, 150, 200, 18, words});
    looks.push_back({style, 50, 100, 100, 200, 18, words});  // twice the range
  }
  return looks;
}

INSTANTIATE_TEST_SUITE_P(Bar, EveryLook, testing::ValuesIn(Looks()));

TEST_F(Painted, TextHasOneColourOnTheBarAndAnotherBesideIt) {
  const COLORREF highlightText = GetSysColor(COLOR_HIGHLIGHTTEXT);
  const COLORREF windowText = GetSysColor(COLOR_WINDOWTEXT);
  ASSERT_NE(highlightText, windowText);
  for (DWORD style : {PBS_SMOOTH, PBS_SMOOTH | PBS_VERTICAL}) {
    const Look look = {style, 0, 100, 50, 100, 0, m_bar.words};
    ASSERT_NO_FATAL_FAILURE(Paint(look));
    const std::vector<COLORREF> shown = Shown();
    EXPECT_GT(CountColor(look, shown, highlightText, true), 20);
    EXPECT_EQ(CountColor(look, shown, highlightText, false), 0);
    EXPECT_GT(CountColor(look, shown, windowText, false), 20);
    EXPECT_EQ(CountColor(look, shown, windowText, true), 0);
    DestroyWindow(m_bar.GetSafeHwnd());
  }
}

TEST_F(Painted, BarHasTheColourOfSelectedTextUnlessTheOwnerChoosesAnother) {
  ASSERT_NO_FATAL_FAILURE(Create(PBS_SMOOTH));
  m_bar.SetPos(50);
  const COLORREF corner = Shown().front();
  EXPECT_EQ(corner, GetSysColor(COLOR_HIGHLIGHT));
  m_bar.m_barColor = kBarColor;
  Repaint();
  EXPECT_EQ(Shown().front(), kBarColor);
}

TEST_F(Painted, BackgroundIsWhatTheOwnerGivesStaticControls) {
  ASSERT_NO_FATAL_FAILURE(Create(0));
  Repaint();
  EXPECT_EQ(m_owner.askedBy, m_bar.GetSafeHwnd());
  EXPECT_EQ(m_owner.askedFor, m_bar.GetSafeHwnd()) << "by the device context that paints the window";
  const std::vector<COLORREF> shown = Shown();
  EXPECT_EQ(std::count(shown.begin(), shown.end(), kOwnerColor), std::ssize(shown));
}

TEST_F(Painted, BackgroundIsTheDeviceContextsOwnWithoutAnOwner) {
  m_nWidth = 100;
  m_nHeight = 20;
  ASSERT_TRUE(m_bar.SubclassWindow(CreateWindowExA(WS_EX_TOPMOST, PROGRESS_CLASSA, "", WS_POPUP, 400, 50,
                                                   m_nWidth + 20, m_nHeight + 20, nullptr, nullptr, nullptr,
                                                   nullptr)));
  ShowWindow(m_bar.GetSafeHwnd(), SW_SHOWNOACTIVATE);
  ASSERT_EQ(GetParent(m_bar.GetSafeHwnd()), nullptr);
  Repaint();
  const std::vector<COLORREF> shown = Shown();
  EXPECT_EQ(std::count(shown.begin(), shown.end(), static_cast<COLORREF>(RGB(255, 255, 255))),
            std::ssize(shown));
}

TEST_F(Painted, AllIsPaintedEvenWhenLittleIsInvalid) {
  const Look look = {PBS_SMOOTH, 0, 100, 50, 100, 0, "Other words, all of them"};
  ASSERT_NO_FATAL_FAILURE(Paint(look));
  m_bar.words = look.text;
  const RECT little = {95, 0, 105, 24};
  InvalidateRect(m_bar.GetSafeHwnd(), &little, FALSE);
  UpdateWindow(m_bar.GetSafeHwnd());
  EXPECT_EQ(CountDifferences(Shown(), Expected(look)), 0);
}

TEST_F(Painted, CaptionStandsBeforeTheTime) {
  Look look = {PBS_SMOOTH, 0, 100, 50, 100, 0, "Uploading This is what the subclass says"};
  m_bar.SetCaption("Uploading");
  ASSERT_NO_FATAL_FAILURE(Paint(look));
  EXPECT_EQ(CountDifferences(Shown(), Expected(look)), 0);
}

TEST_F(Painted, CaptionKeepsItsBlankWithoutTheTime) {
  Look look = {PBS_SMOOTH, 0, 100, 50, 100, 0, "Uploading "};
  m_bar.SetCaption("Uploading");
  ASSERT_NO_FATAL_FAILURE(Paint(look));
  m_bar.words.clear();
  m_bar.m_bShowTime = FALSE;
  Repaint();
  EXPECT_EQ(CountDifferences(Shown(), Expected(look)), 0);
  look.text = "Uploading";
  EXPECT_NE(CountDifferences(Shown(), Expected(look)), 0);
}

TEST_F(Painted, TimeIsToldInTheUsualWords) {
  Look look = {PBS_SMOOTH, 0, 100, 50, 100, 0, ""};
  ASSERT_NO_FATAL_FAILURE(Paint(look));
  m_bar.words.clear();
  m_bar.m_startTicks = static_cast<std::int32_t>(clock()) - 30000;
  Repaint();
  look.text = std::to_string(static_cast<int>(m_bar.askedSeconds)) + " sec remaining";
  EXPECT_GE(m_bar.askedSeconds, 30.0);
  EXPECT_LT(m_bar.askedSeconds, 40.0);
  EXPECT_EQ(CountDifferences(Shown(), Expected(look)), 0);
}

TEST_F(Painted, NothingIsErasedFirst) {
  ASSERT_NO_FATAL_FAILURE(Create(0));
  TestCanvas canvas(10, 10);
  const RECT all = {0, 0, 10, 10};
  canvas.FillSolidRect(&all, kBarColor);
  EXPECT_EQ(m_bar.SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.m_hDC)), TRUE);
  EXPECT_EQ(canvas.Pixel(5, 5), kBarColor);
}

}  // namespace
