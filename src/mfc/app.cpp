#include "mfc/app.h"

#include <objbase.h>

namespace {

CWinApp* g_pApp = nullptr;

using InitializeHost = BOOL(WINAPI*)();

}  // namespace

CShellManager::CShellManager()
    : m_bInitialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}

CShellManager::~CShellManager() {
  if (m_bInitialized) CoUninitialize();
}

CWinApp::CWinApp() : m_hInstance(GetModuleHandleA(nullptr)) {
  g_pApp = this;
}

CWinApp::~CWinApp() {
  g_pApp = nullptr;
}

CWinApp* AfxGetApp() {
  return g_pApp;
}

HINSTANCE AfxGetInstanceHandle() {
  return g_pApp != nullptr ? g_pApp->m_hInstance : GetModuleHandleA(nullptr);
}

std::string AfxGetAppName() {
  return g_pApp != nullptr ? g_pApp->m_strAppName : std::string();
}

BOOL AfxEnableControlContainer() {
  // Loaded by hand, and never unloaded: a program without a browser does not need it.
  HMODULE library = LoadLibraryExA("atl.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return FALSE;
  const auto initialize =
      reinterpret_cast<InitializeHost>(reinterpret_cast<void*>(GetProcAddress(library, "AtlAxWinInit")));
  return initialize != nullptr && initialize();
}

int AfxMessageBox(const std::string& text, UINT type) {
  HWND owner =
      g_pApp != nullptr && g_pApp->m_pMainWnd != nullptr ? g_pApp->m_pMainWnd->GetSafeHwnd() : nullptr;
  if (owner != nullptr) owner = GetLastActivePopup(owner);
  const int answer = ::MessageBoxA(owner, text.c_str(), AfxGetAppName().c_str(), type);
  return answer > 0 ? answer : 0;
}
