#include "mfc/testing/ui_driver.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr UINT kInterval = 10;           // ms
constexpr ULONGLONG kPatience = 120000;  // ms

UiDriver* g_pDriver = nullptr;

BOOL CALLBACK CloseEach(HWND window, LPARAM) {
  if (IsWindowVisible(window)) PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
  return TRUE;
}

struct ClassSearch {
  const char* pszName;
  HWND hFound;
};

BOOL CALLBACK CompareClass(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<ClassSearch*>(parameter);
  char name[64] = "";
  GetClassNameA(window, name, sizeof(name));
  if (lstrcmpiA(name, search.pszName) != 0 || !IsWindowVisible(window)) return TRUE;
  search.hFound = window;
  return FALSE;
}

struct TextSearch {
  std::string strPart;
  bool bFound;
};

BOOL CALLBACK CompareText(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<TextSearch*>(parameter);
  char text[1024] = "";
  GetWindowTextA(window, text, sizeof(text));
  search.bFound = search.bFound || std::string(text).find(search.strPart) != std::string::npos;
  return !search.bFound;
}

struct OwnedSearch {
  HWND hOwner;
  HWND hFound;
};

BOOL CALLBACK CompareOwner(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<OwnedSearch*>(parameter);
  char name[64] = "";
  GetClassNameA(window, name, sizeof(name));
  if (GetWindow(window, GW_OWNER) != search.hOwner || !IsWindowVisible(window)) return TRUE;
  if (lstrcmpA(name, "#32770") != 0) return TRUE;
  search.hFound = window;
  return FALSE;
}

}  // namespace

UiDriver::UiDriver(std::initializer_list<Step> steps)
    : m_steps(steps),
      m_qwDeadline(GetTickCount64() + kPatience),
      m_nTimer(SetTimer(nullptr, 0, kInterval, OnTimer)) {
  g_pDriver = this;
  // Where the mouse rests, a menu would open with something chosen.
  SetCursorPos(0, 0);
}

UiDriver::~UiDriver() {
  KillTimer(nullptr, m_nTimer);
  g_pDriver = nullptr;
  EXPECT_EQ(m_steps.size(), 0U) << "steps that were not reached";
}

void CALLBACK UiDriver::OnTimer(HWND, UINT, UINT_PTR, DWORD) {
  if (g_pDriver != nullptr) g_pDriver->Advance();
}

void UiDriver::Advance() {
  // Steps run message loops of their own when they send what they should post.
  if (m_bWorking) return;
  if (GetTickCount64() > m_qwDeadline) {
    ADD_FAILURE() << "waited too long with " << m_steps.size() << " steps to go";
    EndMenu();
    EnumThreadWindows(GetCurrentThreadId(), CloseEach, 0);
    return;
  }
  if (m_steps.empty()) return;
  m_bWorking = true;
  const bool done = m_steps.front()();
  m_bWorking = false;
  if (done) m_steps.pop_front();
}

void ExpectScreen() {
  HWND window = CreateWindowExA(0, "Static", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr) << "There is no screen for windows: under Wine, DISPLAY must name one.";
  DestroyWindow(window);
}

HWND FindDialogInFrontOf(HWND owner) {
  OwnedSearch search = {owner, nullptr};
  EnumThreadWindows(GetCurrentThreadId(), CompareOwner, reinterpret_cast<LPARAM>(&search));
  return search.hFound;
}

HWND FindBelow(HWND dialog, const char* className) {
  ClassSearch search = {className, nullptr};
  EnumChildWindows(dialog, CompareClass, reinterpret_cast<LPARAM>(&search));
  return search.hFound;
}

bool IsMenuOpen() {
  ClassSearch search = {"#32768", nullptr};
  EnumThreadWindows(GetCurrentThreadId(), CompareClass, reinterpret_cast<LPARAM>(&search));
  return search.hFound != nullptr;
}

bool PostKey(HWND window, WPARAM key) {
  return PostMessageA(window, WM_KEYDOWN, key, 1) && PostMessageA(window, WM_KEYUP, key, 0xC0000001);
}

bool PostClick(HWND button) {
  return PostMessageA(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4)) &&
         PostMessageA(button, WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
}

bool PostCommand(HWND dialog, int id) {
  return PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

bool MessageBoxSays(HWND box, const char* part) {
  TextSearch search = {part, false};
  EnumChildWindows(box, CompareText, reinterpret_cast<LPARAM>(&search));
  return search.bFound;
}
