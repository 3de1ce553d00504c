#include "crashrpt/report_writer.h"

#include <dbghelp.h>
#include <objbase.h>

#include <array>
#include <cstdio>

#include "crashrpt/desktop_picture.h"
#include "crashrpt/report_name.h"
#include "crashrpt/report_xml.h"
#include "files/utf8_text.h"

namespace {

std::string NewGuid() {
  GUID guid = {};
  CoCreateGuid(&guid);
  const BYTE* const last = guid.Data4;
  std::array<char, 40> text = {};
  std::snprintf(text.data(), text.size(), "%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", guid.Data1,
                guid.Data2, guid.Data3, last[0], last[1], last[2], last[3], last[4], last[5], last[6],
                last[7]);
  return text.data();
}

using DumpWriter = decltype(&MiniDumpWriteDump);

// Null when there is none. The DLL stays loaded.
DumpWriter LoadDumpWriter(const char* given) {
  HMODULE library = *given != '\0' ? LoadLibraryA(given) : nullptr;
  if (library == nullptr) library = LoadLibraryExA("dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return nullptr;
  return reinterpret_cast<DumpWriter>(reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
}

// Returns what went wrong; then there is no file.
std::string WriteDump(const HandOver& handOver, HANDLE process, const std::string& path) {
  const DumpWriter write = LoadDumpWriter(handOver.debugHelpDll);
  if (write == nullptr) return "There is no DLL that writes dumps.";
  const UniqueHandle file(
      CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) {
    return "The dump could not be created, error " + std::to_string(GetLastError()) + ".";
  }
  MINIDUMP_EXCEPTION_INFORMATION exception = {};
  exception.ThreadId = handOver.crash.threadId;
  exception.ExceptionPointers = reinterpret_cast<EXCEPTION_POINTERS*>(handOver.crash.exceptionPointers);
  exception.ClientPointers = TRUE;
  const BOOL written = write(process, handOver.crash.processId, file.get(),
                             static_cast<MINIDUMP_TYPE>(handOver.dumpType), &exception, nullptr, nullptr);
  return written ? "" : "The dump could not be written, error " + std::to_string(GetLastError()) + ".";
}

ReportContents ContentsOf(const HandOver& handOver) {
  ReportContents report;
  report.guid = NewGuid();
  report.applicationName = Utf8FromAnsi(handOver.applicationName);
  report.applicationVersion = Utf8FromAnsi(handOver.applicationVersion);
  report.emailTo = Utf8FromAnsi(handOver.emailTo);
  report.emailSubject = Utf8FromAnsi(handOver.emailSubject);
  report.emailText = Utf8FromAnsi(handOver.emailText);
  report.crash = handOver.crash;
  for (const Property& property : GetProperties(handOver.properties)) {
    report.properties.push_back({Utf8FromAnsi(property.name), Utf8FromAnsi(property.value)});
  }
  return report;
}

void AddFile(ReportContents& report, const std::string& folder, const char* name, const std::string& error) {
  if (error.empty()) {
    report.files.emplace_back(name);
    return;
  }
  DeleteFileA((folder + "\\" + name).c_str());  // what there is of it
  report.missing.emplace_back(name, error);
}

}  // namespace

WrittenReport WriteReport(const HandOver& handOver, HANDLE process, const ReportStore& store) {
  ReportContents report = ContentsOf(handOver);
  WrittenReport result;
  const std::string name = ReportName(handOver.crash.fileTime, report.guid);
  if (!store.Begin(name)) {
    result.error = "The folder " + store.Folder() + " cannot be written to.";
    return result;
  }
  const std::string folder = store.UnfinishedPath(name);
  AddFile(report, folder, kReportDump, WriteDump(handOver, process, folder + "\\" + kReportDump));
  if (handOver.withPicture != 0) {
    // The program waits: its windows are still there.
    AddFile(report, folder, kReportPicture, WriteDesktopPicture(folder + "\\" + kReportPicture));
  }
  if (!ReplaceFileBytes(folder + "\\" + kReportXml, ReportXml(report)) || !store.Complete(name)) {
    result.error = "The report in " + folder + " could not be completed.";
    return result;
  }
  result.name = name;
  result.files = report.files;
  result.files.emplace_back(kReportXml);
  return result;
}
