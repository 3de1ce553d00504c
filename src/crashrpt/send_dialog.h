// The window that offers to send a report: modal, the only one of its process. Win32.
#ifndef MOSAICON_CRASHRPT_SEND_DIALOG_H_
#define MOSAICON_CRASHRPT_SEND_DIALOG_H_

#include <functional>
#include <string>

struct SendOffer {
  std::string applicationName;
  std::string reportFolder;      // with the files of report_name.h
  std::string contents;          // what is sent but the picture, for the user
  bool hasPicture = false;       // the user decides about it apart
  std::string privacyPolicyUrl;  // empty: no link
  // Sends it, with or without the picture, and returns what came of it, as sentences; runs on another
  // thread, and may still be running after the window was closed. Empty: the report can only be kept.
  std::function<std::string(bool withPicture)> send;
};

// Returns when the user has closed it. False when it could not be shown.
bool OfferToSend(const SendOffer& offer);

#endif  // MOSAICON_CRASHRPT_SEND_DIALOG_H_
