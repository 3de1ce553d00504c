#include "mfc/color_button.h"

#include <gtest/gtest.h>

#include <vector>

#include "mfc/dialog.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"
#include "support/open_handles.h"

namespace {

class Host : public CDialog {
 public:
  Host() : CDialog(IDD_TEST_CONTROLS) {}

  CMFCColorButton button;
  CMFCColorButton labelled;
  std::vector<COLORREF> notified;

 protected:
  BOOL OnInitDialog() override {
    EXPECT_TRUE(button.SubclassDlgItem(IDC_TEST_COLOR, this));
    EXPECT_TRUE(labelled.SubclassDlgItem(IDC_TEST_LABELLED_COLOR, this));
    button.EnableOtherButton("&Other...");
    button.SetColor(RGB(1, 2, 3));
    return TRUE;
  }
  void OnColor() { notified.push_back(button.GetColor()); }
  DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(Host, CDialog)
ON_BN_CLICKED(IDC_TEST_COLOR, Host::OnColor)
END_MESSAGE_MAP()

class ColorButton : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ExpectScreen()); }

  HWND Button() const { return host.button.GetSafeHwnd(); }
  // Presses keys in the open palette.
  bool PressInMenu(std::initializer_list<WPARAM> keys) const {
    if (!IsMenuOpen()) return false;
    for (const WPARAM key : keys) PostKey(Button(), key);
    return true;
  }
  bool End() const { return !IsMenuOpen() && PostCommand(host.GetSafeHwnd(), IDCANCEL); }
  UiDriver::Step Keys(std::initializer_list<WPARAM> keys) {
    return [this, list = std::vector<WPARAM>(keys)] {
      if (!IsMenuOpen()) return false;
      for (const WPARAM key : list) PostKey(Button(), key);
      return true;
    };
  }
  bool Focused() const {
    SetFocus(Button());
    return true;
  }

  Host host;
};

TEST_F(ColorButton, ChoosesAColorByKeyboardAndTellsItsParentAfterwards) {
  UiDriver driver({[&] { return Focused() && PostKey(Button(), VK_SPACE); },
                   Keys({VK_DOWN, VK_DOWN, VK_RETURN}), [&] { return End(); }});
  host.DoModal();
  EXPECT_EQ(host.button.GetColor(), RGB(255, 255, 255));
  EXPECT_EQ(host.notified, std::vector<COLORREF>{RGB(255, 255, 255)});
}

TEST_F(ColorButton, TheSecondColumnIsReachedWithTheArrows) {
  UiDriver driver({[&] { return Focused() && PostKey(Button(), VK_SPACE); },
                   Keys({VK_DOWN, VK_RIGHT, VK_DOWN, VK_RETURN}), [&] { return End(); }});
  host.DoModal();
  EXPECT_EQ(host.button.GetColor(), RGB(0, 255, 0));
}

TEST_F(ColorButton, DropsOnClickEnterF4AndAltDownAndEscapeChangesNothing) {
  UiDriver driver({[&] { return PostClick(Button()); }, Keys({VK_ESCAPE}), [&] { return !IsMenuOpen(); },
                   [&] { return Focused() && PostKey(Button(), VK_RETURN); }, Keys({VK_ESCAPE}),
                   [&] { return !IsMenuOpen(); }, [&] { return Focused() && PostKey(Button(), VK_F4); },
                   Keys({VK_ESCAPE}), [&] { return !IsMenuOpen(); },
                   [&] { return PostMessageA(Button(), WM_SYSKEYDOWN, VK_DOWN, 0x20000001) != FALSE; },
                   Keys({VK_ESCAPE}), [&] { return End(); }});
  EXPECT_EQ(host.DoModal(), IDCANCEL);
  EXPECT_EQ(host.button.GetColor(), RGB(1, 2, 3));
  EXPECT_TRUE(host.notified.empty());
}

TEST_F(ColorButton, ChoosingTheSameColorTellsNothing) {
  UiDriver driver({[&] {
                     host.button.SetColor(RGB(0, 0, 0));
                     return Focused() && PostKey(Button(), VK_SPACE);
                   },
                   Keys({VK_DOWN, VK_RETURN}), [&] { return End(); }});
  host.DoModal();
  EXPECT_TRUE(host.notified.empty());
}

TEST_F(ColorButton, OtherColorsAreMixedInTheSystemsDialog) {
  const auto mix = [&] {
    const HWND dialog = FindDialogInFrontOf(host.GetSafeHwnd());
    if (dialog == nullptr) return false;
    // The fields for red, green and blue of ChooseColor.
    SetDlgItemInt(dialog, 706, 10, FALSE);
    SetDlgItemInt(dialog, 707, 20, FALSE);
    SetDlgItemInt(dialog, 708, 30, FALSE);
    return PostCommand(dialog, IDOK);
  };
  UiDriver driver({[&] { return Focused() && PostKey(Button(), VK_SPACE); }, Keys({VK_UP, VK_RETURN}), mix,
                   [&] { return FindDialogInFrontOf(host.GetSafeHwnd()) == nullptr && End(); }});
  host.DoModal();
  EXPECT_EQ(host.button.GetColor(), RGB(10, 20, 30));
  EXPECT_EQ(host.notified, std::vector<COLORREF>{RGB(10, 20, 30)});
}

TEST_F(ColorButton, CancellingTheSystemsDialogChangesNothing) {
  const auto cancel = [&] {
    const HWND dialog = FindDialogInFrontOf(host.GetSafeHwnd());
    return dialog != nullptr && PostCommand(dialog, IDCANCEL);
  };
  UiDriver driver({[&] { return Focused() && PostKey(Button(), VK_SPACE); }, Keys({VK_UP, VK_RETURN}), cancel,
                   [&] { return FindDialogInFrontOf(host.GetSafeHwnd()) == nullptr && End(); }});
  host.DoModal();
  EXPECT_EQ(host.button.GetColor(), RGB(1, 2, 3));
}

TEST_F(ColorButton, TellsItsColorWithItsLabelInItsText) {
  UiDriver driver({[&] {
    EXPECT_EQ(host.button.GetWindowText(), "Fill: 1, 2, 3");
    EXPECT_EQ(host.labelled.GetWindowText(), "Background: Black (0, 0, 0)");
    host.labelled.SetColor(RGB(255, 0, 0));
    EXPECT_EQ(host.labelled.GetWindowText(), "Background: Red (255, 0, 0)");
    return End();
  }});
  host.DoModal();
}

TEST_F(ColorButton, DoesNotDropWhileDisabledAndForgetsAChoiceMadeWhenItBecameDisabled) {
  UiDriver driver({[&] {
                     EnableWindow(Button(), FALSE);
                     host.button.SendMessage(WM_KEYDOWN, VK_F4, 1);
                     EXPECT_FALSE(IsMenuOpen());
                     EnableWindow(Button(), TRUE);
                     return Focused() && PostKey(Button(), VK_SPACE);
                   },
                   [&] {
                     if (!IsMenuOpen()) return false;
                     EnableWindow(Button(), FALSE);
                     return true;
                   },
                   [&] {
                     // The system may have closed the palette already.
                     PressInMenu({VK_DOWN, VK_RETURN});
                     return true;
                   },
                   [&] { return End(); }});
  host.DoModal();
  EXPECT_EQ(host.button.GetColor(), RGB(1, 2, 3));
  EXPECT_TRUE(host.notified.empty());
}

TEST_F(ColorButton, SurvivesThatItsDialogIsDestroyedWhileThePaletteIsOpen) {
  UiDriver driver({[&] { return Focused() && PostKey(Button(), VK_SPACE); },
                   [&] { return IsMenuOpen() && host.DestroyWindow(); }});
  EXPECT_EQ(host.DoModal(), IDABORT);
  EXPECT_TRUE(host.notified.empty());
}

// The colour in the middle of the left half of the control.
COLORREF PixelOf(HWND window) {
  RECT rect = {};
  GetClientRect(window, &rect);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  const HDC context = GetDC(window);
  const COLORREF pixel = GetPixel(context, rect.right / 3, rect.bottom / 2);
  ReleaseDC(window, context);
  return pixel;
}

TEST_F(ColorButton, ShowsItsColorAndAnotherWhileDisabled) {
  UiDriver driver({[&] {
    host.button.SetColor(RGB(200, 40, 0));
    EXPECT_EQ(PixelOf(Button()), RGB(200, 40, 0));
    EnableWindow(Button(), FALSE);
    EXPECT_NE(PixelOf(Button()), RGB(200, 40, 0));
    return End();
  }});
  host.DoModal();
}

TEST_F(ColorButton, LeavesNoDrawingObjects) {
  int before = 0;
  const auto dropAndClose = [&] {
    UiDriver driver(
        {[&] { return Focused() && PostKey(Button(), VK_SPACE); }, Keys({VK_ESCAPE}), [&] { return End(); }});
    host.DoModal();
  };
  dropAndClose();
  before = CountGdiObjects();
  for (int i = 0; i < 5; ++i) dropAndClose();
  EXPECT_LE(CountGdiObjects(), before);
}

}  // namespace
