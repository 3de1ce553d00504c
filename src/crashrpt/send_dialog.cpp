#include "crashrpt/send_dialog.h"

#include <windows.h>
// These need the one above.
#include <commctrl.h>
#include <shellapi.h>

#include <memory>
#include <thread>

#include "crashrpt/crashsender_resource.h"

namespace {

constexpr UINT kSent = WM_APP + 1;  // lParam: the std::string that send returned

class SendDialog {
 public:
  explicit SendDialog(const SendOffer& offer) : m_offer(offer) {}

  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrA(window, DWLP_USER, lParam);
      reinterpret_cast<SendDialog*>(lParam)->Initialize(window);
      return TRUE;
    }
    auto* const self = reinterpret_cast<SendDialog*>(GetWindowLongPtrA(window, DWLP_USER));
    return self != nullptr && self->Handle(message, wParam, lParam) ? TRUE : FALSE;
  }

 private:
  void Initialize(HWND window) {
    m_hWindow = window;
    SetWindowTextA(window, (m_offer.applicationName + " crash report").c_str());
    SetText(IDC_WHAT_HAPPENED,
            m_offer.applicationName +
                " had a problem and was closed. We are sorry. A report was written that helps to find the "
                "cause; nothing is sent unless you say so.");
    SetText(IDC_CONTENTS, m_offer.contents);
    SetText(IDC_REPORT_PATH, m_offer.reportFolder);
    if (m_offer.privacyPolicyUrl.empty()) ShowWindow(Item(IDC_PRIVACY_POLICY), SW_HIDE);
    if (!m_offer.send) ShowOnlyClose("The report can not be sent from here, but it is kept.");
    SetForegroundWindow(window);
  }

  bool Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) return HandleCommand(LOWORD(wParam));
    if (message == WM_NOTIFY) return HandleLink(*reinterpret_cast<NMHDR*>(lParam));
    if (message != kSent) return false;
    const std::unique_ptr<std::string> error(reinterpret_cast<std::string*>(lParam));
    ShowOnlyClose(error->empty() ? "The report was sent. Thank you."
                                 : *error + " The report is kept, and sending it is tried again when " +
                                       m_offer.applicationName + " starts the next time.");
    return true;
  }

  bool HandleCommand(int control) {
    switch (control) {
      case IDOK:  // Return, wherever the focus is
      case IDC_SEND:
        if (control == IDC_SEND || IsWindowEnabled(Item(IDC_SEND))) Send();
        return true;
      case IDCANCEL:  // Esc and the close box, also while sending: what was agreed stays agreed
      case IDC_DO_NOT_SEND:
        EndDialog(m_hWindow, 0);
        return true;
      default:
        return false;
    }
  }

  bool HandleLink(const NMHDR& notification) const {
    if (notification.code != NM_CLICK && notification.code != NM_RETURN) return false;
    if (notification.idFrom == IDC_OPEN_FOLDER)
      Open(m_offer.reportFolder.substr(0, m_offer.reportFolder.rfind('\\')));
    if (notification.idFrom == IDC_PRIVACY_POLICY) Open(m_offer.privacyPolicyUrl);
    return true;
  }

  void Send() {
    EnableWindow(Item(IDC_SEND), FALSE);
    EnableWindow(Item(IDC_DO_NOT_SEND), FALSE);
    SetText(IDC_RESULT, "Sending the report...");
    std::thread([window = m_hWindow, send = m_offer.send] {
      auto error = std::make_unique<std::string>(send());
      // The window may be gone; the process ends then anyway.
      if (PostMessageA(window, kSent, 0, reinterpret_cast<LPARAM>(error.get()))) error.release();
    }).detach();
  }

  void ShowOnlyClose(const std::string& result) {
    SetText(IDC_RESULT, result);
    EnableWindow(Item(IDC_SEND), FALSE);
    ShowWindow(Item(IDC_SEND), SW_HIDE);
    SetText(IDC_DO_NOT_SEND, "&Close");
    EnableWindow(Item(IDC_DO_NOT_SEND), TRUE);
    SendMessageA(m_hWindow, DM_SETDEFID, IDC_DO_NOT_SEND, 0);
    SetFocus(Item(IDC_DO_NOT_SEND));
  }

  HWND Item(int control) const { return GetDlgItem(m_hWindow, control); }
  void SetText(int control, const std::string& text) const { SetWindowTextA(Item(control), text.c_str()); }
  void Open(const std::string& what) const {
    ShellExecuteA(m_hWindow, nullptr, what.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  }

  const SendOffer& m_offer;
  HWND m_hWindow = nullptr;
};

}  // namespace

bool OfferToSend(const SendOffer& offer) {
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_STANDARD_CLASSES | ICC_LINK_CLASS};
  InitCommonControlsEx(&controls);
  SendDialog dialog(offer);
  return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_SEND_REPORT), nullptr,
                         SendDialog::Procedure, reinterpret_cast<LPARAM>(&dialog)) == 0;
}
