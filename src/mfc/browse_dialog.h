// The shell's dialog that chooses one existing file or folder.
//
// User-interface thread, with COM initialised (CShellManager). Messages are dispatched while the dialog
// is open. Text is in the ANSI code page, in and out; what it cannot express is not chosen.
#ifndef MOSAICON_MFC_BROWSE_DIALOG_H_
#define MOSAICON_MFC_BROWSE_DIALOG_H_

#include <windows.h>

#include <string>

enum class BrowseOutcome {
  kChosen,
  kCancelled,
  kNotInCodePage,  // the path has characters that the ANSI code page has not
  kFailed,         // no dialog
};

struct BrowseRequest {
  HWND hOwner = nullptr;
  bool bFolder = false;
  std::string strFolder;            // where to begin; empty: where the system likes
  std::string strFile;              // the name that is offered first; files only
  std::string strDefaultExtension;  // without the dot
  std::string strFilter;            // "Text (*.txt)|*.txt|All (*.*)|*.*||"
};

// path is set when the outcome is kChosen.
BrowseOutcome RunBrowseDialog(const BrowseRequest& request, std::string* path);

#endif  // MOSAICON_MFC_BROWSE_DIALOG_H_
