// crashsender.exe: waits beside a program for its crash, writes the report and offers to send it; or
// delivers what could not be delivered before. Ends with a program that ends well. Started by crashrpt.dll
// only:
//   crashsender --wait MAPPING CRASHED TAKEN PROCESS   handles that it inherits, as decimal numbers
//   crashsender --retry MAPPING
// With the environment variable CRASHREPORT_QUIET set (to anything but 0) no window is shown and the
// report is kept: for machines that nobody watches. Exit codes: 0 done, 1 the report could not be
// written, 2 not started as above.

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "crashrpt/consent_text.h"
#include "crashrpt/crashrpt.h"
#include "crashrpt/delivery.h"
#include "crashrpt/hand_over.h"
#include "crashrpt/report_name.h"
#include "crashrpt/report_store.h"
#include "crashrpt/report_writer.h"
#include "crashrpt/send_dialog.h"
#include "files/system_files.h"
#include "handles/dll_folders.h"
#include "handles/mapped_view.h"
#include "handles/unique_handle.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotWritten = 1;
constexpr int kWrongArguments = 2;
// After this long a retry gives up until the next start of the program.
constexpr DWORD kRetryBound = 5 * 60 * 1000;
// When the user logs off: after all programs, so that a crash while they end is reported as well.
constexpr DWORD kShutDownLate = 0x100;

UniqueHandle InheritedHandle(const char* number) {
  return UniqueHandle(reinterpret_cast<HANDLE>(std::strtoull(number, nullptr, 10)));
}

using View = MappedView<const HandOver>;

// Null when the handle is not what it should be.
View OpenHandOver(HANDLE mapping) {
  View view(static_cast<const HandOver*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, sizeof(HandOver))));
  return view != nullptr && IsSound(*view, sizeof(HandOver)) ? std::move(view) : nullptr;
}

bool IsQuiet() {
  const char* const value = std::getenv("CRASHREPORT_QUIET");
  return value != nullptr && *value != '\0' && std::string(value) != "0";
}

bool Has(const WrittenReport& report, const char* file) {
  return std::find(report.files.begin(), report.files.end(), file) != report.files.end();
}

// Returns what came of it, as sentences for the user.
std::string Send(const std::string& application, const ReportStore& store, const std::string& name,
                 bool withPicture, const std::string& url) {
  const std::string error = DeliverAgreed(store, name, withPicture, url);
  if (error.empty()) return "The report was sent. Thank you.";
  if (!SystemFiles().Exists(store.PendingPath(name))) return error + " The report is kept.";
  return error + " The report is kept, and sending it is tried again when " + application +
         " starts the next time.";
}

void Offer(const HandOver& handOver, const ReportStore& store, const WrittenReport& report) {
  SendOffer offer;
  offer.applicationName = handOver.applicationName;
  offer.reportFolder = store.Path(report.name);
  offer.contents = DescribeContents(GetProperties(handOver.properties), Has(report, kReportDump));
  offer.hasPicture = Has(report, kReportPicture);
  offer.privacyPolicyUrl = handOver.privacyPolicyUrl;
  const std::string url = handOver.uploadUrl;
  if (!url.empty()) {
    // With copies: it may outlive this function.
    offer.send = [application = offer.applicationName, store, name = report.name, url](bool withPicture) {
      return Send(application, store, name, withPicture, url);
    };
  }
  OfferToSend(offer);  // when it cannot be shown, the report is simply kept
}

int Report(const HandOver& handOver, HANDLE reportTaken, HANDLE program) {
  const ReportStore store(handOver.reportFolder);
  const WrittenReport report = WriteReport(handOver, program, store);
  const bool quiet = IsQuiet();
  if (report.name.empty()) {
    TerminateProcess(program, CRASH_EXIT_UNREPORTED);  // it waits for a report
    if (!quiet) {
      MessageBoxA(nullptr, ("The crash report could not be written. " + report.error).c_str(),
                  handOver.applicationName, MB_OK | MB_ICONWARNING | MB_SETFOREGROUND);
    }
    return kNotWritten;
  }
  SetEvent(reportTaken);
  store.KeepNewest(kKeptReports);
  if (!quiet) Offer(handOver, store, report);
  return kDone;
}

int WaitAndReport(HANDLE mapping, HANDLE crashed, HANDLE reportTaken, HANDLE program) {
  SetProcessShutdownParameters(kShutDownLate, 0);
  const HANDLE either[] = {crashed, program};
  if (WaitForMultipleObjects(2, either, FALSE, INFINITE) != WAIT_OBJECT_0) return kDone;
  const View handOver = OpenHandOver(mapping);
  return handOver != nullptr ? Report(*handOver, reportTaken, program) : kNotWritten;
}

DWORD WINAPI EndAfterBound(void*) {
  Sleep(kRetryBound);
  ExitProcess(kDone);
}

int Retry(HANDLE mapping) {
  const View handOver = OpenHandOver(mapping);
  if (handOver == nullptr) return kWrongArguments;
  const UniqueHandle bound(CreateThread(nullptr, 0, EndAfterBound, nullptr, 0, nullptr));
  DeliverPending(ReportStore(handOver->reportFolder), handOver->uploadUrl);
  return kDone;
}

int Run(int count, char** arguments) {
  const std::string task = count > 1 ? arguments[1] : "";
  std::vector<UniqueHandle> handles;
  for (int i = 2; i < count; ++i) handles.push_back(InheritedHandle(arguments[i]));
  if (task == "--retry" && handles.size() == 1) return Retry(handles[0].get());
  if (task != "--wait" || handles.size() != 4) return kWrongArguments;
  return WaitAndReport(handles[0].get(), handles[1].get(), handles[2].get(), handles[3].get());
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  LoadDllsFromOwnAndSystemFolderOnly();
  int exitCode = kNotWritten;
  try {
    exitCode = Run(__argc, __argv);
  } catch (const std::exception&) {
    exitCode = kNotWritten;  // memory has run out: there is nobody left to tell
  }
  // At once: a delivery may still be going on in another thread.
  ExitProcess(exitCode);
}
