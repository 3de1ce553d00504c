// The real program crashes in every way that a thread from outside can provoke, and the report of each
// crash is read back. Needs in the environment MOSAICON_SHORT_DUMP, a DLL that writes dumps.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "crashrpt/crashrpt.h"
#include "crashrpt/testing/provoke_crash.h"
#include "ui/mosaicon_fixture.h"

namespace {

constexpr int kKinds = 13;
constexpr size_t kShortDump = 10000;       // bytes
constexpr DWORD kReportPatience = 120000;  // ms; writing a dump takes Wine seconds

std::string ReportsFolder() {
  char folder[MAX_PATH] = "";
  GetEnvironmentVariableA("LOCALAPPDATA", folder, sizeof folder);
  return std::string(folder) + "\\Mosaicon\\CrashReports";
}

// The names of the entries of a folder that begin with a digit: those of complete reports.
std::vector<std::string> CompleteReports() {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found;
  const HANDLE search = FindFirstFileA((ReportsFolder() + "\\2*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::string name = found.cFileName;
    if (name.find(".unfinished") == std::string::npos) names.push_back(name);
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return names;
}

class Crash : public MosaiconTest {
 protected:
  // No window asks about the reports, which stay where they are.
  static void SetUpTestSuite() { SetEnvironmentVariableA("CRASHREPORT_QUIET", "1"); }
  static void TearDownTestSuite() {
    StopProgram();
    SetEnvironmentVariableA("CRASHREPORT_QUIET", nullptr);
  }

  // Makes the program crash, and returns the folder of its report.
  std::string CrashBy(int kind, DWORD& thread) {
    const std::vector<std::string> before = CompleteReports();
    const ProvokedCrash crash = ProvokeCrash(Running().Process(), kind);
    EXPECT_NE(crash.threadId, 0U) << crash.error;
    thread = crash.threadId;
    if (!Running().WaitForEnd(kReportPatience)) return "";
    EXPECT_EQ(Running().ExitCode(), static_cast<DWORD>(CRASH_EXIT_REPORTED));
    // The end of the program says that the report is complete.
    for (const std::string& name : CompleteReports()) {
      if (std::find(before.begin(), before.end(), name) == before.end()) return ReportsFolder() + "\\" + name;
    }
    return "";
  }
};

// Dumps as short as the tests need them: what the system's DLL writes takes Wine seconds. The prefix is the
// test's own, but its files are shared with others: the file is replaced, never written into.
class CrashOfEveryKind : public Crash, public testing::WithParamInterface<int> {
 protected:
  static void SetUpTestSuite() {
    Crash::SetUpTestSuite();
    const std::string system = SystemDll();
    ASSERT_TRUE(MoveFileA(system.c_str(), (system + ".own").c_str()));
    ASSERT_TRUE(CopyFileA(PathFromEnvironment("MOSAICON_SHORT_DUMP").c_str(), system.c_str(), TRUE));
    Override("native");
  }
  static void TearDownTestSuite() {
    Crash::TearDownTestSuite();
    Override("builtin");
    // The last program that has written a report may still be ending.
    EXPECT_TRUE(WaitUntil([] { return DeleteFileA(SystemDll().c_str()) != FALSE; }));
    EXPECT_TRUE(MoveFileA((SystemDll() + ".own").c_str(), SystemDll().c_str()));
  }

 private:
  static std::string SystemDll() {
    char folder[MAX_PATH] = "";
    GetSystemDirectoryA(folder, sizeof folder);
    return std::string(folder) + "\\dbghelp.dll";
  }

  // Which of the two DLLs of that name Wine takes.
  static void Override(const char* order) {
    EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, "Software\\Wine\\DllOverrides", "dbghelp", REG_SZ, order,
                              static_cast<DWORD>(std::strlen(order) + 1)),
              ERROR_SUCCESS);
  }
};

void ExpectLine(const std::string& xml, const std::string& line) {
  EXPECT_NE(xml.find("  " + line + "\n"), std::string::npos) << line << " is not in\n" << xml;
}

TEST_P(CrashOfEveryKind, IsReportedWithAllThatIsKnown) {
  ASSERT_TRUE(Restart());
  DWORD thread = 0;
  const std::string folder = CrashBy(GetParam(), thread);
  ASSERT_FALSE(folder.empty());
  const std::string xml = ReadFile(folder + "\\report.xml");
  ExpectLine(xml, "<application>Mosaicon</application>");
  ExpectLine(xml, "<version>1.0.0</version>");
  ExpectLine(xml, "<email>support@kovel-software.example</email>");
  ExpectLine(xml, "<subject>Mosaicon (ver. 1.0.0) Error report</subject>");
  EXPECT_NE(xml.find("<crash type=\"" + std::to_string(GetParam()) + "\" "), std::string::npos) << xml;
  EXPECT_NE(xml.find(" thread=\"" + std::to_string(thread) + "\"/>"), std::string::npos) << xml;
  ExpectLine(xml, "<property name=\"User Data - Name\" value=\"Ada\"/>");
  ExpectLine(xml, "<property name=\"User Data - Surname\" value=\"Byron\"/>");
  ExpectLine(xml, "<property name=\"User Data - email\" value=\"ada@example.org\"/>");
  ExpectLine(xml, "<property name=\"User Data - company\" value=\"\"/>");
  ExpectLine(xml, "<property name=\"User Data - telephone\" value=\"\"/>");
  for (const char* name : {"ExceptionTypeMeaning", "OS_Info", "Screen_Pixel_Depth", "Screen_Resolution",
                           "RAM_Info", "Graphic_Adapter_0"}) {
    const std::string begin = std::string("<property name=\"") + name + "\" value=\"";
    const size_t found = xml.find(begin);
    ASSERT_NE(found, std::string::npos) << name;
    EXPECT_NE(xml[found + begin.size()], '"') << name << " is empty";
  }
  EXPECT_EQ(xml.find("<missing"), std::string::npos) << xml;
  const std::string dump = ReadFile(folder + "\\crashdump.dmp");
  EXPECT_EQ(dump.substr(0, 4), "MDMP");
  EXPECT_LT(dump.size(), kShortDump);
  EXPECT_EQ(ReadFile(folder + "\\desktop.png").substr(1, 3), "PNG");
}

INSTANTIATE_TEST_SUITE_P(Kinds, CrashOfEveryKind, testing::Range(0, kKinds));

TEST_F(Crash, IsReportedWithTheDataThatTheUserHasGivenMeanwhile) {
  ASSERT_TRUE(Restart());
  Item(IDC_ABOUT).Click();
  const Window about = Running().WaitFor("About Mosaicon");
  about.Item(IDC_CHANGE_USER_DATA).Click();
  const Window form = Running().WaitFor("User Data");
  ASSERT_TRUE(form);
  form.Item(IDC_USER_EMAIL).SetText("new@example.org");
  form.Item(IDC_USER_TELEPHONE).SetText("+44 1");
  form.Item(IDOK).Click();
  ASSERT_TRUE(form.WaitUntilGone());
  about.Item(IDOK).Click();
  ASSERT_TRUE(about.WaitUntilGone());
  DWORD thread = 0;
  const std::string folder = CrashBy(0, thread);
  ASSERT_FALSE(folder.empty());
  const std::string xml = ReadFile(folder + "\\report.xml");
  ExpectLine(xml, "<property name=\"User Data - Name\" value=\"Ada\"/>");
  ExpectLine(xml, "<property name=\"User Data - email\" value=\"new@example.org\"/>");
  ExpectLine(xml, "<property name=\"User Data - telephone\" value=\"+44 1\"/>");
  EXPECT_EQ(ReadFile(folder + "\\crashdump.dmp").substr(0, 4), "MDMP");
}

TEST_F(Crash, EndsTheToolsOfAJob) {
  ASSERT_TRUE(Restart());
  FillIn({.orthophoto = MakeLargeOrthophoto(), .target = Path("out")});
  PressStart();
  ASSERT_TRUE(WaitUntilTiling());
  DWORD thread = 0;
  EXPECT_FALSE(CrashBy(0, thread).empty());
  EXPECT_TRUE(WaitUntil([] { return RunningTools().empty(); }));
}

}  // namespace
