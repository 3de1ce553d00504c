#include "mfc/dialog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "kvtools/testing/key_taker.h"
#include "mfc/app.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"

namespace {

constexpr UINT kDestroyMessage = WM_APP + 1;

class PlainDialog : public CDialog {
 public:
  explicit PlainDialog(CWnd* parent = nullptr) : CDialog(IDD_TEST_PLAIN, parent) {}

  std::function<BOOL()> onInit;
  int checks = 0;

 protected:
  BOOL OnInitDialog() override { return onInit ? onInit() : TRUE; }
  void OnCheck() { ++checks; }
  LRESULT OnDestroyAsked(WPARAM, LPARAM) {
    DestroyWindow();
    return 0;
  }
  DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(PlainDialog, CDialog)
ON_BN_CLICKED(IDC_TEST_CHECK, PlainDialog::OnCheck)
ON_MESSAGE(kDestroyMessage, PlainDialog::OnDestroyAsked)
END_MESSAGE_MAP()

class Dialog : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ExpectScreen()); }
  bool Shown() const { return dialog.GetSafeHwnd() != nullptr && IsWindowVisible(dialog.GetSafeHwnd()); }
  PlainDialog dialog;
};

TEST_F(Dialog, ReturnsWhatItsButtonsAndKeysSay) {
  struct Case {
    const char* pszWhat;
    std::function<bool()> act;
    INT_PTR nResult;
  };
  const Case cases[] = {
      {"OK", [&] { return PostClick(dialog.GetDlgItem(IDOK)); }, IDOK},
      {"Cancel", [&] { return PostClick(dialog.GetDlgItem(IDCANCEL)); }, IDCANCEL},
      {"Enter", [&] { return PostKey(dialog.GetDlgItem(IDC_TEST_EDIT), VK_RETURN); }, IDOK},
      {"Esc", [&] { return PostKey(dialog.GetDlgItem(IDC_TEST_EDIT), VK_ESCAPE); }, IDCANCEL},
      {"close", [&] { return PostMessageA(dialog.GetSafeHwnd(), WM_CLOSE, 0, 0) != FALSE; }, IDCANCEL},
      {"EndDialog",
       [&] {
         dialog.EndDialog(4711);
         return true;
       },
       4711},
  };
  for (const Case& each : cases) {
    UiDriver driver({[&] { return Shown() && each.act(); }});
    EXPECT_EQ(dialog.DoModal(), each.nResult) << each.pszWhat;
    EXPECT_EQ(dialog.GetSafeHwnd(), nullptr) << each.pszWhat;
  }
}

TEST_F(Dialog, ItsControlsReachItsMessageMap) {
  UiDriver driver({[&] { return Shown() && PostClick(dialog.GetDlgItem(IDC_TEST_CHECK)); },
                   [&] {
                     if (dialog.checks == 0) return false;
                     EXPECT_TRUE(dialog.IsDlgButtonChecked(IDC_TEST_CHECK));
                     return PostCommand(dialog.GetSafeHwnd(), IDOK);
                   }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
  EXPECT_EQ(dialog.checks, 1);
}

TEST_F(Dialog, LetsAControlTakeTheKeysThatItAsksFor) {
  std::unique_ptr<KeyTaker> taker;
  UiDriver driver({[&] {
                     if (!Shown()) return false;
                     taker = std::make_unique<KeyTaker>(dialog.GetSafeHwnd());
                     taker->taken = VK_ESCAPE;
                     return PostKey(taker->Part(), VK_ESCAPE);
                   },
                   [&] { return !taker->keys.empty() && PostKey(taker->Part(), VK_RETURN); }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
  EXPECT_EQ(taker->keys, (std::vector<WPARAM>{VK_ESCAPE, VK_RETURN}));
}

TEST_F(Dialog, AMissingTemplateGivesMinusOneAndEnablesTheOwner) {
  UiDriver driver({[&] {
    if (!Shown()) return false;
    CDialog missing(IDD_TEST_MISSING, &dialog);
    EXPECT_EQ(missing.DoModal(), -1);
    EXPECT_TRUE(IsWindowEnabled(dialog.GetSafeHwnd()));
    return PostCommand(dialog.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(Dialog, MayEndBeforeItIsShown) {
  dialog.onInit = [&] {
    dialog.EndDialog(12);
    return TRUE;
  };
  EXPECT_EQ(dialog.DoModal(), 12);
  EXPECT_EQ(dialog.GetSafeHwnd(), nullptr);
}

TEST_F(Dialog, MayBeDestroyedBeforeItIsShown) {
  dialog.onInit = [&] { return dialog.DestroyWindow(); };
  EXPECT_EQ(dialog.DoModal(), IDABORT);
}

TEST_F(Dialog, GivesAbortWhenItsWindowIsDestroyed) {
  UiDriver driver({[&] { return Shown() && dialog.DestroyWindow(); }});
  EXPECT_EQ(dialog.DoModal(), IDABORT);
}

// A sent message is handled inside of GetMessage, which does not return for it.
TEST_F(Dialog, EndsWhenAnotherThreadHasItDestroyed) {
  std::thread other;
  std::atomic<bool> ended{false};
  std::atomic<bool> hung{false};
  const DWORD thread = GetCurrentThreadId();
  dialog.onInit = [&] {
    const HWND window = dialog.GetSafeHwnd();
    other = std::thread([&, window, thread] {
      // Until the dialog has nothing left to do.
      Sleep(300);
      SendMessageA(window, kDestroyMessage, 0, 0);
      for (int i = 0; i < 12000 && !ended; ++i) Sleep(10);
      hung = !ended;
      if (hung) PostThreadMessageA(thread, WM_NULL, 0, 0);
    });
    return TRUE;
  };
  EXPECT_EQ(dialog.DoModal(), IDABORT);
  ended = true;
  other.join();
  EXPECT_FALSE(hung);
}

TEST_F(Dialog, QuitEndsNestedDialogsAndIsLeftForTheOuterLoop) {
  PlainDialog inner(&dialog);
  INT_PTR innerResult = 0;
  UiDriver driver({[&] {
    if (!Shown()) return false;
    inner.onInit = [] {
      PostQuitMessage(9);
      return TRUE;
    };
    innerResult = inner.DoModal();
    return true;
  }});
  EXPECT_EQ(dialog.DoModal(), IDABORT);
  EXPECT_EQ(innerResult, IDABORT);
  MSG message = {};
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 9U);
}

TEST_F(Dialog, DisablesItsOwnerAndGivesTheFocusBack) {
  PlainDialog inner(&dialog);
  UiDriver driver({[&] {
                     if (!Shown()) return false;
                     SetFocus(dialog.GetDlgItem(IDC_TEST_CHECK));
                     inner.onInit = [&] {
                       EXPECT_FALSE(IsWindowEnabled(dialog.GetSafeHwnd()));
                       EXPECT_EQ(GetWindow(inner.GetSafeHwnd(), GW_OWNER), dialog.GetSafeHwnd());
                       PostCommand(inner.GetSafeHwnd(), IDOK);
                       return TRUE;
                     };
                     EXPECT_EQ(inner.DoModal(), IDOK);
                     EXPECT_TRUE(IsWindowEnabled(dialog.GetSafeHwnd()));
                     return true;
                   },
                   [&] {
                     EXPECT_EQ(GetActiveWindow(), dialog.GetSafeHwnd());
                     EXPECT_EQ(GetFocus(), dialog.GetDlgItem(IDC_TEST_CHECK));
                     return PostCommand(dialog.GetSafeHwnd(), IDOK);
                   }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(Dialog, AControlAsParentMeansItsDialog) {
  CWnd control;
  PlainDialog inner(&control);
  UiDriver driver({[&] {
    if (!Shown()) return false;
    control.Attach(dialog.GetDlgItem(IDC_TEST_EDIT));
    inner.onInit = [&] {
      EXPECT_FALSE(IsWindowEnabled(dialog.GetSafeHwnd()));
      inner.EndDialog(IDOK);
      return TRUE;
    };
    EXPECT_EQ(inner.DoModal(), IDOK);
    control.Detach();
    return PostCommand(dialog.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(Dialog, LeavesADisabledOwnerDisabled) {
  PlainDialog inner(&dialog);
  UiDriver driver({[&] {
    if (!Shown()) return false;
    EnableWindow(dialog.GetSafeHwnd(), FALSE);
    inner.onInit = [&] {
      inner.EndDialog(IDOK);
      return TRUE;
    };
    inner.DoModal();
    EXPECT_FALSE(IsWindowEnabled(dialog.GetSafeHwnd()));
    dialog.EndDialog(IDOK);
    return true;
  }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(Dialog, IsModalOnceAtATime) {
  UiDriver driver({[&] {
    if (!Shown()) return false;
    const HWND window = dialog.GetSafeHwnd();
    EXPECT_EQ(dialog.DoModal(), -1);
    EXPECT_EQ(dialog.GetSafeHwnd(), window);
    return PostCommand(window, IDOK);
  }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(Dialog, OnInitDialogMaySetTheFocus) {
  dialog.onInit = [&] {
    SetFocus(dialog.GetDlgItem(IDCANCEL));
    return FALSE;
  };
  UiDriver driver({[&] {
    if (!Shown()) return false;
    EXPECT_EQ(GetFocus(), dialog.GetDlgItem(IDCANCEL));
    return PostCommand(dialog.GetSafeHwnd(), IDOK);
  }});
  EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST(Application, TellsItsNameAndItsMainWindow) {
  EXPECT_EQ(AfxGetApp(), nullptr);
  EXPECT_EQ(AfxGetAppName(), "");
  {
    CWinAppEx app;
    app.m_strAppName = "Name";
    EXPECT_EQ(AfxGetApp(), &app);
    EXPECT_EQ(AfxGetAppName(), "Name");
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleA(nullptr));
  }
  EXPECT_EQ(AfxGetApp(), nullptr);
}

}  // namespace
