#include "mfc/tool_tip_ctrl.h"

#include <gtest/gtest.h>
// After windows.h.
#include <commctrl.h>

#include "mfc/dialog.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"

namespace {

class Host : public CDialog {
 public:
  Host() : CDialog(IDD_TEST_CONTROLS) {}

  CToolTipCtrl tip;

 protected:
  BOOL OnInitDialog() override {
    EXPECT_TRUE(tip.Create(this));
    EXPECT_FALSE(tip.Create(this));
    return TRUE;
  }
};

class ToolTip : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ExpectScreen()); }

  std::string TextOf(HWND window) const {
    char text[2000] = "";
    TTTOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.hwnd = GetParent(window);
    tool.uId = reinterpret_cast<UINT_PTR>(window);
    tool.lpszText = text;
    host.tip.SendMessage(TTM_GETTEXTA, sizeof(text), reinterpret_cast<LPARAM>(&tool));
    return text;
  }
  HWND Ok() const { return host.GetDlgItem(IDOK); }
  bool End() const { return PostCommand(host.GetSafeHwnd(), IDCANCEL); }
  bool MoveOnto(HWND window) const {
    RECT rect = {};
    GetWindowRect(window, &rect);
    SetCursorPos((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    return true;
  }

  Host host;
};

TEST_F(ToolTip, KnowsTheLatestTextOfEachControl) {
  UiDriver driver({[&] {
    EXPECT_TRUE(host.tip.AddTool(Ok(), "first"));
    EXPECT_TRUE(host.tip.AddTool(Ok(), "Goes on & on"));
    EXPECT_TRUE(host.tip.AddTool(host.GetDlgItem(IDCANCEL), std::string(79, 'x')));
    EXPECT_EQ(host.tip.SendMessage(TTM_GETTOOLCOUNT), 2);
    EXPECT_EQ(TextOf(Ok()), "Goes on & on");
    EXPECT_EQ(TextOf(host.GetDlgItem(IDCANCEL)), std::string(79, 'x'));
    EXPECT_FALSE(host.tip.AddTool(static_cast<HWND>(nullptr), "nobody"));
    return End();
  }});
  host.DoModal();
  EXPECT_EQ(host.tip.GetSafeHwnd(), nullptr);
}

TEST_F(ToolTip, ShowsAndWrapsWhenTheMouseRests) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "many words ";
  UiDriver driver({[&] {
                     host.tip.AddTool(Ok(), text);
                     host.tip.SendMessage(TTM_SETDELAYTIME, TTDT_INITIAL, 20);
                     SetCursorPos(0, 0);
                     return true;
                   },
                   [&] { return MoveOnto(Ok()); },
                   [&] {
                     if (!IsWindowVisible(host.tip.GetSafeHwnd())) return false;
                     RECT rect = {};
                     GetWindowRect(host.tip.GetSafeHwnd(), &rect);
                     EXPECT_LT(rect.right - rect.left, 2 * 360);
                     EXPECT_GT(rect.bottom - rect.top, 60);
                     return End();
                   }});
  host.DoModal();
}

TEST_F(ToolTip, MayEndBeforeItsParent) {
  UiDriver driver({[&] {
    HWND window = nullptr;
    {
      CToolTipCtrl other;
      EXPECT_TRUE(other.Create(&host));
      window = other.GetSafeHwnd();
      EXPECT_TRUE(other.AddTool(Ok(), "text"));
    }
    EXPECT_FALSE(IsWindow(window));
    SendMessageA(Ok(), WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
    return End();
  }});
  EXPECT_EQ(host.DoModal(), IDCANCEL);
}

}  // namespace
