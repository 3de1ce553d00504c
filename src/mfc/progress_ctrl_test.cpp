#include "mfc/progress_ctrl.h"

#include <gtest/gtest.h>
// After windows.h.
#include <commctrl.h>

namespace {

class ProgressCtrl : public testing::Test {
 protected:
  void SetUp() override {
    InitCommonControls();
    m_control.Attach(CreateWindowExA(0, PROGRESS_CLASSA, "", 0, 0, 0, 100, 20, HWND_MESSAGE, nullptr,
                                     GetModuleHandleA(nullptr), nullptr));
    ASSERT_NE(m_control.GetSafeHwnd(), nullptr);
  }
  void TearDown() override { DestroyWindow(m_control.Detach()); }

  CProgressCtrl m_control;
};

TEST_F(ProgressCtrl, HasARange) {
  int lower = -1;
  int upper = -1;
  m_control.GetRange(lower, upper);
  EXPECT_EQ(lower, 0);
  EXPECT_EQ(upper, 100);
  m_control.SetRange(20, 32767);
  m_control.GetRange(lower, upper);
  EXPECT_EQ(lower, 20);
  EXPECT_EQ(upper, 32767);
}

TEST_F(ProgressCtrl, HasALargeRange) {
  m_control.SetRange32(-5, 1000000);
  int lower = 0;
  int upper = 0;
  m_control.GetRange(lower, upper);
  EXPECT_EQ(lower, -5);
  EXPECT_EQ(upper, 1000000);
}

TEST_F(ProgressCtrl, TellsItsPositionBefore) {
  EXPECT_EQ(m_control.SetPos(30), 0);
  EXPECT_EQ(m_control.SetPos(70), 30);
  EXPECT_EQ(m_control.GetPos(), 70);
}

TEST_F(ProgressCtrl, StaysInItsRange) {
  m_control.SetRange(10, 20);
  m_control.SetPos(25);
  EXPECT_EQ(m_control.GetPos(), 20);
  m_control.SetPos(-5);
  EXPECT_EQ(m_control.GetPos(), 10);
}

}  // namespace
