// The entry point of every window program of the framework.
#include <windows.h>

#include "mfc/app.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*show*/) {
  CWinApp* app = AfxGetApp();
  app->m_hInstance = instance;
  app->InitInstance();
  return app->ExitInstance();
}
