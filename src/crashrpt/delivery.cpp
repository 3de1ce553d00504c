#include "crashrpt/delivery.h"

#include <fstream>
#include <iterator>
#include <optional>

#include "crashrpt/http_upload.h"
#include "crashrpt/multipart.h"
#include "crashrpt/report_name.h"
#include "crashrpt/report_xml.h"
#include "files/system_files.h"

namespace {

constexpr char kInterrupted[] = "Another process is sending this report.";

struct FileKind {
  const char* name;
  const char* field;
  const char* contentType;
};
constexpr char kNoConsent[] = "The user did not agree to send it.";
constexpr FileKind kFiles[] = {{kReportDump, "dump", "application/octet-stream"},
                               {kReportPicture, "picture", "image/png"}};

std::optional<std::string> ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::optional<uint64_t> SizeOfFile(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return static_cast<uint64_t>(data.nFileSizeHigh) << 32U | data.nFileSizeLow;
}

void AddFile(MultipartBody& body, const FileKind& file, const std::string& folder) {
  const std::string path = folder + "\\" + file.name;
  const std::optional<uint64_t> size = SizeOfFile(path);
  if (size) body.AddFile(file.field, file.name, file.contentType, path, *size);
}

// What a report does not list is not sent, so that a file that cannot be deleted right now does no harm.
bool LeaveOutPicture(const std::string& folder) {
  const std::string xmlPath = folder + "\\" + kReportXml;
  const std::optional<std::string> xml = ReadText(xmlPath);
  if (!xml || !ListsFile(*xml, kReportPicture)) return xml.has_value();
  if (!ReplaceFileBytes(xmlPath, WithoutFile(*xml, kReportPicture, kNoConsent))) return false;
  DeleteFileA((folder + "\\" + kReportPicture).c_str());
  return true;
}

std::string Upload(const std::string& folder, const std::string& url) {
  const std::optional<std::string> xml = ReadText(folder + "\\" + kReportXml);
  if (!xml) return "The report is not complete any more.";
  const DeliveryTexts texts = ReadDeliveryTexts(*xml);
  MultipartBody body("report-" + texts.guid);
  body.AddField("application", texts.applicationName);
  body.AddField("version", texts.applicationVersion);
  body.AddField("guid", texts.guid);
  body.AddField("email", texts.emailTo);
  body.AddField("subject", texts.emailSubject);
  body.AddField("text", texts.emailText);
  AddFile(body, {kReportXml, "report", "application/xml"}, folder);
  for (const FileKind& file : kFiles) {
    if (ListsFile(*xml, file.name)) AddFile(body, file, folder);
  }
  return UploadByHttp(url, body);
}

// The caller holds the lock.
std::string DeliverLocked(const ReportStore& store, const std::string& name, const std::string& url) {
  std::string error = Upload(store.PendingPath(name), url);
  if (error.empty() && !store.MarkSent(name)) error = "The report was sent, but could not be marked as sent.";
  return error;
}

}  // namespace

std::string DeliverAgreed(const ReportStore& store, const std::string& name, bool withPicture,
                          const std::string& url) {
  const UniqueHandle lock = store.LockDelivery(name);
  if (lock.get() == INVALID_HANDLE_VALUE) return kInterrupted;
  if (!withPicture && !LeaveOutPicture(store.Path(name))) return "The picture could not be left out.";
  if (!store.MarkAgreed(name)) return "The report in " + store.Folder() + " cannot be moved.";
  return DeliverLocked(store, name, url);
}

void DeliverPending(const ReportStore& store, const std::string& url) {
  for (const std::string& name : store.Pending()) {
    const UniqueHandle lock = store.LockDelivery(name);
    if (lock.get() == INVALID_HANDLE_VALUE) continue;
    // Another process may have delivered it before the lock was ours.
    if (SystemFiles().Exists(store.PendingPath(name))) DeliverLocked(store, name, url);
  }
}
