// The message boxes of another process: what they say, and an answer to them. Win32.
#ifndef MOSAICON_TESTS_UI_MESSAGE_BOX_H_
#define MOSAICON_TESTS_UI_MESSAGE_BOX_H_

#include <string>
#include <vector>

#include "ui/window_driver.h"

enum class BoxIcon { kNone, kInformation, kWarning, kQuestion, kError, kUnknown };

class MessageBoxWindow {
 public:
  explicit MessageBoxWindow(Window window = Window()) : m_window(window) {}

  explicit operator bool() const { return static_cast<bool>(m_window); }
  const Window& Frame() const { return m_window; }
  // Exactly, with its line breaks.
  std::string Text() const;
  // Found by its pixels: the box must be in front.
  BoxIcon Icon() const;
  // The numbers of its buttons, from left to right.
  std::vector<int> Buttons() const;
  // Presses a button and waits until the box is gone.
  bool Answer(int button) const;

 private:
  Window m_window;
};

// The message box of a program, by its exact caption; the second function waits for one.
MessageBoxWindow FindMessageBox(const Program& program, const std::string& caption = "Mosaicon");
MessageBoxWindow WaitForMessageBox(const Program& program, DWORD patience = kPatience);

#endif  // MOSAICON_TESTS_UI_MESSAGE_BOX_H_
