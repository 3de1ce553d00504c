#include "mfc/link_ctrl.h"

#include <gtest/gtest.h>

#include <vector>

#include "mfc/dialog.h"
#include "mfc/testing/dialogs.h"
#include "mfc/testing/ui_driver.h"
#include "support/open_handles.h"

namespace {

// Records instead of starting a browser.
class RecordingLink : public CMFCLinkCtrl {
 public:
  std::vector<std::string> opened;
  BOOL result = TRUE;

 protected:
  BOOL OpenURL(const std::string& url) override {
    opened.push_back(url);
    return result;
  }
};

class Host : public CDialog {
 public:
  Host() : CDialog(IDD_TEST_CONTROLS) {}

  RecordingLink link;

 protected:
  BOOL OnInitDialog() override {
    EXPECT_TRUE(link.SubclassDlgItem(IDC_TEST_LINK, this));
    link.SetURL("https://example.org/a?b=c&d");
    return TRUE;
  }
};

class LinkCtrl : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(ExpectScreen()); }
  HWND Link() const { return host.link.GetSafeHwnd(); }
  bool End() const { return PostCommand(host.GetSafeHwnd(), IDCANCEL); }
  bool Opened(size_t count) const { return host.link.opened.size() == count; }
  Host host;
};

TEST_F(LinkCtrl, OpensItsAddressOnClickSpaceAndEnter) {
  UiDriver driver({[&] { return PostClick(Link()); }, [&] { return Opened(1) && PostKey(Link(), VK_SPACE); },
                   [&] { return Opened(2) && PostKey(Link(), VK_RETURN); },
                   [&] { return Opened(3) && End(); }});
  // Enter must not be the OK button's.
  EXPECT_EQ(host.DoModal(), IDCANCEL);
  EXPECT_EQ(host.link.opened, std::vector<std::string>(3, "https://example.org/a?b=c&d"));
}

TEST_F(LinkCtrl, DoesNotOpenWhenTheMouseIsLetGoElsewhere) {
  UiDriver driver({[&] {
    host.link.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
    host.link.SendMessage(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(4, 400));
    host.link.SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(4, 400));
    host.link.SendMessage(WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
    return End();
  }});
  host.DoModal();
  EXPECT_TRUE(host.link.opened.empty());
}

TEST_F(LinkCtrl, TakesItsTextForTheAddressWhenNoneIsSet) {
  UiDriver driver({[&] {
                     host.link.SetURL("");
                     host.link.SetWindowText("mailto:info@example.org");
                     return PostClick(Link());
                   },
                   [&] { return Opened(1) && End(); }});
  host.DoModal();
  EXPECT_EQ(host.link.opened, std::vector<std::string>{"mailto:info@example.org"});
}

TEST_F(LinkCtrl, OpensNothingButWebPagesAndLetters) {
  const auto closeBox = [&] {
    const HWND box = FindDialogInFrontOf(host.GetSafeHwnd());
    return box != nullptr && MessageBoxSays(box, "could not be opened") && PostCommand(box, IDOK);
  };
  UiDriver driver({[&] {
                     host.link.SetURL("C:\\Windows\\notepad.exe");
                     return PostClick(Link());
                   },
                   closeBox, [&] { return FindDialogInFrontOf(host.GetSafeHwnd()) == nullptr; },
                   [&] {
                     host.link.SetURL("HTTP");
                     return PostClick(Link());
                   },
                   closeBox, [&] { return FindDialogInFrontOf(host.GetSafeHwnd()) == nullptr && End(); }});
  host.DoModal();
  EXPECT_TRUE(host.link.opened.empty());
}

TEST_F(LinkCtrl, TellsTheAddressWhenItCannotBeOpened) {
  host.link.result = FALSE;
  UiDriver driver({[&] { return PostClick(Link()); },
                   [&] {
                     const HWND box = FindDialogInFrontOf(host.GetSafeHwnd());
                     return box != nullptr && MessageBoxSays(box, "https://example.org/a") &&
                            PostCommand(box, IDOK);
                   },
                   [&] { return FindDialogInFrontOf(host.GetSafeHwnd()) == nullptr && End(); }});
  host.DoModal();
  EXPECT_EQ(host.link.opened.size(), 1U);
}

TEST_F(LinkCtrl, IsAsLargeAsItsText) {
  UiDriver driver({[&] {
    const SIZE size = host.link.SizeToContent();
    RECT rect = {};
    GetClientRect(Link(), &rect);
    EXPECT_EQ(rect.right, size.cx);
    EXPECT_EQ(rect.bottom, size.cy);
    host.link.SetWindowText("More about this and about that");
    EXPECT_GT(host.link.SizeToContent().cx, size.cx + 20);
    return End();
  }});
  host.DoModal();
}

TEST_F(LinkCtrl, ShowsAHandAndKeepsNoDrawingObjects) {
  UiDriver driver({[&] {
    SetCursor(nullptr);
    host.link.SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(Link()), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    EXPECT_EQ(GetCursor(), LoadCursor(nullptr, IDC_HAND));
    const auto draw = [&] { RedrawWindow(Link(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); };
    draw();
    const int before = CountGdiObjects();
    for (int i = 0; i < 50; ++i) draw();
    EXPECT_LE(CountGdiObjects(), before);
    return End();
  }});
  host.DoModal();
}

}  // namespace
