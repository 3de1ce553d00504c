// A tool folder in a temporary folder, with the test tool under the names of the real ones.
#ifndef MOSAICON_JOB_TESTING_TOOL_FIXTURE_H_
#define MOSAICON_JOB_TESTING_TOOL_FIXTURE_H_

#include <gtest/gtest.h>
#include <windows.h>

#include <tlhelp32.h>

#include <string>

#include "support/temporary_folder.h"

class ToolFixture : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"python.exe", "gdal_translate.exe", "gdalwarp.exe"}) {
      ASSERT_TRUE(CopyFileA(TestTool().c_str(), m_folder.Path(name).c_str(), TRUE)) << TestTool();
    }
    m_strTool = m_folder.Path("gdal_translate.exe");
  }

  // Beside the test program.
  static std::string TestTool() {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    const std::string path = program;
    return path.substr(0, path.rfind('\\')) + "\\job_test_tool.exe";
  }

  // How many processes run a program of this test's own folder.
  int CountTools() const {
    int count = 0;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot, &entry); more; more = Process32Next(snapshot, &entry)) {
      if (ImagePath(entry.th32ProcessID).rfind(m_folder.Path(), 0) == 0) ++count;
    }
    CloseHandle(snapshot);
    return count;
  }

  // Waits up to two minutes for the number of tools; returns what it was last.
  int WaitForTools(int count) const {
    for (int i = 0; i < 12000 && CountTools() != count; ++i) Sleep(10);
    return CountTools();
  }

  TemporaryFolder m_folder;
  std::string m_strTool;

 private:
  static std::string ImagePath(DWORD processId) {
    char path[MAX_PATH] = "";
    DWORD size = sizeof path;
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (process == nullptr) return "";
    if (!QueryFullProcessImageNameA(process, 0, path, &size)) path[0] = '\0';
    CloseHandle(process);
    return path;
  }
};

#endif  // MOSAICON_JOB_TESTING_TOOL_FIXTURE_H_
