// crashsender.exe: writes the report of a program that has crashed, offers to send it, and delivers
// what could not be delivered before. Started by crashrpt.dll only:
//   crashsender --report MAPPING EVENT PROCESS   handles that it inherits, as decimal numbers
//   crashsender --retry MAPPING
// With the environment variable CRASHREPORT_QUIET set (to anything but 0) no window is shown and the
// report is kept: for machines that nobody watches. Exit codes: 0 done, 1 the report could not be
// written, 2 not started as above.

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "crashrpt/consent_text.h"
#include "crashrpt/delivery.h"
#include "crashrpt/hand_over.h"
#include "crashrpt/report_name.h"
#include "crashrpt/report_store.h"
#include "crashrpt/report_writer.h"
#include "crashrpt/send_dialog.h"
#include "crashrpt/unique_handle.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotWritten = 1;
constexpr int kWrongArguments = 2;
// After this long a retry gives up until the next start of the program.
constexpr DWORD kRetryBound = 5 * 60 * 1000;

UniqueHandle InheritedHandle(const char* number) {
  return UniqueHandle(reinterpret_cast<HANDLE>(std::strtoull(number, nullptr, 10)));
}

struct ViewCloser {
  void operator()(const HandOver* view) const { UnmapViewOfFile(view); }
};
using View = std::unique_ptr<const HandOver, ViewCloser>;

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
std::string Send(const HandOver& handOver, const ReportStore& store, const std::string& name,
                 bool withPicture) {
  const std::string error = DeliverAgreed(store, name, withPicture, handOver.uploadUrl);
  if (error.empty()) return "The report was sent. Thank you.";
  if (!PathExists(store.PendingPath(name))) return error + " The report is kept.";
  return error + " The report is kept, and sending it is tried again when " + handOver.applicationName +
         " starts the next time.";
}

void Offer(const HandOver& handOver, const ReportStore& store, const WrittenReport& report) {
  SendOffer offer;
  offer.applicationName = handOver.applicationName;
  offer.reportFolder = store.Path(report.name);
  offer.contents = DescribeContents(GetProperties(handOver.properties), Has(report, kReportDump));
  offer.hasPicture = Has(report, kReportPicture);
  offer.privacyPolicyUrl = handOver.privacyPolicyUrl;
  if (handOver.uploadUrl[0] != '\0') {
    offer.send = [&handOver, store, name = report.name](bool withPicture) {
      return Send(handOver, store, name, withPicture);
    };
  }
  OfferToSend(offer);  // when it cannot be shown, the report is simply kept
}

int Report(const HandOver& handOver, HANDLE process, HANDLE dumpTaken) {
  const ReportStore store(handOver.reportFolder);
  const WrittenReport report = WriteReport(handOver, process, store, [dumpTaken] { SetEvent(dumpTaken); });
  const bool quiet = IsQuiet();
  if (report.name.empty()) {
    if (!quiet) {
      MessageBoxA(nullptr, ("The crash report could not be written. " + report.error).c_str(),
                  handOver.applicationName, MB_OK | MB_ICONWARNING | MB_SETFOREGROUND);
    }
    return kNotWritten;
  }
  store.KeepNewest(kKeptReports);
  if (!quiet) Offer(handOver, store, report);
  return kDone;
}

DWORD WINAPI EndAfterBound(void*) {
  Sleep(kRetryBound);
  ExitProcess(kDone);
}

int Retry(const HandOver& handOver) {
  CloseHandle(CreateThread(nullptr, 0, EndAfterBound, nullptr, 0, nullptr));
  DeliverPending(ReportStore(handOver.reportFolder), handOver.uploadUrl);
  return kDone;
}

int Run(int count, char** arguments) {
  const std::string task = count > 1 ? arguments[1] : "";
  const bool isReport = task == "--report" && count == 5;
  const bool isRetry = task == "--retry" && count == 3;
  if (!isReport && !isRetry) return kWrongArguments;
  const UniqueHandle mapping = InheritedHandle(arguments[2]);
  const View handOver = OpenHandOver(mapping.get());
  if (handOver == nullptr) return kWrongArguments;
  if (isRetry) return Retry(*handOver);
  const UniqueHandle dumpTaken = InheritedHandle(arguments[3]);
  const UniqueHandle process = InheritedHandle(arguments[4]);
  return Report(*handOver, process.get(), dumpTaken.get());
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  int exitCode = kNotWritten;
  try {
    exitCode = Run(__argc, __argv);
  } catch (const std::exception&) {
    exitCode = kNotWritten;  // memory has run out: there is nobody left to tell
  }
  // At once: a delivery may still be going on in another thread.
  ExitProcess(exitCode);
}
