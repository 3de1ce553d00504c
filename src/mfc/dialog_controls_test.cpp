#include "mfc/dialog_controls.h"

#include <gtest/gtest.h>
// After windows.h.
#include <commctrl.h>

#include <functional>

#include "mfc/dialog.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"

namespace {

class Host : public CDialog {
 public:
  Host() : CDialog(IDD_TEST_PLAIN) {}

  CToolTipCtrl toolTips;
};

class DialogControls : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ExpectScreen()); }

  void RunInDialog(const std::function<void()>& test) {
    UiDriver driver({[&] {
      test();
      return PostCommand(host.GetSafeHwnd(), IDCANCEL);
    }});
    host.DoModal();
  }
  HWND Item(int id) const { return host.GetDlgItem(id); }
  // The edit control has the focus at first. As a handler does.
  int FocusAfterDisabling(int id) {
    SetFocus(Item(IDC_TEST_EDIT));
    const HWND focus = GetFocus();
    EnableWindow(Item(id), FALSE);
    afx::LeaveDisabledControl(host, focus, IDC_TEST_CHECK);
    const int now = GetDlgCtrlID(GetFocus());
    EnableWindow(Item(id), TRUE);
    return now;
  }

  Host host;
};

TEST_F(DialogControls, HaveTheTipsThatAreGiven) {
  RunInDialog([&] {
    const afx::ControlTip tips[] = {
        {IDOK, "Does it"}, {IDC_TEST_EDIT, "What to do"}, {999, "no such control"}};
    afx::CreateToolTips(host.toolTips, host, tips);
    EXPECT_EQ(host.toolTips.SendMessage(TTM_GETTOOLCOUNT), 2);
  });
}

TEST_F(DialogControls, GiveTheFocusAwayWhenTheyAreDisabled) {
  RunInDialog([&] { EXPECT_EQ(FocusAfterDisabling(IDC_TEST_EDIT), IDC_TEST_CHECK); });
}

TEST_F(DialogControls, LeaveTheFocusToAnotherControl) {
  RunInDialog([&] { EXPECT_EQ(FocusAfterDisabling(IDOK), IDC_TEST_EDIT); });
}

TEST_F(DialogControls, TakeNoFocusThatWasElsewhere) {
  RunInDialog([&] {
    SetFocus(Item(IDC_TEST_EDIT));
    EnableWindow(Item(IDOK), FALSE);
    afx::LeaveDisabledControl(host, nullptr, IDC_TEST_CHECK);
    afx::LeaveDisabledControl(host, GetDesktopWindow(), IDC_TEST_CHECK);
    EXPECT_EQ(GetFocus(), Item(IDC_TEST_EDIT));
  });
}

}  // namespace
