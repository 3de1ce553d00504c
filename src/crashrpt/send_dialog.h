// The window that offers to send a report: modal, the only one of its process. Win32.
#ifndef MOSAICON_CRASHRPT_SEND_DIALOG_H_
#define MOSAICON_CRASHRPT_SEND_DIALOG_H_

#include <functional>
#include <string>

struct SendOffer {
  std::string applicationName;
  std::string reportFolder;
  std::string contents;          // what the report holds, for the user
  std::string privacyPolicyUrl;  // empty: no link
  // Sends it and returns what went wrong, as a sentence; runs on another thread, and may still be
  // running after the window was closed. Empty: the report can only be kept.
  std::function<std::string()> send;
};

// Returns when the user has closed it. False when it could not be shown.
bool OfferToSend(const SendOffer& offer);

#endif  // MOSAICON_CRASHRPT_SEND_DIALOG_H_
