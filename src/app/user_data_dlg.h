// Asks for the user's contact data.
#ifndef MOSAICON_APP_USER_DATA_DLG_H_
#define MOSAICON_APP_USER_DATA_DLG_H_

#include "app/user_data.h"
#include "mfc/dialog.h"

class CUserDataDlg : public CDialogEx {
 public:
  // Shows data; what the user makes of it is stored in the profile when he closes with OK.
  explicit CUserDataDlg(const UserData& data, CWnd* parent = nullptr);

 protected:
  BOOL OnInitDialog() override;
  void OnOK() override;

 private:
  UserData m_data;
};

// Shows the dialog with what the profile holds; returns what it holds afterwards.
UserData ShowUserDataDialog(CWnd* parent = nullptr);

#endif  // MOSAICON_APP_USER_DATA_DLG_H_
