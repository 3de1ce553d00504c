#include "app/crash_reporting.h"

#include "app/crash_properties.h"
#include "crashrpt/crashrpt.h"
#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"
#include "maker.h"

namespace {

constexpr int kMessageBuffer = 512;
constexpr int kPriorityHttp = 3;
constexpr int kPrioritySmtp = 2;
constexpr int kPrioritySimpleMapi = 1;
constexpr int kDesktopPicture = 0;

int OnCrash(void* /*reserved*/) {
  return 1;
}

std::string SystemText(int (*query)(char* buffer, int size)) {
  char buffer[kSystemTextBuffer] = "";
  query(buffer, kSystemTextBuffer);
  return buffer;
}

SystemTexts DescribeSystem() {
  SystemTexts system;
  system.os = SystemText(KVT_GetOSInfo);
  system.pixelDepth = SystemText(KVT_GetPixelDepth);
  system.resolution = SystemText(KVT_GetResolution);
  system.ram = SystemText(KVT_GetRAMInfo);
  KVT_GetDisplayAdaptersList(system.graphicAdapters);
  return system;
}

void AddProperties(const std::vector<CrashProperty>& properties) {
  for (const auto& [name, value] : properties) CrashReportAddProperty(name.c_str(), value.c_str());
}

}  // namespace

bool InstallCrashReporting(const std::string& programPath, const std::string& version, const UserData& user,
                           std::string& message) {
  const std::string name = SplitPath(programPath).name;
  const std::string subject = MakeReportSubject(name, version);
  CrashInstallInfo info = {};
  info.size = sizeof info;
  info.applicationName = name.c_str();
  info.applicationVersion = version.c_str();
  info.emailTo = kSupportEmail;
  info.emailSubject = subject.c_str();
  info.uploadUrl = kMakerWebAddress;
  info.callback = OnCrash;
  info.priorities[CRASH_WAY_HTTP] = kPriorityHttp;
  info.priorities[CRASH_WAY_SMTP] = kPrioritySmtp;
  info.priorities[CRASH_WAY_SIMPLE_MAPI] = kPrioritySimpleMapi;
  info.flags = CRASH_CATCH_ALL | CRASH_UPLOAD_BINARY;
  info.privacyPolicyUrl = kMakerWebAddress;
  if (CrashReportInstall(&info) != 0) {
    char buffer[kMessageBuffer] = "";
    CrashReportGetLastError(buffer, kMessageBuffer);
    message = buffer;
    return false;
  }
  CrashReportAddPicture(kDesktopPicture);
  AddProperties(MakeSystemProperties(DescribeSystem()));
  AddProperties(MakeUserProperties(user));
  return true;
}

void ShowUserDataInReports(const UserData& user) {
  AddProperties(MakeUserProperties(user));
}
