// What the main dialog is made of, and what its buttons do, beside a job.
#include <gtest/gtest.h>
#include <windows.h>

// After windows.h.
#include <commctrl.h>

#include <algorithm>

#include "job/testing/form_fixture.h"
#include "job/testing/shell_calls.h"
#include "maker.h"
#include "mfc/dpi.h"
#include "resources/resource.h"

namespace {

struct Control {
  int id;
  const char* windowClass;
  const char* text;
  bool enabled = true;
  bool visible = true;
};

constexpr Control kControls[] = {
    {IDC_ORTHOPHOTO, "Edit", ""},
    {IDC_PICK_FOLDER, "Button", "Pick Folder"},
    {IDC_MAP_TITLE, "Edit", ""},
    {IDC_HELP_INPUT_OUTPUT, "Button", "Mosaicon I/O Info"},
    {IDC_HELP_WEB_SERVER, "Button", "HowTo setup a Web Server"},
    {IDC_TARGET_FOLDER, "Edit", ""},
    {IDC_GOOGLE_KEY, "Edit", ""},
    {IDC_GET_GOOGLE_KEY, "Button", "Get a Google API key"},
    {IDC_TRANSPARENCY, "Button", "Transparency color: Black (0, 0, 0)"},
    {IDC_RESAMPLING, "ComboBox", "average"},
    {IDC_BUSY_ANIMATION, "SysAnimate32", "", true, false},
    {IDC_WEB_OUTPUT, "Button", "Absolute Web URL\n(needed to share by web)"},
    {IDC_TARGET_URL, "Edit", "", false},
    {IDC_PROGRESS, "msctls_progress32", ""},
    {IDC_START, "Button", "Start"},
    {IDC_CANCEL_JOB, "Button", "Cancel the running job", false},
    {IDC_UPLOAD, "Button", "Upload"},
    {IDC_ABOUT, "Button", "About"},
    {IDC_EXIT, "Button", "Exit"},
    {IDC_TILES_EXACT, "Button", "Tiles: exact (PNG)"},
    {IDC_TILES_SMALL, "Button", "Tiles: small (JPEG)"},
    {IDC_SHOW_FINISHED_MAP, "Button", "Show the finished map"},
    {IDC_INPUT_SUMMARY, "Static",
     "Choose an orthophoto, or tick \"Pick Folder\" and choose a folder of them.\n"
     "Then name a target folder and press Start."},
    {IDC_CHECK_UPDATES, "Button", "Check updates on Kovel Software FTP"},
};

// Kinds of buttons.
struct Kind {
  int id;
  LONG_PTR type;
};

constexpr Kind kKinds[] = {
    {IDC_PICK_FOLDER, BS_AUTOCHECKBOX},
    {IDC_WEB_OUTPUT, BS_AUTOCHECKBOX},
    {IDC_SHOW_FINISHED_MAP, BS_AUTOCHECKBOX},
    {IDC_TILES_EXACT, BS_AUTORADIOBUTTON},
    {IDC_TILES_SMALL, BS_AUTORADIOBUTTON},
    {IDC_GET_GOOGLE_KEY, BS_OWNERDRAW},
    {IDC_CHECK_UPDATES, BS_OWNERDRAW},
    {IDC_TRANSPARENCY, BS_OWNERDRAW},
    {IDC_START, BS_PUSHBUTTON},
    {IDC_CANCEL_JOB, BS_PUSHBUTTON},
    {IDC_UPLOAD, BS_PUSHBUTTON},
    {IDC_ABOUT, BS_PUSHBUTTON},
    {IDC_EXIT, BS_PUSHBUTTON},
    {IDC_HELP_INPUT_OUTPUT, BS_PUSHBUTTON},
    {IDC_HELP_WEB_SERVER, BS_PUSHBUTTON},
};

// Labels and titles of groups, which have no numbers.
constexpr const char* kTexts[] = {"Orthophoto:",
                                  "Map Title:",
                                  "Output",
                                  "Target folder:",
                                  "Google Maps (optional)",
                                  "Google API key:",
                                  "Advanced Options",
                                  "Transparency color:",
                                  "Resampling mode:",
                                  "Google Maps Preview"};

std::string ClassOf(HWND window) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return name;
}

// In pixels; 0 for no icon.
LONG WidthOf(HICON icon) {
  ICONINFO info = {};
  if (!GetIconInfo(icon, &info)) return 0;
  BITMAP picture = {};
  GetObjectA(info.hbmColor, sizeof picture, &picture);
  DeleteObject(info.hbmColor);
  DeleteObject(info.hbmMask);
  return picture.bmWidth;
}

// The tool tips of a thread's windows, asked for that of one control.
struct TipSearch {
  HWND control;
  std::string text;
};

BOOL CALLBACK SearchTips(HWND window, LPARAM parameter) {
  if (ClassOf(window) != TOOLTIPS_CLASSA) return TRUE;
  auto& search = *reinterpret_cast<TipSearch*>(parameter);
  const auto count = static_cast<WPARAM>(SendMessageA(window, TTM_GETTOOLCOUNT, 0, 0));
  for (WPARAM i = 0; i < count; ++i) {
    char text[512] = "";
    TTTOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.lpszText = text;
    if (SendMessageA(window, TTM_ENUMTOOLSA, i, reinterpret_cast<LPARAM>(&tool)) == 0) continue;
    if (tool.uId == reinterpret_cast<UINT_PTR>(search.control)) search.text = text;
  }
  return TRUE;
}

class Form : public FormTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(FormTest::SetUp());
    TakeShellCalls();
  }
};

TEST_F(Form, HasItsControlsWithTheirTexts) {
  Work({[this] {
    EXPECT_EQ(TextOf(Main()), "Kovel Software - Mosaicon");
    for (const Control& control : kControls) {
      const HWND window = Item(control.id);
      EXPECT_EQ(ClassOf(window), control.windowClass) << control.id;
      EXPECT_EQ(TextOf(window), control.text) << control.id;
      EXPECT_EQ(IsWindowEnabled(window) != FALSE, control.enabled) << control.id;
      EXPECT_EQ((GetWindowLongPtrA(window, GWL_STYLE) & WS_VISIBLE) != 0, control.visible) << control.id;
    }
    for (const Kind& kind : kKinds) {
      EXPECT_EQ(GetWindowLongPtrA(Item(kind.id), GWL_STYLE) & BS_TYPEMASK, kind.type) << kind.id;
    }
    EXPECT_NE(GetWindowLongPtrA(Item(IDC_WEB_OUTPUT), GWL_STYLE) & BS_MULTILINE, 0) << "two lines";
    EXPECT_EQ(GetWindowLongPtrA(Item(IDC_RESAMPLING), GWL_STYLE) & 3, CBS_DROPDOWNLIST);
    EXPECT_FALSE(IsDlgButtonChecked(Main(), IDC_PICK_FOLDER));
    EXPECT_FALSE(IsDlgButtonChecked(Main(), IDC_WEB_OUTPUT));
    return true;
  }});
}

TEST_F(Form, HasItsLabels) {
  Work({[this] {
    std::vector<std::string> texts;
    bool hasExample = false;
    for (HWND child = GetWindow(Main(), GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
      if (!IsWindowVisible(child)) continue;
      texts.push_back(TextOf(child));
      hasExample =
          hasExample || (ClassOf(child) == "Static" && texts.back().find("http://") != std::string::npos);
    }
    for (const char* text : kTexts) EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 1) << text;
    EXPECT_TRUE(hasExample) << "of an address, below the field for it";
    return true;
  }});
}

TEST_F(Form, HasItsSizeAndItsFont) {
  Work({[this] {
    RECT units = {0, 0, 675, 310};
    MapDialogRect(Main(), &units);
    RECT client = {};
    GetClientRect(Main(), &client);
    EXPECT_EQ(client.right, units.right);
    EXPECT_EQ(client.bottom, units.bottom);
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(Main(), WM_GETFONT, 0, 0)), sizeof font, &font);
    EXPECT_STREQ(font.lfFaceName, "MS Shell Dlg");
    EXPECT_EQ(font.lfHeight, -MulDiv(8, static_cast<int>(afx::GetWindowDpi(Main())), 72));
    return true;
  }});
}

TEST_F(Form, HasIconsOnItsButtonsAndInItsCaption) {
  Work({[this] {
    for (const int id : {IDC_START, IDC_CANCEL_JOB, IDC_UPLOAD, IDC_ABOUT, IDC_EXIT, IDC_HELP_INPUT_OUTPUT,
                         IDC_HELP_WEB_SERVER}) {
      EXPECT_NE(SendMessageA(Item(id), BM_GETIMAGE, IMAGE_ICON, 0), 0) << id;
    }
    for (const auto& [kind, size] : {std::pair(ICON_BIG, 32), std::pair(ICON_SMALL, 16)}) {
      const LRESULT icon = SendMessageA(Main(), WM_GETICON, static_cast<WPARAM>(kind), 0);
      EXPECT_EQ(WidthOf(reinterpret_cast<HICON>(icon)), afx::Scale(size, afx::GetWindowDpi(Main())));
    }
    return true;
  }});
}

TEST_F(Form, OpensTheTutorials) {
  Work({[this] {
    Press(IDC_HELP_WEB_SERVER);
    Press(IDC_HELP_INPUT_OUTPUT);
    return true;
  }});
  const auto path = [this](const char* name) { return m_folder.Path(std::string("tutorial\\") + name); };
  EXPECT_EQ(TakeShellCalls(), (std::vector<ShellCall>{
                                  {"open", path("Setup a simple Web Server for ZPD datasets.pdf"), "", "", 3},
                                  {"open", path("MOS_InputOutput.pdf"), "", "", 3}}));
}

TEST_F(Form, LinksToPagesOnTheWeb) {
  Work({[this] {
    PostClick(Item(IDC_GET_GOOGLE_KEY));
    PostClick(Item(IDC_CHECK_UPDATES));
    TipSearch tip = {Item(IDC_CHECK_UPDATES), ""};
    EnumThreadWindows(GetCurrentThreadId(), SearchTips, reinterpret_cast<LPARAM>(&tip));
    EXPECT_EQ(tip.text, "Get Mosaicon updates");
    return true;
  }});
  const std::vector<ShellCall> calls = TakeShellCalls();
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_TRUE(calls[0].file.starts_with("https://console.cloud.google.com/")) << calls[0];
  EXPECT_EQ(calls[1].file, kUpdateAddress);
  for (const ShellCall& call : calls) EXPECT_EQ(call.verb, "open");
}

TEST_F(Form, GivesTheUploadItsTexts) {
  Work({[this] {
    SetDlgItemTextA(Main(), IDC_TARGET_URL, "http://host/maps");
    SetDlgItemTextA(Main(), IDC_TARGET_FOLDER, "d:\\maps");
    Press(IDC_UPLOAD);
    Press(IDC_ABOUT);
    SendMessageA(Main(), WM_SYSCOMMAND, IDM_ABOUTBOX, 0);
    return true;
  }});
  EXPECT_EQ(m_opener.opened,
            (std::vector<std::string>{"upload http://host/maps d:\\maps", "about", "about"}));
}

// The colour itself is chosen with the keyboard: the second of the palette is white.
TEST_F(Form, KeepsTheColorThatWasChosenForTheJobOnly) {
  const auto key = [](WPARAM which) {
    return [which] { return IsMenuOpen() && PostKey(GetFocus(), which); };
  };
  const std::string orthophoto = MakeOrthophoto("a.tif");
  Work({[this] {
          SetFocus(Item(IDC_TRANSPARENCY));
          return PostKey(Item(IDC_TRANSPARENCY), VK_SPACE);
        },
        key(VK_DOWN), key(VK_DOWN), key(VK_RETURN), [] { return !IsMenuOpen(); },
        [this] { return Text(IDC_TRANSPARENCY) == "Transparency color: White (255, 255, 255)"; },
        Posting(IDC_START), ReadingBox("Select the target folder"), WaitingUntilFree()},
       orthophoto);
  for (const char* stored : {"Transparency_R", "Transparency_G", "Transparency_B"}) {
    EXPECT_EQ(Stored(stored), "255") << stored;
  }
  Work({[this] {
    EXPECT_EQ(Text(IDC_TRANSPARENCY), "Transparency color: Black (0, 0, 0)");
    return true;
  }});
}

// The registered message by its name, with a text.
TEST_F(Form, ScansWhatItIsToldToHaveBeenBrowsed) {
  const std::string orthophoto = MakeOrthophoto("a.tif");
  Work({[&] {
          const UINT message = RegisterWindowMessageA("orthoPath");
          SetDlgItemTextA(Main(), IDC_ORTHOPHOTO, orthophoto.c_str());
          SendMessageA(Main(), message, 0, reinterpret_cast<LPARAM>(orthophoto.c_str()));
          // Another parameter tells nothing.
          SendMessageA(Main(), message, 1, 0);
          return true;
        },
        Posting(IDC_START), ReadingBox("Select the target folder"), WaitingUntilFree()});
}

}  // namespace
