#include "batch/publish_command.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ostream>
#include <set>
#include <thread>

#include "files/path_text.h"
#include "kvtools/ascii.h"
#include "mirror/background_publication.h"

namespace {

using mirror::BackgroundPublication;
using mirror::PublicationReport;
using mirror::PublicationResult;
using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTurn{100};
constexpr std::chrono::seconds kBetweenLines{5};
constexpr double kMega = 1e6;

// The last component, with blanks as the window's upload has them.
std::string RemoteNameOf(const std::filesystem::path& folder) {
  std::error_code failed;
  std::filesystem::path whole = std::filesystem::absolute(folder, failed).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  std::string name = files::Utf8Of(whole.filename());
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

std::string Megabytes(std::uint64_t bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / kMega);
  return text;
}

std::string WebAddressOf(const std::string& parent, const std::string& name) {
  if (parent.empty()) return "";
  return parent + (parent.ends_with('/') ? "" : "/") + mirror::PercentEncoded(name);
}

class FolderPublisher {
 public:
  FolderPublisher(const PublishArguments& arguments, const PublishConsole& console)
      : m_arguments(arguments), m_console(console) {}

  // Whether it is published.
  bool Publish(const mirror::PublicationJob& job) {
    BackgroundPublication publication(job);
    steady_clock::time_point lastLine = steady_clock::now();
    while (!publication.IsDone()) {
      std::this_thread::sleep_for(kTurn);
      if (m_console.isInterrupted()) publication.Stop();
      if (m_arguments.quiet || steady_clock::now() - lastLine < kBetweenLines) continue;
      lastLine = steady_clock::now();
      TellProgress(publication.Progress());
    }
    if (!publication.WasEncrypted()) {
      Problem("the connection is not encrypted: others on the way can read the password and the files");
    }
    TellReport(publication.Report(), job.address.Text());
    const bool isRight = TellWeb(publication.Web(), job.webAddress);
    if (!publication.UnknownHostKey().empty()) {
      Problem("compare the key with what the owner of the server says; then add --host-key " +
              publication.UnknownHostKey());
    }
    const PublicationResult result = publication.Report().result;
    if (result == PublicationResult::kPlanned) return publication.Report().problems.empty();
    return result == PublicationResult::kPublished && isRight;
  }

 private:
  void Say(const std::string& text) const {
    if (!m_arguments.quiet) m_console.out << m_console.shown(text) << std::endl;
  }
  void Problem(const std::string& text) const {
    m_console.problems << "mosaicon-batch: " << m_console.shown(text) << std::endl;
  }

  void TellProgress(const mirror::PublicationProgress& progress) const {
    std::string line = std::to_string(progress.files) + " of " + std::to_string(progress.filesToSend) +
                       " files, " + Megabytes(progress.bytes) + " of " + Megabytes(progress.bytesToSend);
    if (progress.failures > 0) line += ", " + std::to_string(progress.failures) + " failed";
    if (!progress.trouble.empty()) line += "; waiting: " + progress.trouble;
    Say(line);
  }

  void TellReport(const PublicationReport& report, const std::string& address) const {
    for (const std::string& problem : report.problems) Problem(problem);
    for (const std::string& warning : report.warnings) Problem(warning);
    if (report.result == PublicationResult::kPlanned) TellPlan(report.plan);
    TellExtras(report);
    switch (report.result) {
      case PublicationResult::kPublished:
        Say(std::to_string(report.filesSent) + " files sent (" + Megabytes(report.bytesSent) + "), " +
            std::to_string(report.plan.unchanged.size()) + " were there, " +
            std::to_string(report.filesDeleted) + " deleted");
        Say("Published: " + address);
        break;
      case PublicationResult::kIncomplete:
        Problem("FAILED " + address + ": " + std::to_string(report.problems.size()) +
                " problems; what visitors see was left as it was as far as possible");
        break;
      case PublicationResult::kFailed:
        Problem("FAILED " + address + ": " + report.reason);
        break;
      case PublicationResult::kStopped:
        Problem("aborted; the same command goes on with it");
        break;
      case PublicationResult::kPlanned:
        Say(std::to_string(report.plan.FilesToSend()) + " files to send (" +
            Megabytes(report.plan.BytesToSend()) + "), " + std::to_string(report.plan.unchanged.size()) +
            " are there");
        break;
    }
  }

  // Whether visitors see what they should.
  bool TellWeb(const mirror::WebReport& web, const std::string& address) const {
    for (const std::string& problem : web.problems) Problem("on the web: " + problem);
    if (web.looked == 0 && !web.wasStopped) return true;
    if (web.problems.empty() && !web.wasStopped) Say("Published and checked: " + address);
    if (!web.problems.empty())
      Problem("published, but visitors of " + address + " do not see what they should");
    return web.problems.empty() && !web.wasStopped;
  }

  void TellPlan(const mirror::PublishPlan& plan) const {
    for (const mirror::PlannedFile& planned : plan.files) Say("to send: " + planned.file.path);
  }

  void TellExtras(const PublicationReport& report) const {
    if (m_arguments.deleteExtras && report.result == PublicationResult::kPublished) return;
    const char* what = m_arguments.deleteExtras ? "to delete: " : "only on the server: ";
    for (const std::string& path : report.plan.extraFiles) Say(what + path);
  }

  const PublishArguments& m_arguments;
  const PublishConsole& m_console;
};

}  // namespace

int Publish(const PublishArguments& arguments, const PublishSecrets& secrets,
            const std::filesystem::path& dataFolder, const PublishConsole& console) {
  mirror::PublicationJob job;
  job.dataFolder = dataFolder;
  job.access.user = arguments.user;
  job.access.password = secrets.password;
  job.access.keyPassphrase = secrets.passphrase;
  job.access.netrcFile = console.pathOf(arguments.netrcFile);
  job.access.keyFile = console.pathOf(arguments.keyFile);
  job.access.certificates = console.pathOf(arguments.certificates);
  job.access.useAgent = arguments.useAgent;
  job.access.acceptedHostKey = arguments.hostKey;
  job.access.bytesPerSecond = arguments.bytesPerSecond;
  job.options.connections = arguments.connections;
  job.options.deleteExtras = arguments.deleteExtras;
  job.options.dryRun = arguments.dryRun;
  FolderPublisher publisher(arguments, console);
  bool isAllPublished = true;
  std::set<std::string> names;
  for (const std::string& folder : arguments.folders) {
    job.folder = console.pathOf(folder);
    const std::string name = RemoteNameOf(job.folder);
    // Servers may not tell capital from small letters.
    const bool isTaken = !names.insert(LowerAscii(name)).second;
    if (name.empty() || isTaken) {
      console.problems << "mosaicon-batch: FAILED " << console.shown(folder)
                       << (isTaken ? ": another folder was published under this name"
                                   : ": it has no name to publish it under")
                       << std::endl;
      isAllPublished = false;
      continue;
    }
    job.address = arguments.address.Below(name);
    job.webAddress = WebAddressOf(arguments.webAddress, name);
    isAllPublished &= publisher.Publish(job);
    if (console.isInterrupted()) return kPublishingAborted;
  }
  return isAllPublished ? kPublished : kPublishedInPart;
}
