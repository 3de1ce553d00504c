// The framework's object for the common controls' list view, for lists of rows and columns. Texts are in
// the ANSI code page; indices count from 0. User-interface thread.
#ifndef MOSAICON_MFC_LIST_CTRL_H_
#define MOSAICON_MFC_LIST_CTRL_H_

#include "mfc/wnd.h"

class CListCtrl : public CWnd {
 public:
  // width in pixels. Both return the index of what was inserted, -1 on failure.
  int InsertColumn(int column, const std::string& heading, int width);
  int InsertItem(int row, const std::string& text);
  BOOL SetItemText(int row, int column, const std::string& text);
  // At most 1023 characters of it.
  std::string GetItemText(int row, int column) const;
  int GetItemCount() const;
  BOOL DeleteAllItems();
  // The row where a selection of several begins; -1 when there is none.
  int GetSelectionMark() const;
};

#endif  // MOSAICON_MFC_LIST_CTRL_H_
