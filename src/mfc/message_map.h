// Message maps: which member function handles which message. Each class that handles messages says
// DECLARE_MESSAGE_MAP() in its declaration and lists its handlers between BEGIN_MESSAGE_MAP and
// END_MESSAGE_MAP in its source; what a class does not handle goes to its base class.
//
// A handler of a message that the system may want as well ends with Default().
#ifndef MOSAICON_MFC_MESSAGE_MAP_H_
#define MOSAICON_MFC_MESSAGE_MAP_H_

#include <windows.h>
// After windows.h.
#include <shellapi.h>

class CWnd;

struct AFX_MSGMAP_ENTRY {
  UINT nMessage;            // 0 for a registered message, and in the last entry
  UINT nCode;               // of WM_COMMAND: the notification code
  UINT nID;                 // of WM_COMMAND: the control or the command
  const UINT* pRegistered;  // of a registered message: where its number is
  LRESULT (*pCall)(CWnd& window, WPARAM wParam, LPARAM lParam);
};

struct AFX_MSGMAP {
  const AFX_MSGMAP* (*pfnGetBaseMap)();  // null in CWnd's own
  const AFX_MSGMAP_ENTRY* lpEntries;
};

// How each kind of handler is called. ThisClass is the class whose map the entry stands in.
namespace afx {

template <class ThisClass, auto Handler>
LRESULT CallCommand(CWnd& window, WPARAM, LPARAM) {
  (static_cast<ThisClass&>(window).*Handler)();
  return 0;
}

template <class ThisClass, auto Handler>
LRESULT CallMessage(CWnd& window, WPARAM wParam, LPARAM lParam) {
  return (static_cast<ThisClass&>(window).*Handler)(wParam, lParam);
}

template <class ThisClass, auto Handler>
LRESULT CallNoArguments(CWnd& window, WPARAM, LPARAM) {
  (static_cast<ThisClass&>(window).*Handler)();
  return 0;
}

template <class ThisClass, auto Handler>
LRESULT CallSysCommand(CWnd& window, WPARAM wParam, LPARAM lParam) {
  (static_cast<ThisClass&>(window).*Handler)(static_cast<UINT>(wParam), lParam);
  return 0;
}

template <class ThisClass, auto Handler>
LRESULT CallTimer(CWnd& window, WPARAM wParam, LPARAM) {
  (static_cast<ThisClass&>(window).*Handler)(static_cast<UINT_PTR>(wParam));
  return 0;
}

template <class ThisClass, auto Handler>
LRESULT CallEraseBkgnd(CWnd& window, WPARAM wParam, LPARAM) {
  return (static_cast<ThisClass&>(window).*Handler)(reinterpret_cast<HDC>(wParam));
}

template <class ThisClass, auto Handler>
LRESULT CallDropFiles(CWnd& window, WPARAM wParam, LPARAM) {
  (static_cast<ThisClass&>(window).*Handler)(reinterpret_cast<HDROP>(wParam));
  return 0;
}

}  // namespace afx

#define DECLARE_MESSAGE_MAP()                   \
 protected:                                     \
  static const AFX_MSGMAP* GetThisMessageMap(); \
  const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)        \
  const AFX_MSGMAP* theClass::GetMessageMap() const { \
    return GetThisMessageMap();                       \
  }                                                   \
  const AFX_MSGMAP* theClass::GetThisMessageMap() {   \
    using ThisClass = theClass;                       \
    using TheBaseClass = baseClass;                   \
    static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                                             \
  { 0, 0, 0, nullptr, nullptr }                                                                       \
  }                                                                                                   \
  ;                                                                                                   \
  static const AFX_MSGMAP messageMap = {[]() { return TheBaseClass::GetThisMessageMap(); }, entries}; \
  return &messageMap;                                                                                 \
  }

// void OnCommand(): a menu entry, or a button with the code BN_CLICKED.
#define ON_COMMAND(id, memberFxn) \
  {WM_COMMAND, 0, static_cast<UINT>(id), nullptr, &afx::CallCommand<ThisClass, &memberFxn>},
// void OnNotification(): any other notification of a control.
#define ON_CONTROL(code, id, memberFxn) \
  {WM_COMMAND, (code), static_cast<UINT>(id), nullptr, &afx::CallCommand<ThisClass, &memberFxn>},
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_EN_KILLFOCUS(id, memberFxn) ON_CONTROL(EN_KILLFOCUS, id, memberFxn)
// LRESULT OnMessage(WPARAM, LPARAM)
#define ON_MESSAGE(message, memberFxn) {(message), 0, 0, nullptr, &afx::CallMessage<ThisClass, &memberFxn>},
// The same; the first argument is the variable with the number that RegisterWindowMessage gave.
#define ON_REGISTERED_MESSAGE(variable, memberFxn) \
  {0, 0, 0, &(variable), &afx::CallMessage<ThisClass, &memberFxn>},
// The framework's handlers of single messages.
#define ON_WM_CLOSE() {WM_CLOSE, 0, 0, nullptr, &afx::CallNoArguments<ThisClass, &ThisClass::OnClose>},
#define ON_WM_DESTROY() {WM_DESTROY, 0, 0, nullptr, &afx::CallNoArguments<ThisClass, &ThisClass::OnDestroy>},
#define ON_WM_PAINT() {WM_PAINT, 0, 0, nullptr, &afx::CallNoArguments<ThisClass, &ThisClass::OnPaint>},
#define ON_WM_ERASEBKGND() \
  {WM_ERASEBKGND, 0, 0, nullptr, &afx::CallEraseBkgnd<ThisClass, &ThisClass::OnEraseBkgnd>},
#define ON_WM_SYSCOMMAND() \
  {WM_SYSCOMMAND, 0, 0, nullptr, &afx::CallSysCommand<ThisClass, &ThisClass::OnSysCommand>},
#define ON_WM_TIMER() {WM_TIMER, 0, 0, nullptr, &afx::CallTimer<ThisClass, &ThisClass::OnTimer>},
#define ON_WM_DROPFILES() \
  {WM_DROPFILES, 0, 0, nullptr, &afx::CallDropFiles<ThisClass, &ThisClass::OnDropFiles>},

#endif  // MOSAICON_MFC_MESSAGE_MAP_H_
