#include "crashrpt/hand_over.h"

#include <algorithm>
#include <cstring>

#include "crashrpt/crashrpt.h"
#include "crashrpt/upload_url.h"

namespace {

template <size_t kSize>
bool Copy(const char* text, const char* what, char (&target)[kSize], std::string& error) {
  if (text == nullptr) return true;
  const size_t length = std::strlen(text);
  if (length >= kSize) {
    error = std::string("The ") + what + " is longer than " + std::to_string(kSize - 1) + " characters.";
    return false;
  }
  std::memcpy(target, text, length + 1);
  return true;
}

template <size_t kSize>
bool Ends(const char (&text)[kSize]) {
  return std::memchr(text, '\0', kSize) != nullptr;
}

bool IsEmpty(const char* text) {
  return text == nullptr || *text == '\0';
}

bool MayUseHttp(const int32_t (&priorities)[5]) {
  const bool anyWay = std::any_of(std::begin(priorities), std::end(priorities),
                                  [](int32_t priority) { return priority > 0; });
  return !anyWay || priorities[CRASH_WAY_HTTP] > 0;
}

bool MayUpload(const CrashInstallInfo& info) {
  return !IsEmpty(info.uploadUrl) && MayUseHttp(info.priorities) && IsSafeUploadUrl(info.uploadUrl);
}

}  // namespace

bool FillHandOver(const CrashInstallInfo& info, const std::string& programName, HandOver& handOver,
                  std::string& error) {
  const std::string name = IsEmpty(info.applicationName) ? programName : info.applicationName;
  if (!Copy(name.c_str(), "application name", handOver.applicationName, error) ||
      !Copy(info.applicationVersion, "application version", handOver.applicationVersion, error)) {
    return false;
  }
  std::string subject = name + " " + handOver.applicationVersion;
  if (subject.back() == ' ') subject.pop_back();
  subject += " crash report";
  if (!IsEmpty(info.emailSubject)) subject = info.emailSubject;
  if (!Copy(info.emailTo, "e-mail recipient", handOver.emailTo, error) ||
      !Copy(subject.c_str(), "e-mail subject", handOver.emailSubject, error) ||
      !Copy(info.emailText, "e-mail text", handOver.emailText, error) ||
      !Copy(MayUpload(info) ? info.uploadUrl : nullptr, "upload URL", handOver.uploadUrl, error) ||
      !Copy(info.privacyPolicyUrl, "privacy policy URL", handOver.privacyPolicyUrl, error) ||
      !Copy(info.debugHelpDll, "path of the debug help DLL", handOver.debugHelpDll, error) ||
      !Copy(info.reportFolder, "path of the report folder", handOver.reportFolder, error)) {
    return false;
  }
  handOver.dumpType = info.dumpType;
  handOver.signature = kHandOverSignature;
  handOver.size = sizeof handOver;
  return true;
}

bool IsSound(const HandOver& handOver, uint64_t size) {
  return size >= sizeof handOver && handOver.signature == kHandOverSignature &&
         handOver.size == sizeof handOver && Ends(handOver.applicationName) &&
         Ends(handOver.applicationVersion) && Ends(handOver.emailTo) && Ends(handOver.emailSubject) &&
         Ends(handOver.emailText) && Ends(handOver.uploadUrl) && Ends(handOver.privacyPolicyUrl) &&
         Ends(handOver.debugHelpDll) && Ends(handOver.reportFolder);
}
