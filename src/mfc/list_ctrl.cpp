#include "mfc/list_ctrl.h"

// After windows.h.
#include <commctrl.h>

namespace {

constexpr int kTextSize = 1024;

// The system takes texts that it only reads as if it wrote to them.
char* Writable(const std::string& text) {
  return const_cast<char*>(text.c_str());
}

}  // namespace

int CListCtrl::InsertColumn(int column, const std::string& heading, int width) {
  LVCOLUMNA inserted = {};
  inserted.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
  inserted.pszText = Writable(heading);
  inserted.cx = width;
  inserted.iSubItem = column;
  return static_cast<int>(
      SendMessage(LVM_INSERTCOLUMNA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&inserted)));
}

int CListCtrl::InsertItem(int row, const std::string& text) {
  LVITEMA item = {};
  item.mask = LVIF_TEXT;
  item.iItem = row;
  item.pszText = Writable(text);
  return static_cast<int>(SendMessage(LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
}

BOOL CListCtrl::SetItemText(int row, int column, const std::string& text) {
  LVITEMA item = {};
  item.iSubItem = column;
  item.pszText = Writable(text);
  return static_cast<BOOL>(
      SendMessage(LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)));
}

std::string CListCtrl::GetItemText(int row, int column) const {
  char text[kTextSize] = "";
  LVITEMA item = {};
  item.iSubItem = column;
  item.pszText = text;
  item.cchTextMax = kTextSize;
  SendMessage(LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

int CListCtrl::GetItemCount() const {
  return static_cast<int>(SendMessage(LVM_GETITEMCOUNT));
}

BOOL CListCtrl::DeleteAllItems() {
  return static_cast<BOOL>(SendMessage(LVM_DELETEALLITEMS));
}

int CListCtrl::GetSelectionMark() const {
  return static_cast<int>(SendMessage(LVM_GETSELECTIONMARK));
}
