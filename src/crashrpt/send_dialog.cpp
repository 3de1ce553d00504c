#include "crashrpt/send_dialog.h"

#include <windows.h>
// These need the one above.
#include <commctrl.h>
#include <shellapi.h>

#include <memory>
#include <thread>

#include "crashrpt/crashsender_resource.h"
#include "crashrpt/report_name.h"

namespace {

// What ShellExecute returns up to this number is an error.
constexpr INT_PTR kShellFailures = 32;
constexpr UINT kSent = WM_APP + 1;  // lParam: the std::string that send returned

class SendDialog {
 public:
  explicit SendDialog(const SendOffer& offer) : m_offer(offer) {}

  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrA(window, DWLP_USER, lParam);
      reinterpret_cast<SendDialog*>(lParam)->Initialize(window);
      return FALSE;  // the focus is set
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
                "cause; nothing is sent unless you say so. It holds:");
    SetText(IDC_CONTENTS, m_offer.contents);
    SetText(IDC_REPORT_PATH, m_offer.reportFolder);
    if (m_offer.privacyPolicyUrl.empty()) ShowWindow(Item(IDC_PRIVACY_POLICY), SW_HIDE);
    for (const int control : {IDC_WITH_PICTURE, IDC_SHOW_PICTURE}) {
      ShowWindow(Item(control), m_offer.hasPicture ? SW_SHOW : SW_HIDE);
    }
    // Not on what sends: a Return that was typed for another window may arrive here.
    SetFocus(Item(IDC_DO_NOT_SEND));
    if (!m_offer.send) ShowOnlyClose("The report can not be sent from here, but it is kept.");
    SetForegroundWindow(window);
  }

  bool Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) return HandleCommand(LOWORD(wParam));
    if (message == WM_NOTIFY) return HandleLink(*reinterpret_cast<NMHDR*>(lParam));
    if (message != kSent) return false;
    const std::unique_ptr<std::string> result(reinterpret_cast<std::string*>(lParam));
    ShowOnlyClose(*result);
    return true;
  }

  bool HandleCommand(int control) {
    switch (control) {
      case IDC_SEND:
        Send();
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
    switch (notification.idFrom) {
      case IDC_SHOW_REPORT:
        ShowReport();
        return true;
      case IDC_SHOW_PICTURE:
        Open(m_offer.reportFolder + "\\" + kReportPicture);
        return true;
      case IDC_OPEN_FOLDER:  // the one around it: an open folder could not be moved
        Open(m_offer.reportFolder.substr(0, m_offer.reportFolder.rfind('\\')));
        return true;
      case IDC_PRIVACY_POLICY:
        Open(m_offer.privacyPolicyUrl);
        return true;
      default:
        return false;
    }
  }

  void Send() {
    const bool withPicture = IsDlgButtonChecked(m_hWindow, IDC_WITH_PICTURE) == BST_CHECKED;
    SetFocus(Item(IDC_REPORT_PATH));
    for (const int control : {IDC_SEND, IDC_DO_NOT_SEND, IDC_WITH_PICTURE})
      EnableWindow(Item(control), FALSE);
    for (const int control : {IDC_SHOW_REPORT, IDC_SHOW_PICTURE}) ShowWindow(Item(control), SW_HIDE);
    SetText(IDC_RESULT, "Sending the report...");
    std::thread([window = m_hWindow, send = m_offer.send, withPicture] {
      auto result = std::make_unique<std::string>(send(withPicture));
      // The window may be gone; the process ends then anyway. Otherwise the window owns the text now.
      if (PostMessageA(window, kSent, 0, reinterpret_cast<LPARAM>(result.get())))
        static_cast<void>(result.release());
    }).detach();
  }

  void ShowOnlyClose(const std::string& result) {
    SetText(IDC_RESULT, result);
    for (const int control : {IDC_SEND, IDC_WITH_PICTURE}) {
      EnableWindow(Item(control), FALSE);
      ShowWindow(Item(control), SW_HIDE);
    }
    SetText(IDC_DO_NOT_SEND, "&Close");
    EnableWindow(Item(IDC_DO_NOT_SEND), TRUE);
    SendMessageA(m_hWindow, DM_SETDEFID, IDC_DO_NOT_SEND, 0);
    SetFocus(Item(IDC_DO_NOT_SEND));
  }

  HWND Item(int control) const { return GetDlgItem(m_hWindow, control); }
  void SetText(int control, const std::string& text) const { SetWindowTextA(Item(control), text.c_str()); }
  bool Open(const std::string& what, const char* argument = nullptr) const {
    const HINSTANCE result =
        ShellExecuteA(m_hWindow, nullptr, what.c_str(), argument, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > kShellFailures;
  }
  void ShowReport() const {
    const std::string path = m_offer.reportFolder + "\\" + kReportXml;
    if (!Open(path)) Open("notepad.exe", ("\"" + path + "\"").c_str());
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
