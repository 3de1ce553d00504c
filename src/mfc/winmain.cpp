// The entry point of every window program of the framework.
#include <windows.h>

#include <cstdlib>
#include <exception>
#include <string>

#include "handles/dll_folders.h"
#include "mfc/app.h"

namespace {

// For what nobody catches, until the program installs a handler of its own. Not a catch in WinMain: that
// would unwind the stack, which a crash report is to show.
[[noreturn]] void TellAndEnd() {
  std::string text = AfxGetAppName() + " cannot go on";
  try {
    if (std::current_exception() != nullptr) std::rethrow_exception(std::current_exception());
  } catch (const std::exception& exception) {
    text += std::string(": ") + exception.what();
  } catch (...) {
    text += ": unknown error";
  }
  MessageBoxA(nullptr, (text + ".").c_str(), AfxGetAppName().c_str(),
              MB_OK | MB_ICONERROR | MB_SETFOREGROUND);
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*show*/) {
  LoadDllsFromOwnAndSystemFolderOnly();
  std::set_terminate(TellAndEnd);
  CWinApp* app = AfxGetApp();
  app->m_hInstance = instance;
  app->InitInstance();
  return app->ExitInstance();
}
