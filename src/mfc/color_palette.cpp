#include "mfc/color_palette.h"

// After windows.h.
#include <commdlg.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <vector>

#include "mfc/control_drawing.h"

using namespace mfc_detail;

namespace {

struct NamedColor {
  COLORREF color;
  const char* pszName;
};

// The sixteen that everything has names for: greys first, then dark beside bright.
constexpr std::array<NamedColor, 16> kColors = {{
    {RGB(0, 0, 0), "Black"},
    {RGB(255, 255, 255), "White"},
    {RGB(128, 128, 128), "Gray"},
    {RGB(192, 192, 192), "Silver"},
    {RGB(128, 0, 0), "Maroon"},
    {RGB(255, 0, 0), "Red"},
    {RGB(128, 128, 0), "Olive"},
    {RGB(255, 255, 0), "Yellow"},
    {RGB(0, 128, 0), "Green"},
    {RGB(0, 255, 0), "Lime"},
    {RGB(0, 128, 128), "Teal"},
    {RGB(0, 255, 255), "Cyan"},
    {RGB(0, 0, 128), "Navy"},
    {RGB(0, 0, 255), "Blue"},
    {RGB(128, 0, 128), "Purple"},
    {RGB(255, 0, 255), "Magenta"},
}};

// Of the menu's entries: a colour has its place in kColors and one; 0 is no choice.
constexpr UINT kOtherCommand = kColors.size() + 1;

using Bitmap = GdiObject<HBITMAP>;

struct MenuDeleter {
  void operator()(HMENU menu) const { DestroyMenu(menu); }
};
using Menu = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuDeleter>;

const NamedColor* FindNamed(COLORREF color) {
  const auto* found = std::find_if(kColors.begin(), kColors.end(),
                                   [color](const NamedColor& each) { return each.color == color; });
  return found != kColors.end() ? found : nullptr;
}

Bitmap MakeSwatch(COLORREF color, UINT dpi) {
  const WindowContext screen(nullptr);
  const RECT all = {0, 0, Scale(24, dpi), Scale(14, dpi)};
  Bitmap bitmap(CreateCompatibleBitmap(screen.Get(), all.right, all.bottom));
  const MemoryContext context(screen.Get());
  const Selected selected(context.Get(), bitmap.get());
  FillWith(context.Get(), all, color);
  FrameWith(context.Get(), all, RGB(128, 128, 128), 1);
  return bitmap;
}

// A menu with the system's own drawing: its names are read out, and its keys are known.
class Palette {
 public:
  Palette(const std::string& otherLabel, COLORREF current, UINT dpi) : m_pMenu(CreatePopupMenu()) {
    for (UINT i = 0; i < kColors.size(); ++i) {
      const bool secondColumn = i == kColors.size() / 2;
      Add(i + 1, kColors[i].pszName, secondColumn ? MFT_MENUBREAK : 0, kColors[i].color == current);
      m_swatches.push_back(MakeSwatch(kColors[i].color, dpi));
      MENUITEMINFOA item = {};
      item.cbSize = sizeof(item);
      item.fMask = MIIM_BITMAP;
      item.hbmpItem = m_swatches.back().get();
      SetMenuItemInfoA(m_pMenu.get(), i + 1, FALSE, &item);
    }
    if (!otherLabel.empty()) Add(kOtherCommand, otherLabel, 0, FindNamed(current) == nullptr);
  }

  UINT Track(HWND owner) const {
    RECT rect = {};
    GetWindowRect(owner, &rect);
    TPMPARAMS keepFree = {sizeof(keepFree), rect};
    return static_cast<UINT>(TrackPopupMenuEx(
        m_pMenu.get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL | TPM_RETURNCMD | TPM_NONOTIFY, rect.left,
        rect.bottom, owner, &keepFree));
  }

 private:
  void Add(UINT command, const std::string& text, UINT type, bool current) {
    const UINT state = current ? MF_CHECKED : MF_UNCHECKED;
    AppendMenuA(m_pMenu.get(), MF_STRING | type | state, command, text.c_str());
  }

  std::vector<Bitmap> m_swatches;  // outlive the menu that shows them
  const Menu m_pMenu;
};

BOOL MixColor(HWND owner, COLORREF* color) {
  static std::array<COLORREF, 16> kept = [] {
    std::array<COLORREF, 16> white{};
    white.fill(RGB(255, 255, 255));
    return white;
  }();
  CHOOSECOLORA request = {};
  request.lStructSize = sizeof(request);
  request.hwndOwner = GetAncestor(owner, GA_ROOT);
  request.rgbResult = *color;
  request.lpCustColors = kept.data();
  request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
  if (!ChooseColorA(&request)) return FALSE;
  *color = request.rgbResult;
  return TRUE;
}

}  // namespace

BOOL ChooseFromPalette(HWND owner, const std::string& otherLabel, COLORREF* color) {
  const UINT chosen = Palette(otherLabel, *color, GetWindowDpi(owner)).Track(owner);
  if (chosen == kOtherCommand) return MixColor(owner, color);
  if (chosen == 0 || chosen > kColors.size()) return FALSE;
  *color = kColors[chosen - 1].color;
  return TRUE;
}

std::string DescribeColor(COLORREF color) {
  const std::string numbers = std::to_string(GetRValue(color)) + ", " + std::to_string(GetGValue(color)) +
                              ", " + std::to_string(GetBValue(color));
  const NamedColor* named = FindNamed(color);
  return named != nullptr ? std::string(named->pszName) + " (" + numbers + ")" : numbers;
}
