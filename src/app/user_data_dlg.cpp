#include "app/user_data_dlg.h"

#include "maker.h"
#include "resources/resource.h"

namespace {

struct Field {
  int label;
  const char* text;
  int edit;
  std::string UserData::*value;
};

constexpr Field kFields[] = {
    {IDC_USER_NAME_LABEL, "Name (*)", IDC_USER_NAME, &UserData::name},
    {IDC_USER_SURNAME_LABEL, "Surname (*)", IDC_USER_SURNAME, &UserData::surname},
    {IDC_USER_EMAIL_LABEL, "Email (*)", IDC_USER_EMAIL, &UserData::email},
    {IDC_USER_COMPANY_LABEL, "Company", IDC_USER_COMPANY, &UserData::company},
    {IDC_USER_TELEPHONE_LABEL, "Telephone", IDC_USER_TELEPHONE, &UserData::telephone},
};

}  // namespace

CUserDataDlg::CUserDataDlg(const UserData& data, CWnd* parent)
    : CDialogEx(IDD_USER_DATA, parent), m_data(data) {}

BOOL CUserDataDlg::OnInitDialog() {
  CDialogEx::OnInitDialog();
  SetWindowText(std::string("User Data - ") + kMakerWebAddress);
  SetDlgItemText(
      IDC_USER_EXPLANATION,
      "Please fill this simple form. Those data will be stored in your PC and they will be used to "
      "complete any report you send to Kovel Software.");
  for (const Field& field : kFields) {
    SetDlgItemText(field.label, field.text);
    SendDlgItemMessageA(m_hWnd, field.edit, EM_LIMITTEXT, kUserDataBuffer - 1, 0);
    SetDlgItemText(field.edit, m_data.*field.value);
  }
  SetDlgItemText(IDC_USER_REQUIRED, "(*) required");
  return TRUE;
}

void CUserDataDlg::OnOK() {
  for (const Field& field : kFields) m_data.*field.value = GetDlgItemText(field.edit);
  if (!m_data.IsComplete()) {
    MessageBox("Name, Surname and EMail address are required!", MB_OK | MB_ICONEXCLAMATION);
    return;
  }
  SaveUserData(m_data);
  CDialogEx::OnOK();
}

UserData ShowUserDataDialog(CWnd* parent) {
  const UserData stored = LoadUserData();
  CUserDataDlg dialog(stored, parent);
  return dialog.DoModal() == IDOK ? LoadUserData() : stored;
}
