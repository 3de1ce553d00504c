// The framework's application object. A program has one, as a global variable of its own class; the
// framework's WinMain initialises it, and ends when its InitInstance returns FALSE (a dialog program
// has no message loop of its own).
#ifndef MOSAICON_MFC_APP_H_
#define MOSAICON_MFC_APP_H_

#include <windows.h>

#include <memory>
#include <string>

#include "mfc/wnd.h"

// What the shell keeps for a program that browses its name space: COM for the thread.
class CShellManager {
 public:
  CShellManager();
  ~CShellManager();
  CShellManager(const CShellManager&) = delete;
  CShellManager& operator=(const CShellManager&) = delete;

 private:
  bool m_bInitialized;
};

class CWinApp {
 public:
  CWinApp();
  virtual ~CWinApp();
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;

  // Returns FALSE when the program is done.
  virtual BOOL InitInstance() { return TRUE; }
  // The exit code of the process.
  virtual int ExitInstance() { return 0; }

  HINSTANCE m_hInstance = nullptr;
  CWnd* m_pMainWnd = nullptr;  // not owned
  // The program's name: the caption of message boxes.
  std::string m_strAppName;
};

class CWinAppEx : public CWinApp {
 public:
  // The name under which the framework would keep what its windows remember; those that there are here
  // remember nothing by themselves.
  void SetRegistryKey(const std::string& name) { m_strRegistryKey = name; }
  void InitShellManager() { m_pShellManager = std::make_unique<CShellManager>(); }
  void DeleteShellManager() { m_pShellManager.reset(); }

 private:
  std::string m_strRegistryKey;
  std::unique_ptr<CShellManager> m_pShellManager;
};

// The application object; null in a program that has none (tests of single controls).
CWinApp* AfxGetApp();
HINSTANCE AfxGetInstanceHandle();
// The caption of message boxes.
std::string AfxGetAppName();
// Makes windows able to hold ActiveX controls. FALSE when the system cannot.
BOOL AfxEnableControlContainer();

// With the main window, or the window that is in front of it, as the owner.
int AfxMessageBox(const std::string& text, UINT type = MB_OK | MB_ICONEXCLAMATION);

#endif  // MOSAICON_MFC_APP_H_
