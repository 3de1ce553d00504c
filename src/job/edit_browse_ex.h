// The field of the orthophoto path: tells its dialog when the user has chosen
// one by browsing.
#ifndef MOSAICON_JOB_EDIT_BROWSE_EX_H_
#define MOSAICON_JOB_EDIT_BROWSE_EX_H_

#include "mfc/edit_browse_ctrl.h"

// The number of the registered message "orthoPath". Its second parameter is the text of the field, a
// const char* that lives as long as the message is handled.
extern const UINT g_nOrthoPathMessage;

class CMFCEditBrowseCtrlEx : public CMFCEditBrowseCtrl {
 public:
  void OnBrowse() override;
};

#endif  // MOSAICON_JOB_EDIT_BROWSE_EX_H_
