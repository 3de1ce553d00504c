#include "app/crash_properties.h"

namespace {

constexpr size_t kSubjectBuffer = 1024;

// What the numbers of the crash types stand for.
constexpr char kExceptionTypes[] =
    "0 structured exception\n"
    "1 terminate call\n"
    "2 unexpected call\n"
    "3 pure virtual function call\n"
    "4 new-operator fault\n"
    "5 buffer overrun\n"
    "6 invalid parameter\n"
    "7 SIGABRT (abort)\n"
    "8 SIGFPE (floating point exception)\n"
    "9 SIGILL (illegal instruction)\n"
    "10 SIGINT\n"
    "11 SIGSEGV (invalid storage access)\n"
    "12 SIGTERM (termination request).";

std::string Cut(const std::string& text) {
  return text.substr(0, kSystemTextBuffer - 1);
}

}  // namespace

std::vector<CrashProperty> MakeSystemProperties(const SystemTexts& system) {
  std::vector<CrashProperty> properties = {
      {"ExceptionTypeMeaning", kExceptionTypes},
      {"OS_Info", Cut(system.os)},
      {"Screen_Pixel_Depth", Cut(system.pixelDepth)},
      {"Screen_Resolution", Cut(system.resolution)},
      {"RAM_Info", Cut(system.ram)},
  };
  for (size_t i = 0; i < system.graphicAdapters.size(); ++i) {
    properties.emplace_back("Graphic_Adapter_" + std::to_string(i), Cut(system.graphicAdapters[i]));
  }
  return properties;
}

std::vector<CrashProperty> MakeUserProperties(const UserData& user) {
  return {{"User Data - Name", user.name},
          {"User Data - Surname", user.surname},
          {"User Data - email", user.email},
          {"User Data - company", user.company},
          {"User Data - telephone", user.telephone}};
}

std::string MakeReportSubject(const std::string& application, const std::string& version) {
  return (application + " (ver. " + version + ") Error report").substr(0, kSubjectBuffer - 1);
}
