#include "mfc/edit_browse_ctrl.h"

#include <gtest/gtest.h>

#include <string>

#include "mfc/app.h"
#include "mfc/dialog.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"
#include "support/open_handles.h"
#include "support/temporary_folder.h"

namespace {

class BrowseEdit : public CMFCEditBrowseCtrl {
 public:
  void OnBrowse() override {
    ++browses;
    CMFCEditBrowseCtrl::OnBrowse();
    ++ends;
  }
  void OnAfterUpdate() override { updates.push_back(GetWindowText()); }

  int browses = 0;
  int ends = 0;
  std::vector<std::string> updates;
};

class Host : public CDialog {
 public:
  Host() : CDialog(IDD_TEST_CONTROLS) {}

  BrowseEdit edit;

 protected:
  BOOL OnInitDialog() override {
    EXPECT_TRUE(edit.SubclassDlgItem(IDC_TEST_EDIT, this));
    return TRUE;
  }
};

class EditBrowse : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(ExpectScreen());
    CMFCEditBrowseCtrl::SetInitialFolder("");
  }

  HWND Edit() const { return host.edit.GetSafeHwnd(); }
  HWND Opened() const { return FindDialogInFrontOf(host.GetSafeHwnd()); }
  int ClientWidth() const {
    RECT rect = {};
    GetClientRect(Edit(), &rect);
    return rect.right;
  }
  // The middle of the button, on the screen.
  LPARAM OnButton() const {
    RECT rect = {};
    GetWindowRect(Edit(), &rect);
    return MAKELPARAM(rect.right - 8, (rect.top + rect.bottom) / 2);
  }
  // A point of the screen as the client area counts.
  LPARAM InClient(LPARAM screen) const {
    POINT point = {static_cast<short>(LOWORD(screen)), static_cast<short>(HIWORD(screen))};
    ScreenToClient(Edit(), &point);
    return MAKELPARAM(point.x, point.y);
  }
  bool PressButton() const {
    host.edit.SendMessage(WM_NCMOUSEMOVE, HTBORDER, OnButton());
    host.edit.SendMessage(WM_NCLBUTTONDOWN, HTBORDER, OnButton());
    return PostMessageA(Edit(), WM_LBUTTONUP, 0, InClient(OnButton())) != FALSE;
  }
  // Types path into the shell's dialog and confirms it.
  bool Choose(const std::wstring& path) const {
    const HWND dialog = Opened();
    const HWND name = dialog != nullptr ? FindBelow(dialog, "Edit") : nullptr;
    if (name == nullptr) return false;
    SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    return PostCommand(dialog, IDOK);
  }
  bool Choose(const std::string& path) const { return Choose(std::wstring(path.begin(), path.end())); }
  bool End() { return PostCommand(host.GetSafeHwnd(), IDCANCEL); }
  // Presses the button beside this text, and takes a bare name: one in the folder that the dialog shows.
  void BrowseForFile(const std::string& text, const std::string& name) {
    UiDriver driver({[&] {
                       host.edit.EnableFileBrowseButton();
                       host.edit.SetWindowText(text);
                       return PressButton();
                     },
                     [&] { return Choose(name); }, [&] { return host.edit.ends == 1; },
                     [&] { return End(); }});
    host.DoModal();
  }

  CShellManager shell;
  TemporaryFolder folder;
  Host host;
};

TEST_F(EditBrowse, HasNoButtonUntilOneIsEnabled) {
  UiDriver driver({[&] {
    const int before = ClientWidth();
    EXPECT_NE(SendMessageA(Edit(), WM_NCHITTEST, 0, OnButton()), HTBORDER);
    host.edit.EnableFolderBrowseButton();
    EXPECT_LT(ClientWidth(), before - 15);
    EXPECT_EQ(SendMessageA(Edit(), WM_NCHITTEST, 0, OnButton()), HTBORDER);
    return End();
  }});
  host.DoModal();
}

TEST_F(EditBrowse, TheTextKeepsClearOfTheButtonWhenTheControlIsResized) {
  UiDriver driver({[&] {
    host.edit.EnableFolderBrowseButton();
    for (const int width : {300, 100, 10, 0, 200}) {
      SetWindowPos(Edit(), nullptr, 0, 0, width, 24, SWP_NOMOVE | SWP_NOZORDER);
      EXPECT_LE(ClientWidth(), std::max(0, width - 20)) << width;
    }
    EXPECT_EQ(SendMessageA(Edit(), WM_NCHITTEST, 0, OnButton()), HTBORDER);
    return End();
  }});
  host.DoModal();
}

TEST_F(EditBrowse, TheButtonPutsTheChosenFolderIntoTheText) {
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     return PressButton();
                   },
                   [&] { return Choose(folder.Path()); }, [&] { return host.edit.ends == 1; },
                   [&] {
                     EXPECT_EQ(host.edit.GetWindowText(), folder.Path());
                     EXPECT_TRUE(host.edit.SendMessage(EM_GETMODIFY));
                     return End();
                   }});
  host.DoModal();
  EXPECT_EQ(host.edit.updates, std::vector<std::string>{folder.Path()});
  EXPECT_EQ(CMFCEditBrowseCtrl::GetLastFolder(), folder.Path());
}

TEST_F(EditBrowse, TheButtonPutsTheChosenFileIntoTheText) {
  WriteFile(folder.Path("a.tif"), "x");
  UiDriver driver({[&] {
                     host.edit.EnableFileBrowseButton("tif", "Images (*.tif)|*.tif|All files (*.*)|*.*||");
                     return PressButton();
                   },
                   [&] { return Choose(folder.Path("a")); }, [&] { return host.edit.ends == 1; },
                   [&] { return End(); }});
  host.DoModal();
  EXPECT_EQ(host.edit.updates, std::vector<std::string>{folder.Path("a.tif")});
  EXPECT_EQ(CMFCEditBrowseCtrl::GetLastFolder(), folder.Path());
}

TEST_F(EditBrowse, CancelLeavesTheText) {
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     host.edit.SetWindowText("as it was");
                     return PressButton();
                   },
                   [&] { return Opened() != nullptr && PostCommand(Opened(), IDCANCEL); },
                   [&] { return host.edit.ends == 1; },
                   [&] {
                     EXPECT_EQ(host.edit.GetWindowText(), "as it was");
                     return End();
                   }});
  host.DoModal();
  EXPECT_TRUE(host.edit.updates.empty());
}

TEST_F(EditBrowse, BeginsInTheFolderOfTheText) {
  WriteFile(folder.Path("b.tif"), "x");
  BrowseForFile(folder.Path("not there.tif"), "b.tif");
  EXPECT_EQ(host.edit.updates, std::vector<std::string>{folder.Path("b.tif")});
}

TEST_F(EditBrowse, BeginsWhereTheLastDialogWasWhenTheTextNamesNoFolder) {
  WriteFile(folder.Path("c.tif"), "x");
  CMFCEditBrowseCtrl::SetInitialFolder(folder.Path());
  BrowseForFile("Q:\\no such folder\\x.tif", "c.tif");
  EXPECT_EQ(host.edit.updates, std::vector<std::string>{folder.Path("c.tif")});
}

TEST_F(EditBrowse, RefusesAPathThatTheCodePageCannotExpress) {
  const std::string text = folder.Path();
  const std::wstring strange = std::wstring(text.begin(), text.end()) + L"\\\x4E2D\x6587";
  ASSERT_TRUE(CreateDirectoryW(strange.c_str(), nullptr));
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     host.edit.SetWindowText("as it was");
                     return PressButton();
                   },
                   [&] { return Choose(strange); },
                   [&] {
                     const HWND box = Opened();
                     return box != nullptr &&
                            MessageBoxSays(box, "characters that this program cannot use") &&
                            PostCommand(box, IDOK);
                   },
                   [&] { return host.edit.ends == 1; },
                   [&] {
                     EXPECT_EQ(host.edit.GetWindowText(), "as it was");
                     return End();
                   }});
  host.DoModal();
  EXPECT_TRUE(host.edit.updates.empty());
  EXPECT_EQ(CMFCEditBrowseCtrl::GetLastFolder(), "");
}

TEST_F(EditBrowse, F4AndAltDownOpenTheDialogToo) {
  const auto cancel = [&] { return Opened() != nullptr && PostCommand(Opened(), IDCANCEL); };
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     return PostKey(Edit(), VK_F4);
                   },
                   cancel, [&] { return host.edit.ends == 1; },
                   [&] { return PostMessageA(Edit(), WM_SYSKEYDOWN, VK_DOWN, 0x20000001) != FALSE; }, cancel,
                   [&] { return host.edit.ends == 2; }, [&] { return End(); }});
  host.DoModal();
}

TEST_F(EditBrowse, OpensOneDialogOnlyAndKeepsItsOwnerDisabled) {
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     return PressButton();
                   },
                   [&] {
                     if (Opened() == nullptr) return false;
                     EXPECT_FALSE(IsWindowEnabled(host.GetSafeHwnd()));
                     host.edit.SendMessage(WM_KEYDOWN, VK_F4, 1);
                     host.edit.SendMessage(WM_NCLBUTTONDOWN, HTBORDER, OnButton());
                     host.edit.SendMessage(WM_LBUTTONUP, 0, InClient(OnButton()));
                     EXPECT_EQ(host.edit.browses, 1);
                     return PostCommand(Opened(), IDCANCEL);
                   },
                   [&] { return host.edit.ends == 1; }, [&] { return End(); }});
  host.DoModal();
  EXPECT_EQ(host.edit.browses, 1);
}

TEST_F(EditBrowse, DropsTheChoiceWhenTheControlWasDisabledMeanwhile) {
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     return PressButton();
                   },
                   [&] {
                     if (Opened() == nullptr) return false;
                     EnableWindow(Edit(), FALSE);
                     return true;
                   },
                   [&] { return Choose(folder.Path()); }, [&] { return host.edit.ends == 1; },
                   [&] {
                     EXPECT_EQ(host.edit.GetWindowText(), "");
                     return End();
                   }});
  host.DoModal();
  EXPECT_TRUE(host.edit.updates.empty());
}

TEST_F(EditBrowse, SurvivesThatItsDialogIsDestroyedWhileItBrowses) {
  UiDriver driver({[&] {
                     host.edit.EnableFolderBrowseButton();
                     return PressButton();
                   },
                   [&] { return Opened() != nullptr && host.DestroyWindow(); }});
  EXPECT_EQ(host.DoModal(), IDABORT);
  EXPECT_EQ(host.edit.ends, 1);
  EXPECT_EQ(host.edit.GetSafeHwnd(), nullptr);
}

TEST_F(EditBrowse, DoesNotBrowseWhenTheMouseIsLetGoElsewhereOrTheControlIsDisabled) {
  UiDriver driver({[&] {
    host.edit.EnableFolderBrowseButton();
    host.edit.SendMessage(WM_NCLBUTTONDOWN, HTBORDER, OnButton());
    EXPECT_EQ(GetCapture(), Edit());
    host.edit.SendMessage(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(2, 2));
    host.edit.SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(2, 2));
    EXPECT_EQ(GetCapture(), nullptr);
    EnableWindow(Edit(), FALSE);
    host.edit.SendMessage(WM_KEYDOWN, VK_F4, 1);
    return End();
  }});
  host.DoModal();
  EXPECT_EQ(host.edit.browses, 0);
}

TEST_F(EditBrowse, DrawsWithoutLeavingDrawingObjects) {
  UiDriver driver({[&] {
    host.edit.EnableFolderBrowseButton();
    const auto draw = [&] {
      host.edit.SendMessage(WM_NCPAINT, 1, 0);
      host.edit.SendMessage(WM_NCMOUSEMOVE, HTBORDER, OnButton());
      host.edit.SendMessage(WM_NCMOUSELEAVE);
      EnableWindow(Edit(), FALSE);
      EnableWindow(Edit(), TRUE);
    };
    draw();
    const int before = CountGdiObjects();
    EXPECT_GT(before, 0);
    for (int i = 0; i < 50; ++i) draw();
    EXPECT_LE(CountGdiObjects(), before);
    return End();
  }});
  host.DoModal();
}

}  // namespace
