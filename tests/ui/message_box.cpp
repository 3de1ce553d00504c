#include "ui/message_box.h"

#include <algorithm>
#include <utility>

#include "ui/screenshot.h"

namespace {

constexpr DWORD kIconPatience = 3000;  // ms

bool IsStatic(const Window& window, bool icon) {
  return window.ClassName() == "Static" && ((window.Style() & SS_TYPEMASK) == SS_ICON) == icon;
}

bool IsButton(const Window& window) {
  return window.ClassName() == "Button" && window.IsVisible();
}

BoxIcon Recognise(const Picture& shown) {
  const std::pair<const char*, BoxIcon> icons[] = {{IDI_INFORMATION, BoxIcon::kInformation},
                                                   {IDI_WARNING, BoxIcon::kWarning},
                                                   {IDI_QUESTION, BoxIcon::kQuestion},
                                                   {IDI_ERROR, BoxIcon::kError}};
  for (const auto& [name, icon] : icons) {
    if (DrawSystemIcon(name) == shown) return icon;
  }
  return BoxIcon::kUnknown;
}

}  // namespace

std::string MessageBoxWindow::Text() const {
  for (const Window& child : m_window.Children()) {
    if (IsStatic(child, false)) return child.Text();
  }
  return "";
}

BoxIcon MessageBoxWindow::Icon() const {
  for (const Window& child : m_window.Children()) {
    if (!IsStatic(child, true) || child.Send(STM_GETICON) == 0) continue;
    BoxIcon icon = BoxIcon::kUnknown;
    // It may not be drawn yet.
    WaitUntil(
        [&] {
          icon = Recognise(TakePicture(child.Place()));
          return icon != BoxIcon::kUnknown;
        },
        kIconPatience);
    return icon;
  }
  return BoxIcon::kNone;
}

std::vector<int> MessageBoxWindow::Buttons() const {
  std::vector<Window> buttons;
  for (const Window& child : m_window.Children()) {
    if (IsButton(child)) buttons.push_back(child);
  }
  std::sort(buttons.begin(), buttons.end(),
            [](const Window& a, const Window& b) { return a.Place().left < b.Place().left; });
  std::vector<int> ids;
  for (const Window& button : buttons) ids.push_back(button.Id());
  return ids;
}

bool MessageBoxWindow::Answer(int button) const {
  const Window item = m_window.Item(button);
  if (!IsButton(item)) return false;
  item.Click();
  return m_window.WaitUntilGone();
}

MessageBoxWindow FindMessageBox(const Program& program, const std::string& caption) {
  for (const Window& window : program.Windows()) {
    if (window.ClassName() == "#32770" && window.Text() == caption) return MessageBoxWindow(window);
  }
  return MessageBoxWindow();
}

MessageBoxWindow WaitForMessageBox(const Program& program, DWORD patience) {
  MessageBoxWindow box;
  WaitUntil(
      [&] {
        box = FindMessageBox(program);
        return static_cast<bool>(box) || !program.IsRunning();
      },
      patience);
  return box;
}
