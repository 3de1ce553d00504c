// The keyboard of a dialog, for every loop that fetches its messages. Win32.
#ifndef MOSAICON_KVTOOLS_DIALOG_MESSAGE_H_
#define MOSAICON_KVTOOLS_DIALOG_MESSAGE_H_

#include <windows.h>

// Does with a message what keys mean in a dialog; true when nothing is left to be done with it. The control
// that the key is for comes first, if it asks for keys by WM_FORWARDMSG, as the host of a browser does: there
// Tab goes from link to link, arrows scroll and Ctrl+C copies.
bool TranslateDialogMessage(HWND dialog, MSG& message);

#endif  // MOSAICON_KVTOOLS_DIALOG_MESSAGE_H_
