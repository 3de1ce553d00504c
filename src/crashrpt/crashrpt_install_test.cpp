// What the functions accept and refuse. An installation cannot be undone, so that the order of these
// tests matters: everything before the last one leaves the process as it was.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "crashrpt/crashrpt.h"
#include "support/open_handles.h"
#include "support/temporary_folder.h"

namespace {

std::string LastError() {
  char message[512];
  CrashReportGetLastError(message, sizeof message);
  return message;
}

CrashInstallInfo Record() {
  CrashInstallInfo info = {};
  info.size = sizeof info;
  return info;
}

TEST(CrashReportInstall, RefusesWhatIsNoRecord) {
  EXPECT_EQ(CrashReportInstall(nullptr), 1);
  EXPECT_EQ(LastError(), "There is no install record.");
  CrashInstallInfo info = Record();
  info.size = 176;
  EXPECT_EQ(CrashReportInstall(&info), 1);
  EXPECT_EQ(LastError(), "The install record has the size 176 instead of 184.");
}

TEST(CrashReportInstall, RefusesToWorkWithoutTheSender) {
  const TemporaryFolder folder;
  const std::string noProgram = folder.Path("sender.exe");
  CrashInstallInfo info = Record();
  for (const std::string& path : {noProgram, folder.Path()}) {
    info.senderPath = path.c_str();
    EXPECT_EQ(CrashReportInstall(&info), 1) << path;
    EXPECT_EQ(LastError(), "The program that sends reports, crashsender.exe, is missing.");
  }
}

// The first that comes so far: what was prepared once stays prepared.
TEST(CrashReportInstall, DoesNothingWhenTheHandlersCannotBePrepared) {
  std::vector<DWORD> slots;
  for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc()) slots.push_back(slot);
  CrashInstallInfo info = Record();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(CrashReportInstall(&info), 1);
    EXPECT_TRUE(LastError().starts_with("The handlers could not be prepared, error ")) << LastError();
  }
  for (const DWORD slot : slots) TlsFree(slot);
}

TEST(CrashReportInstall, LeavesNothingBehindWhenItRefuses) {
  const std::string tooLong(256, 'v');
  CrashInstallInfo info = Record();
  info.applicationVersion = tooLong.c_str();
  EXPECT_EQ(CrashReportInstall(&info), 1);
  EXPECT_EQ(LastError(), "The application version is longer than 255 characters.");
  const int before = CountOpenHandles();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(CrashReportInstall(&info), 1);
  EXPECT_EQ(CountOpenHandles(), before);
}

TEST(CrashReportAdd, NeedsAnInstallation) {
  EXPECT_EQ(CrashReportAddProperty("name", "value"), 1);
  EXPECT_EQ(LastError(), "Crash reporting is not installed.");
  EXPECT_EQ(CrashReportAddPicture(0), 1);
  EXPECT_EQ(LastError(), "Crash reporting is not installed.");
}

TEST(CrashReportGetLastError, WritesNoMoreThanThereIsRoomFor) {
  CrashReportInstall(nullptr);
  char buffer[10];
  std::memset(buffer, '#', sizeof buffer);
  EXPECT_EQ(CrashReportGetLastError(buffer, 6), 5);
  EXPECT_STREQ(buffer, "There");
  EXPECT_EQ(buffer[6], '#');
  EXPECT_EQ(CrashReportGetLastError(buffer, 1), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(CrashReportGetLastError(buffer, 0), -1);
  EXPECT_EQ(CrashReportGetLastError(nullptr, 10), -1);
}

TEST(CrashReportInstalled, StaysInstalled) {
  const TemporaryFolder folder;
  const std::string reports = folder.Path();
  CrashInstallInfo info = Record();
  info.reportFolder = reports.c_str();
  ASSERT_EQ(CrashReportInstall(&info), 0) << LastError();
  EXPECT_EQ(CrashReportInstall(&info), 1);
  EXPECT_EQ(LastError(), "Crash reporting is installed already.");
  EXPECT_EQ(CrashReportAddPicture(1), 1);
  EXPECT_EQ(LastError(), "There is no such picture: 1.");
  EXPECT_EQ(CrashReportAddPicture(0), 0);
  EXPECT_EQ(CrashReportAddProperty("name", nullptr), 1);
  EXPECT_EQ(CrashReportAddProperty(nullptr, "value"), 1);
  EXPECT_EQ(CrashReportAddProperty("", "value"), 1);
  EXPECT_EQ(LastError(), "A property needs a name and a value.");
  EXPECT_EQ(CrashReportAddProperty("large", std::string(32 * 1024, 'x').c_str()), 1);
  EXPECT_EQ(LastError(), "There is no room for the property large.");
  EXPECT_EQ(CrashReportAddProperty("name", "value"), 0);
}

TEST(CrashReportDll, ExportsOrdinalsOnly) {
  const HMODULE dll = GetModuleHandleA("crashrpt.dll");
  ASSERT_NE(dll, nullptr);
  for (WORD ordinal = 1; ordinal <= 4; ++ordinal) {
    EXPECT_NE(GetProcAddress(dll, MAKEINTRESOURCEA(ordinal)), nullptr) << ordinal;
  }
  EXPECT_EQ(GetProcAddress(dll, MAKEINTRESOURCEA(5)), nullptr);
  EXPECT_EQ(GetProcAddress(dll, "CrashReportInstall"), nullptr);
}

}  // namespace
