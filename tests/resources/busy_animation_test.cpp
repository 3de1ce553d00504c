#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <set>

#include "pictures_test.h"
#include "window_pixels.h"

namespace {

constexpr int kSide = 32;
constexpr size_t kFrames = 12;
constexpr uint32_t kKeyColour = 0xFF00FF;

// Another colour than any dialog's, so that it cannot be there by chance.
constexpr COLORREF kBackground = RGB(0xC0, 0xE0, 0xF8);
constexpr uint32_t kBackgroundPixel = 0xC0E0F8;

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  // The control asks its parent what to draw the transparent parts with.
  static const HBRUSH background = CreateSolidBrush(kBackground);
  if (message == WM_CTLCOLORSTATIC) {
    SetBkColor(reinterpret_cast<HDC>(wParam), kBackground);
    return reinterpret_cast<LRESULT>(background);
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

// A window with an animation control in its corner.
class BusyAnimationTest : public testing::Test {
 protected:
  void SetUp() override {
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_ANIMATE_CLASS};
    ASSERT_TRUE(InitCommonControlsEx(&controls));
    const HINSTANCE instance = GetModuleHandleA(nullptr);
    WNDCLASSEXA windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = ParentProcedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kParentClass;
    ASSERT_NE(RegisterClassExA(&windowClass), 0);
    m_hParent = CreateWindowExA(WS_EX_TOPMOST, kParentClass, "", WS_POPUP | WS_VISIBLE, 40, 40, 120, 80,
                                nullptr, nullptr, instance, nullptr);
    ASSERT_NE(m_hParent, nullptr) << "there is no screen: on Linux set DISPLAY before Wine starts";
    m_hControl = CreateWindowExA(0, ANIMATE_CLASSA, "", WS_CHILD | WS_VISIBLE | ACS_TRANSPARENT, 0, 0, kSide,
                                 kSide, m_hParent, nullptr, instance, nullptr);
    ASSERT_NE(m_hControl, nullptr);
  }

  void TearDown() override {
    if (m_hParent != nullptr) DestroyWindow(m_hParent);
    UnregisterClassA(kParentClass, GetModuleHandleA(nullptr));
  }

  bool Open() {
    return Animate_OpenEx(m_hControl, GetModuleHandleA(nullptr), MAKEINTRESOURCEA(ID_TEST_BUSY)) != FALSE;
  }

  Pixels Look() const { return ReadWindow(m_hControl, kSide, kSide); }

  static constexpr char kParentClass[] = "MosaiconBusyAnimationTest";
  HWND m_hParent = nullptr;
  HWND m_hControl = nullptr;
};

TEST_F(BusyAnimationTest, TheControlOpensTheResource) {
  EXPECT_TRUE(Open());
}

TEST_F(BusyAnimationTest, EveryFrameCanBeSoughtAndDiffersFromTheOthers) {
  ASSERT_TRUE(Open());
  std::set<Pixels> frames;
  for (size_t i = 0; i < kFrames; ++i) {
    Animate_Seek(m_hControl, static_cast<UINT>(i));
    PumpFor(50);
    frames.insert(Look());
  }
  EXPECT_EQ(frames.size(), kFrames);
}

TEST_F(BusyAnimationTest, PlayingShowsFramesChanging) {
  ASSERT_TRUE(Open());
  ASSERT_TRUE(Animate_Play(m_hControl, 0, -1, -1));
  std::set<Pixels> seen;
  // More than one round of 12 x 90 ms, also on a slow machine.
  for (int i = 0; i < 100; ++i) {
    PumpFor(30);
    seen.insert(Look());
  }
  Animate_Stop(m_hControl);
  // Not every frame is caught on a busy machine, but more than the ends of a round.
  EXPECT_GE(seen.size(), 4u);
}

TEST_F(BusyAnimationTest, TheKeyColourIsReplacedByTheBackground) {
  ASSERT_TRUE(Open());
  Animate_Seek(m_hControl, 6);
  PumpFor(100);
  const Pixels pixels = Look();
  EXPECT_EQ(std::count(pixels.begin(), pixels.end(), kKeyColour), 0);
  EXPECT_EQ(pixels.front(), kBackgroundPixel);
  EXPECT_GT(
      std::count_if(pixels.begin(), pixels.end(), [](uint32_t pixel) { return pixel != kBackgroundPixel; }),
      200)
      << "the tiles";
}

}  // namespace
