#include "job/explorer_webbrowser.h"

#include <oleauto.h>

#include "files/wide_text.h"
#include "mfc/app.h"
#include "mfc/com_pointer.h"

namespace {

constexpr char kHostClass[] = "AtlAxWin";
constexpr DISPID kNavigate = 104;
constexpr UINT kNavigateArguments = 5;

using GetControlFunction = HRESULT(WINAPI*)(HWND, IUnknown**);

using afx::ComPointer;

BSTR MakeWideText(const std::string& text) {
  return SysAllocString(WideFromAnsi(text).c_str());
}

// The automation interface of the control in a host window; null when there is none.
ComPointer<IDispatch> GetControl(HWND host) {
  const auto getControl = reinterpret_cast<GetControlFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("atl.dll"), "AtlAxGetControl")));
  IUnknown* unknown = nullptr;
  if (getControl == nullptr || FAILED(getControl(host, &unknown)) || unknown == nullptr) return nullptr;
  const ComPointer<IUnknown> owned(unknown);
  IDispatch* control = nullptr;
  if (FAILED(owned->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&control)))) return nullptr;
  return ComPointer<IDispatch>(control);
}

}  // namespace

CExplorer_webbrowser::~CExplorer_webbrowser() {
  if (m_hWnd != nullptr) ::DestroyWindow(m_hWnd);
}

BOOL CExplorer_webbrowser::CreateControl(const char* classId, const RECT& rectangle, CWnd* parent, UINT id) {
  WNDCLASSA hostClass;
  if (!GetClassInfoA(AfxGetInstanceHandle(), kHostClass, &hostClass)) return FALSE;
  const HWND window =
      CreateWindowExA(0, kHostClass, classId, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_TABSTOP,
                      rectangle.left, rectangle.top, rectangle.right - rectangle.left,
                      rectangle.bottom - rectangle.top, parent->GetSafeHwnd(),
                      reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), AfxGetInstanceHandle(), nullptr);
  if (window == nullptr) return FALSE;
  if (GetControl(window) && SubclassWindow(window)) return TRUE;
  ::DestroyWindow(window);
  return FALSE;
}

bool CExplorer_webbrowser::Navigate(const std::string& url) {
  const ComPointer<IDispatch> control = m_hWnd != nullptr ? GetControl(m_hWnd) : nullptr;
  return control && NavigateControl(*control, url);
}

bool NavigateControl(IDispatch& control, const std::string& url) {
  // From the last to the first; the four optional ones are empty.
  VARIANT arguments[kNavigateArguments];
  for (VARIANT& argument : arguments) VariantInit(&argument);
  arguments[kNavigateArguments - 1].vt = VT_BSTR;
  arguments[kNavigateArguments - 1].bstrVal = MakeWideText(url);
  DISPPARAMS parameters = {arguments, nullptr, kNavigateArguments, 0};
  const HRESULT result = control.Invoke(kNavigate, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                        &parameters, nullptr, nullptr, nullptr);
  VariantClear(&arguments[kNavigateArguments - 1]);
  return SUCCEEDED(result);
}
