// Works a dialog while it is modal, as a user would. For tests.
//
// The steps are tried one after the other, from a timer, in whatever message loop is running: a dialog's,
// a menu's, the shell's. A step returns true when it is done, or false when what it waits for is not
// there yet. A step that opens something modal posts a message; sending would not return.
//
// When the steps take too long the test fails and everything that is open is closed, so that it ends.
#ifndef MOSAICON_MFC_TESTING_UI_DRIVER_H_
#define MOSAICON_MFC_TESTING_UI_DRIVER_H_

#include <windows.h>

#include <deque>
#include <functional>
#include <initializer_list>

class UiDriver {
 public:
  using Step = std::function<bool()>;

  explicit UiDriver(std::initializer_list<Step> steps);
  // Expects that all steps are done.
  ~UiDriver();
  UiDriver(const UiDriver&) = delete;
  UiDriver& operator=(const UiDriver&) = delete;

 private:
  static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR timer, DWORD time);
  void Advance();

  std::deque<Step> m_steps;
  const ULONGLONG m_qwDeadline;
  bool m_bWorking = false;
  const UINT_PTR m_nTimer;
};

// Windows need a screen. Fails the test when there is none.
void ExpectScreen();

// The visible dialog of this thread that is in front of owner; null when there is none.
HWND FindDialogInFrontOf(HWND owner);
// The first window of this class below dialog, whatever its depth.
HWND FindBelow(HWND dialog, const char* className);
// The palette or another menu is open.
bool IsMenuOpen();
// A key goes down and up again in window, by way of the message loop.
bool PostKey(HWND window, WPARAM key);
bool PostClick(HWND button);
bool PostCommand(HWND dialog, int id);
// The text of all statics of a message box.
bool MessageBoxSays(HWND box, const char* part);

#endif  // MOSAICON_MFC_TESTING_UI_DRIVER_H_
