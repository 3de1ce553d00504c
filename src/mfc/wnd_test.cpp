#include "mfc/wnd.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "mfc/testing/ui_driver.h"

namespace {

constexpr UINT kAskMessage = WM_APP + 1;
constexpr UINT kDestroyMessage = WM_APP + 2;
constexpr LRESULT kProcedureAnswer = 77;

LRESULT CALLBACK AnsweringProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kAskMessage) return kProcedureAnswer + static_cast<LRESULT>(wParam);
  return DefWindowProcA(window, message, wParam, lParam);
}

HWND MakeWindow(HWND parent = HWND_MESSAGE, int id = 0) {
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = AnsweringProcedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "WndTest";
  RegisterClassA(&windowClass);
  return CreateWindowExA(0, "WndTest", "", parent == HWND_MESSAGE ? 0 : WS_CHILD, 0, 0, 0, 0, parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), windowClass.hInstance, nullptr);
}

UINT g_nRegistered = 0;

class Base : public CWnd {
 public:
  std::vector<std::string> calls;
  bool bPassOn = false;
  bool bGone = false;

 protected:
  void OnFirst() { calls.push_back("base first"); }
  void OnSecond() { calls.push_back("base second"); }
  void OnTimer(UINT_PTR id) { calls.push_back("timer " + std::to_string(id)); }
  void OnKillFocus() { calls.push_back("base kill focus"); }
  void PostNcDestroy() override { bGone = true; }
  DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(Base, CWnd)
ON_COMMAND(1, Base::OnFirst)
ON_COMMAND(2, Base::OnSecond)
ON_EN_KILLFOCUS(1, Base::OnKillFocus)
ON_WM_TIMER()
END_MESSAGE_MAP()

class Derived : public Base {
 protected:
  void OnFirst() { calls.push_back("derived first"); }
  LRESULT OnAsk(WPARAM wParam, LPARAM) {
    calls.push_back("ask");
    // A message within a message.
    if (wParam == 5) SendMessage(kAskMessage, 6);
    return bPassOn ? Default() : 1;
  }
  LRESULT OnRegistered(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) * 10 + lParam; }
  LRESULT OnDestroyAsked(WPARAM, LPARAM) {
    ::DestroyWindow(m_hWnd);
    return Default();
  }
  DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(Derived, Base)
ON_COMMAND(1, Derived::OnFirst)
ON_MESSAGE(kAskMessage, Derived::OnAsk)
ON_MESSAGE(kDestroyMessage, Derived::OnDestroyAsked)
ON_REGISTERED_MESSAGE(g_nRegistered, Derived::OnRegistered)
END_MESSAGE_MAP()

class Wnd : public testing::Test {
 protected:
  void SetUp() override {
    window = MakeWindow();
    ASSERT_NE(window, nullptr);
  }
  void TearDown() override {
    if (IsWindow(window)) DestroyWindow(window);
  }
  HWND window = nullptr;
};

TEST_F(Wnd, AnAttachedObjectKnowsItsWindowButReceivesNothing) {
  Derived object;
  EXPECT_EQ(object.GetSafeHwnd(), nullptr);
  EXPECT_FALSE(object.Attach(nullptr));
  EXPECT_TRUE(object.Attach(window));
  EXPECT_FALSE(object.Attach(window));
  EXPECT_EQ(object.GetSafeHwnd(), window);
  EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr);
  EXPECT_EQ(object.SendMessage(kAskMessage), kProcedureAnswer);
  EXPECT_TRUE(object.calls.empty());
  EXPECT_EQ(object.Detach(), window);
  EXPECT_EQ(object.GetSafeHwnd(), nullptr);
  EXPECT_EQ(object.Detach(), nullptr);
}

TEST_F(Wnd, ASubclassedWindowAsksItsObjectFirst) {
  Derived object;
  EXPECT_TRUE(object.SubclassWindow(window));
  EXPECT_EQ(CWnd::FromHandlePermanent(window), &object);
  EXPECT_EQ(SendMessageA(window, kAskMessage, 0, 0), 1);
  object.bPassOn = true;
  EXPECT_EQ(SendMessageA(window, kAskMessage, 0, 0), kProcedureAnswer);
  EXPECT_EQ(object.Detach(), window);
  EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr);
  EXPECT_EQ(SendMessageA(window, kAskMessage, 0, 0), kProcedureAnswer);
  EXPECT_EQ(object.calls.size(), 2U);
}

TEST_F(Wnd, ATimerTellsWhichOneItIs) {
  Derived object;
  object.SubclassWindow(window);
  SendMessageA(window, WM_TIMER, 100, 0);
  EXPECT_EQ(object.calls, std::vector<std::string>{"timer 100"});
}

TEST_F(Wnd, DefaultMeansTheMessageThatIsBeingHandled) {
  Derived object;
  object.SubclassWindow(window);
  object.bPassOn = true;
  EXPECT_EQ(SendMessageA(window, kAskMessage, 5, 0), kProcedureAnswer + 5);
  EXPECT_EQ(object.calls.size(), 2U);
}

TEST_F(Wnd, SubclassingFailsWithoutAWindowAndForAWindowThatHasAnObject) {
  Derived object, other;
  EXPECT_FALSE(object.SubclassWindow(nullptr));
  EXPECT_FALSE(object.SubclassWindow(reinterpret_cast<HWND>(static_cast<INT_PTR>(0x123456))));
  EXPECT_EQ(object.GetSafeHwnd(), nullptr);
  ASSERT_TRUE(object.SubclassWindow(window));
  EXPECT_FALSE(other.SubclassWindow(window));
  EXPECT_EQ(other.GetSafeHwnd(), nullptr);
  EXPECT_EQ(CWnd::FromHandlePermanent(window), &object);
}

TEST_F(Wnd, TheEndOfTheObjectLeavesTheWindow) {
  auto object = std::make_unique<Derived>();
  object->SubclassWindow(window);
  object.reset();
  EXPECT_TRUE(IsWindow(window));
  EXPECT_EQ(SendMessageA(window, kAskMessage, 0, 0), kProcedureAnswer);
}

TEST_F(Wnd, TheEndOfTheWindowDetachesTheObject) {
  Derived object;
  object.SubclassWindow(window);
  DestroyWindow(window);
  EXPECT_TRUE(object.bGone);
  EXPECT_EQ(object.GetSafeHwnd(), nullptr);
}

TEST_F(Wnd, AHandlerMayDestroyItsWindow) {
  Derived object;
  object.SubclassWindow(window);
  EXPECT_EQ(SendMessageA(window, kDestroyMessage, 0, 0), 0);
  EXPECT_TRUE(object.bGone);
}

// Reading the text of a control must not take its object away.
TEST_F(Wnd, AnAttachedObjectLeavesTheSubclassingOfAnother) {
  const HWND child = MakeWindow(window, 12);
  ASSERT_NE(child, nullptr);
  Derived parent, control;
  parent.Attach(window);
  ASSERT_TRUE(control.SubclassDlgItem(12, &parent));
  parent.SetDlgItemText(12, "text");
  EXPECT_EQ(parent.GetDlgItemText(12), "text");
  EXPECT_EQ(CWnd::FromHandlePermanent(child), &control);
  EXPECT_EQ(SendMessageA(child, kAskMessage, 0, 0), 1);
}

TEST_F(Wnd, CommandsGoByIdAndCodeToTheMostDerivedHandler) {
  Derived object;
  object.SubclassWindow(window);
  SendMessageA(window, WM_COMMAND, 1, 0);
  SendMessageA(window, WM_COMMAND, 2, 0);
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(1, EN_KILLFOCUS), 0);
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(2, EN_KILLFOCUS), 0);
  SendMessageA(window, WM_COMMAND, MAKEWPARAM(1, EN_CHANGE), 0);
  SendMessageA(window, WM_COMMAND, 3, 0);
  EXPECT_EQ(object.calls, (std::vector<std::string>{"derived first", "base second", "base kill focus"}));
}

TEST_F(Wnd, RegisteredMessagesArriveOnceTheyHaveANumber) {
  Derived object;
  object.SubclassWindow(window);
  g_nRegistered = 0;
  EXPECT_EQ(SendMessageA(window, WM_NULL, 4, 2), 0);
  g_nRegistered = RegisterWindowMessageA("MosaiconWndTest");
  EXPECT_EQ(SendMessageA(window, g_nRegistered, 4, 2), 42);
}

TEST_F(Wnd, TextsMayBeLong) {
  CWnd object;
  object.Attach(window);
  for (const size_t length : {0U, 1U, 4095U, 4096U, 4097U, 100000U}) {
    const std::string text(length, 'a');
    object.SetWindowText(text);
    EXPECT_EQ(object.GetWindowText(), text) << length;
  }
}

TEST_F(Wnd, AMissingControlHasNoText) {
  CWnd object;
  object.Attach(window);
  EXPECT_EQ(object.GetDlgItem(99), nullptr);
  EXPECT_EQ(object.GetDlgItemText(99), "");
  Derived control;
  EXPECT_FALSE(control.SubclassDlgItem(99, &object));
}

}  // namespace
