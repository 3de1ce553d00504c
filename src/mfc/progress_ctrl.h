// The framework's object for the common controls' progress bar. User-interface thread, except that
// SetPos may be called by others while the window lives: it is a message, and waits for its answer.
#ifndef MOSAICON_MFC_PROGRESS_CTRL_H_
#define MOSAICON_MFC_PROGRESS_CTRL_H_

#include "mfc/wnd.h"

class CProgressCtrl : public CWnd {
 public:
  void SetRange(short lower, short upper);
  void SetRange32(int lower, int upper);
  void GetRange(int& lower, int& upper) const;
  // Returns the position before. What lies outside the range is moved to its nearer end.
  int SetPos(int position);
  int GetPos() const;
};

#endif  // MOSAICON_MFC_PROGRESS_CTRL_H_
