#include "mfc/list_ctrl.h"

#include <gtest/gtest.h>
// After windows.h.
#include <commctrl.h>

namespace {

class ListCtrl : public testing::Test {
 protected:
  void SetUp() override {
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    ASSERT_TRUE(InitCommonControlsEx(&controls));
    m_list.Attach(CreateWindowExA(0, WC_LISTVIEWA, "", LVS_REPORT, 0, 0, 200, 100, HWND_MESSAGE, nullptr,
                                  GetModuleHandleA(nullptr), nullptr));
    ASSERT_NE(m_list.GetSafeHwnd(), nullptr);
    ASSERT_EQ(m_list.InsertColumn(0, "Folder", 120), 0);
    ASSERT_EQ(m_list.InsertColumn(1, "Date", 80), 1);
  }
  void TearDown() override { DestroyWindow(m_list.Detach()); }

  CListCtrl m_list;
};

TEST_F(ListCtrl, HasColumns) {
  char heading[20] = "";
  LVCOLUMNA column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH;
  column.pszText = heading;
  column.cchTextMax = sizeof heading;
  ASSERT_TRUE(m_list.SendMessage(LVM_GETCOLUMNA, 1, reinterpret_cast<LPARAM>(&column)));
  EXPECT_STREQ(heading, "Date");
  EXPECT_EQ(column.cx, 80);
}

TEST_F(ListCtrl, HasRows) {
  EXPECT_EQ(m_list.GetItemCount(), 0);
  EXPECT_EQ(m_list.InsertItem(0, "tiles"), 0);
  EXPECT_EQ(m_list.InsertItem(1, "caf\xE9"), 1);
  EXPECT_TRUE(m_list.SetItemText(1, 1, "2014/03/07 10:05"));
  EXPECT_EQ(m_list.GetItemCount(), 2);
  EXPECT_EQ(m_list.GetItemText(0, 0), "tiles");
  EXPECT_EQ(m_list.GetItemText(0, 1), "");
  EXPECT_EQ(m_list.GetItemText(1, 0), "caf\xE9");
  EXPECT_EQ(m_list.GetItemText(1, 1), "2014/03/07 10:05");
  EXPECT_EQ(m_list.GetItemText(7, 0), "");
  EXPECT_TRUE(m_list.DeleteAllItems());
  EXPECT_EQ(m_list.GetItemCount(), 0);
}

TEST_F(ListCtrl, KeepsLongNames) {
  const std::string name(259, 'x');
  m_list.InsertItem(0, name);
  EXPECT_EQ(m_list.GetItemText(0, 0), name);
}

TEST_F(ListCtrl, TellsWhereASelectionBegins) {
  EXPECT_EQ(m_list.GetSelectionMark(), -1);
  m_list.InsertItem(0, "a");
  m_list.InsertItem(1, "b");
  m_list.SendMessage(LVM_SETSELECTIONMARK, 0, 1);
  EXPECT_EQ(m_list.GetSelectionMark(), 1);
  m_list.DeleteAllItems();
  EXPECT_EQ(m_list.GetSelectionMark(), -1);
}

}  // namespace
