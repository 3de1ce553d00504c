// Test program: an application that throws while it starts.
#include <stdexcept>

#include "mfc/app.h"

namespace {

class ThrowingApp : public CWinAppEx {
 public:
  ThrowingApp() { m_strAppName = "Throwing"; }
  BOOL InitInstance() override { throw std::runtime_error("no reason"); }
};
ThrowingApp theApp;

}  // namespace
