// The main dialog at work on this thread, with steps that are tried in its message loop. For tests.
#ifndef MOSAICON_JOB_TESTING_FORM_FIXTURE_H_
#define MOSAICON_JOB_TESTING_FORM_FIXTURE_H_

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "job/testing/dialog_fixture.h"
#include "kvtools/kvtools.h"
#include "mfc/testing/ui_driver.h"

// Without the marks of access keys.
inline std::string TextOf(HWND window) {
  char buffer[512] = "";
  GetWindowTextA(window, buffer, sizeof buffer);
  std::string text = buffer;
  text.erase(std::remove(text.begin(), text.end(), '&'), text.end());
  return text;
}

class FormTest : public DialogTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(ExpectScreen());
    ASSERT_NO_FATAL_FAILURE(DialogTest::SetUp());
  }

  // Opens the dialog for what the steps do to it, and closes it.
  void Work(std::initializer_list<UiDriver::Step> steps, const std::string& inputList = "") {
    CMosaiconDlg dialog(inputList, ProgramPath(), m_opener);
    m_pDialog = &dialog;
    std::vector<UiDriver::Step> all(steps);
    all.emplace_back([this] { return PostMessageA(Main(), WM_CLOSE, 0, 0) != FALSE; });
    size_t next = 0;
    UiDriver driver({[&] {
      if (all[next]()) ++next;
      return next == all.size();
    }});
    dialog.DoModal();
  }
  HWND Main() const { return m_pDialog->GetSafeHwnd(); }
  HWND Item(int id) const { return GetDlgItem(Main(), id); }
  std::string Text(int id) const { return TextOf(Item(id)); }
  void Press(int id) const { SendMessageA(Item(id), BM_CLICK, 0, 0); }
  UiDriver::Step Posting(int id) const {
    return [this, id] { return PostCommand(Main(), id); };
  }
  // Waits for a message box that says this, and closes it.
  UiDriver::Step ReadingBox(const char* text) const {
    return [this, text] {
      const HWND box = FindDialogInFrontOf(Main());
      return box != nullptr && MessageBoxSays(box, text) && PostCommand(box, IDOK);
    };
  }
  UiDriver::Step WaitingUntilFree() const {
    return [this] { return FindDialogInFrontOf(Main()) == nullptr && IsWindowEnabled(Main()); };
  }
  static std::string Stored(const char* key) {
    char value[64] = "";
    KVT_GetUserProfileString("Input", key, "(none)", value, sizeof value);
    return value;
  }

  CMosaiconDlg* m_pDialog = nullptr;
};

#endif  // MOSAICON_JOB_TESTING_FORM_FIXTURE_H_
