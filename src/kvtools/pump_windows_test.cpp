#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <vector>

#include "kvtools/kvtools.h"
#include "kvtools/testing/key_taker.h"

namespace {

constexpr UINT kCountMessage = WM_APP + 1;
int g_nCounted = 0;

LRESULT CALLBACK CountingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kCountMessage) return DefWindowProcA(window, message, wParam, lParam);
  return ++g_nCounted;
}

double Milliseconds() {
  LARGE_INTEGER count;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

class Pump : public testing::Test {
 protected:
  void SetUp() override {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = CountingProcedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "PumpTest";
    RegisterClassA(&windowClass);
    m_hWindow = CreateWindowExA(0, "PumpTest", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                windowClass.hInstance, nullptr);
    ASSERT_NE(m_hWindow, nullptr);
    g_nCounted = 0;
  }
  void TearDown() override { DestroyWindow(m_hWindow); }

  HWND m_hWindow = nullptr;
};

TEST_F(Pump, DispatchesEverythingThatIsPending) {
  for (int i = 0; i < 100; ++i) PostMessageA(m_hWindow, kCountMessage, 0, 0);
  KVT_PumpMessages();
  EXPECT_EQ(g_nCounted, 100);
}

TEST_F(Pump, GivesTheProcessorAwayWhenNothingIsPending) {
  KVT_PumpMessages();
  const ULONGLONG start = GetTickCount64();
  for (int i = 0; i < 20; ++i) KVT_PumpMessages();
  const ULONGLONG elapsed = GetTickCount64() - start;
  EXPECT_GE(elapsed, 100U);
  EXPECT_LE(elapsed, 10000U);
}

// How long the quicker ones take, in milliseconds, for somebody who has work between them.
double QuickQuarterOfPumpings() {
  std::array<double, 20> pumping = {};
  for (double& each : pumping) {
    Sleep(2);
    const double start = Milliseconds();
    KVT_PumpMessages();
    each = Milliseconds() - start;
  }
  std::sort(pumping.begin(), pumping.end());
  return pumping[pumping.size() / 4];
}

TEST_F(Pump, KeepsNobodyWaitingWhoHasWorkToDo) {
  KVT_PumpMessages();
  // A busy machine makes many of them late; where the processor is given away, none is ever quicker.
  constexpr double kGivenAway = 4.0;
  double quickest = QuickQuarterOfPumpings();
  for (int i = 0; i < 50 && quickest >= kGivenAway; ++i) quickest = QuickQuarterOfPumpings();
  EXPECT_LT(quickest, kGivenAway);
}

TEST_F(Pump, LeavesQuitToTheOuterLoop) {
  PostQuitMessage(7);
  KVT_PumpMessages();
  KVT_PumpMessages();
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7U);
}

DWORD WINAPI SendFromOtherThread(LPVOID window) {
  return static_cast<DWORD>(SendMessageA(static_cast<HWND>(window), kCountMessage, 0, 0));
}

TEST_F(Pump, LetsMessagesSentByOtherThreadsThrough) {
  HANDLE thread = CreateThread(nullptr, 0, SendFromOtherThread, m_hWindow, 0, nullptr);
  ASSERT_NE(thread, nullptr);
  for (int i = 0; i < 12000 && g_nCounted == 0; ++i) KVT_PumpMessages();
  EXPECT_EQ(g_nCounted, 1);
  EXPECT_EQ(WaitForSingleObject(thread, 120000), WAIT_OBJECT_0);
  CloseHandle(thread);
}

// A dialog without controls, and without a resource.
struct DialogTemplate {
  DLGTEMPLATE dialog = {WS_POPUP, 0, 0, 0, 0, 100, 50};
  WORD menu = 0;
  WORD windowClass = 0;
  WORD title = 0;
};

class PumpDialog : public testing::Test {
 protected:
  void SetUp() override {
    alignas(DWORD) DialogTemplate blank;
    m_hDialog =
        CreateDialogIndirectParamA(GetModuleHandleA(nullptr), &blank.dialog, HWND_MESSAGE, Procedure, 0);
    ASSERT_NE(m_hDialog, nullptr);
    g_nCancelled = 0;
  }
  void TearDown() override { DestroyWindow(m_hDialog); }

  static INT_PTR CALLBACK Procedure(HWND /*window*/, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
    ++g_nCancelled;
    return TRUE;
  }

  static int g_nCancelled;
  HWND m_hDialog = nullptr;
};

int PumpDialog::g_nCancelled = 0;

TEST_F(PumpDialog, LetsTheKeyboardWorkInADialog) {
  PostMessageA(m_hDialog, WM_KEYDOWN, VK_ESCAPE, 0);
  KVT_PumpMessages();
  EXPECT_EQ(g_nCancelled, 1);
}

TEST_F(PumpDialog, LetsAControlTakeTheKeysThatItAsksFor) {
  KeyTaker taker(m_hDialog);
  ASSERT_NE(taker.Part(), nullptr);
  taker.taken = VK_ESCAPE;
  PostMessageA(taker.Part(), WM_KEYDOWN, VK_ESCAPE, 0);
  KVT_PumpMessages();
  EXPECT_EQ(taker.keys, std::vector<WPARAM>{VK_ESCAPE});
  EXPECT_EQ(g_nCancelled, 0);
}

TEST_F(PumpDialog, HasTheKeysThatNoControlTakes) {
  KeyTaker taker(m_hDialog);
  taker.taken = VK_TAB;
  PostMessageA(taker.Part(), WM_KEYDOWN, VK_ESCAPE, 0);
  KVT_PumpMessages();
  EXPECT_EQ(taker.keys, std::vector<WPARAM>{VK_ESCAPE});
  EXPECT_EQ(g_nCancelled, 1);
}

}  // namespace
