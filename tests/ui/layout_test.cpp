// Whether everything in the dialogs has its place at this resolution of the screen: nothing is cut off,
// nothing lies over something else, labels stand before what they label, and keys are given once.
#include <algorithm>
#include <cctype>
#include <map>

#include "handles/drawing_handles.h"
#include "support/temporary_folder.h"
#include "ui/publish_fixture.h"
#include "ui/screenshot.h"

namespace {

// In pixels at 96 dots per inch.
constexpr int kCheckBoxRoom = 17;    // the box and the gap after it
constexpr int kGroupTextInset = 9;   // on either side of a group's title
constexpr int kButtonIconRoom = 20;  // the icon and the gap after it
constexpr int kLinkMargin = 2;

enum class Kind { kLabel, kEdit, kCheckBox, kGroup, kPushButton, kLink, kColourButton, kOther };

int ScreenDpi() {
  return GetDeviceCaps(WindowContext(nullptr).Get(), LOGPIXELSY);
}

int Scaled(int pixels) {
  return MulDiv(pixels, ScreenDpi(), 96);
}

// The font of the dialog templates, made here: a font handle means nothing to another process.
class DialogText {
 public:
  explicit DialogText(bool underlined = false)
      : m_font(CreateFontA(-MulDiv(8, ScreenDpi(), 72), 0, 0, 0, FW_NORMAL, FALSE, underlined, FALSE,
                           DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                           DEFAULT_PITCH, "MS Shell Dlg")) {}

  SIZE Measure(const std::string& text, UINT format, LONG width = 0) const {
    RECT rect = {0, 0, width, 0};
    DrawTextA(m_context.Get(), text.c_str(), -1, &rect, format | DT_CALCRECT);
    return {rect.right, rect.bottom};
  }
  // Pixels of so many horizontal dialog units.
  LONG FromUnits(int units) const {
    const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    SIZE extent = {};
    GetTextExtentPoint32A(m_context.Get(), letters, 52, &extent);
    return MulDiv(units, (extent.cx / 26 + 1) / 2, 4);
  }

 private:
  const MemoryContext m_context{nullptr};
  const GdiObject<HFONT> m_font;
  const Selected m_selected{m_context.Get(), m_font.get()};
};

Kind KindOf(const Window& control) {
  const std::string name = control.ClassName();
  if (name == "Static") return (control.Style() & SS_TYPEMASK) == SS_ICON ? Kind::kOther : Kind::kLabel;
  if (name == "Edit" || name == "ComboBox") return Kind::kEdit;
  if (name != "Button") return Kind::kOther;
  switch (control.Style() & BS_TYPEMASK) {
    case BS_AUTOCHECKBOX:
      return Kind::kCheckBox;
    case BS_GROUPBOX:
      return Kind::kGroup;
    case BS_OWNERDRAW:
      return control.Id() == IDC_TRANSPARENCY ? Kind::kColourButton : Kind::kLink;
    default:
      return Kind::kPushButton;
  }
}

std::string Name(const Window& control) {
  return control.ClassName() + " " + std::to_string(control.Id()) + " \"" + control.Text() + "\"";
}

SIZE ClientSize(const Window& window) {
  RECT client = {};
  GetClientRect(window.Handle(), &client);
  return {client.right, client.bottom};
}

std::vector<Window> VisibleControls(const Window& dialog) {
  std::vector<Window> controls = dialog.Children();
  std::erase_if(controls, [](const Window& control) { return !control.IsVisible(); });
  return controls;
}

void ExpectTextFits(const Window& control) {
  const SIZE room = ClientSize(control);
  const std::string text = control.Text();
  const UINT prefix =
      (control.Style() & SS_NOPREFIX) != 0 && KindOf(control) == Kind::kLabel ? DT_NOPREFIX : 0;
  SIZE needed = {};
  switch (KindOf(control)) {
    case Kind::kLabel:
      needed = DialogText().Measure(text, DT_WORDBREAK | DT_EXPANDTABS | prefix, room.cx);
      break;
    case Kind::kCheckBox:
      needed = DialogText().Measure(text, DT_LEFT);
      needed.cx += Scaled(kCheckBoxRoom);
      break;
    case Kind::kGroup:
      needed = DialogText().Measure(text, DT_SINGLELINE);
      needed.cx += 2 * Scaled(kGroupTextInset);
      break;
    case Kind::kLink:
      needed = DialogText(true).Measure(text, DT_SINGLELINE);
      needed.cx += 2 * Scaled(kLinkMargin);
      break;
    case Kind::kPushButton:
      if ((control.Style() & BS_ICON) != 0) return;  // shows no text
      needed = DialogText().Measure(text, DT_SINGLELINE);
      if (control.Send(BM_GETIMAGE, IMAGE_ICON) != 0) needed.cx += Scaled(kButtonIconRoom);
      break;
    default:
      return;
  }
  EXPECT_LE(needed.cx, room.cx) << "width of " << Name(control);
  EXPECT_LE(needed.cy, room.cy) << "height of " << Name(control);
}

bool Overlap(const RECT& a, const RECT& b) {
  RECT common = {};
  return IntersectRect(&common, &a, &b) != FALSE;
}

bool IsInside(const RECT& inner, const RECT& outer) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

void ExpectPlaces(const Window& dialog) {
  RECT client = {};
  GetClientRect(dialog.Handle(), &client);
  MapWindowPoints(dialog.Handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
  const std::vector<Window> controls = VisibleControls(dialog);
  for (size_t i = 0; i < controls.size(); ++i) {
    const RECT place = controls[i].Place();
    EXPECT_FALSE(IsRectEmpty(&place)) << Name(controls[i]) << " has no size";
    EXPECT_TRUE(IsInside(place, client)) << Name(controls[i]) << " leaves the dialog";
    for (size_t j = 0; j < i; ++j) {
      const RECT other = controls[j].Place();
      const bool group = KindOf(controls[i]) == Kind::kGroup || KindOf(controls[j]) == Kind::kGroup;
      if (group && (IsInside(place, other) || IsInside(other, place))) continue;
      EXPECT_FALSE(Overlap(place, other)) << Name(controls[i]) << " lies over " << Name(controls[j]);
    }
  }
}

// A check box may label the field that it switches.
void ExpectLabels(const Window& dialog) {
  const std::vector<Window> controls = dialog.Children();
  for (size_t i = 0; i < controls.size(); ++i) {
    const Kind kind = KindOf(controls[i]);
    if (kind != Kind::kEdit && kind != Kind::kColourButton) continue;
    ASSERT_GT(i, 0U);
    const Kind before = KindOf(controls[i - 1]);
    EXPECT_TRUE(before == Kind::kLabel || before == Kind::kCheckBox) << Name(controls[i]);
    EXPECT_NE(controls[i - 1].Text(), "") << Name(controls[i]);
  }
}

// '\0' when a text gives none.
char AccessKey(const Window& control) {
  const std::string text = control.Text();
  const bool plain = KindOf(control) == Kind::kLabel && (control.Style() & SS_NOPREFIX) != 0;
  if (plain || KindOf(control) == Kind::kEdit) return '\0';
  for (size_t i = text.find('&'); i != std::string::npos; i = text.find('&', i + 2)) {
    if (i + 1 < text.size() && text[i + 1] != '&') {
      return static_cast<char>(std::tolower(static_cast<unsigned char>(text[i + 1])));
    }
  }
  return '\0';
}

void ExpectKeys(const Window& dialog) {
  std::map<char, std::string> keys;
  for (const Window& control : dialog.Children()) {
    const char key = AccessKey(control);
    if (key == '\0') continue;
    EXPECT_EQ(keys.count(key), 0U) << Name(control) << " has the key of " << keys[key];
    keys[key] = Name(control);
    const bool standard = control.Id() == IDOK || control.Id() == IDCANCEL || control.Id() == IDC_EXIT;
    EXPECT_FALSE(standard) << Name(control);
  }
}

class Layout : public PublishTest {
 protected:
  // What is seen is kept where MOSAICON_PICTURES names a folder.
  void Examine(const Window& dialog, const char* name, int widthInUnits) {
    ASSERT_TRUE(dialog) << name;
    SCOPED_TRACE(name);
    Photograph(dialog, name);
    EXPECT_EQ(ClientSize(dialog).cx, DialogText().FromUnits(widthInUnits)) << "the dialog has another font";
    for (const Window& control : VisibleControls(dialog)) ExpectTextFits(control);
    ExpectPlaces(dialog);
    ExpectLabels(dialog);
    ExpectKeys(dialog);
  }

  static void Photograph(const Window& window, const char* name) {
    char folder[MAX_PATH] = "";
    if (GetEnvironmentVariableA("MOSAICON_PICTURES", folder, sizeof folder) == 0) return;
    const std::string path = std::string(folder) + "\\" + name + "-" + std::to_string(ScreenDpi()) + ".png";
    EXPECT_TRUE(SavePng(TakePictureWhenStill(window.Handle()), path));
  }

  static void Close(const Window& dialog, int button) {
    dialog.Item(button).Click();
    EXPECT_TRUE(dialog.WaitUntilGone());
  }
};

TEST_F(Layout, OfTheMainWindowIsSound) {
  FillIn({});
  Examine(Main(), "main", 675);
}

TEST_F(Layout, OfTheWindowAtWorkAndTheReportIsSound) {
  FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out"), .title = "Harbour"});
  PressStart();
  ASSERT_TRUE(WaitUntilTiling());
  Examine(Main(), "working", 675);
  Item(IDC_CANCEL_JOB).Click();
  NextMessage(IDYES);
  const Window report = Running().WaitFor(kReportTitle, kJobPatience);
  Examine(report, "report", 360);
  Close(report, IDOK);
}

TEST_F(Layout, OfAboutAndUserDataIsSound) {
  Item(IDC_ABOUT).Click();
  const Window about = Running().WaitFor("About Mosaicon");
  Examine(about, "about", 240);
  about.Item(IDC_CHANGE_USER_DATA).Click();
  const Window form = Running().WaitFor("User Data");
  Examine(form, "user_data", 250);
  Close(form, IDCANCEL);
  Close(about, IDOK);
}

TEST_F(Layout, OfTheUploadDialogIsSound) {
  ASSERT_TRUE(OpenUpload("d:\\maps\\harbour"));
  Examine(Ftp(), "upload", 265);
}

TEST_F(Layout, OfAMessageCanBeSeen) {
  FillIn({});
  PressStart();
  const MessageBoxWindow box = WaitForMessageBox(Running());
  ASSERT_TRUE(box);
  Photograph(box.Frame(), "message");
  ExpectPlaces(box.Frame());
  EXPECT_TRUE(box.Answer(IDOK));
}

}  // namespace
