#include "job/child_process.h"

#include "job/testing/tool_fixture.h"
#include "support/open_handles.h"

namespace {

class Child : public ToolFixture {
 protected:
  bool Start(const std::string& commandLine) {
    m_startup = {};
    m_startup.cb = sizeof m_startup;
    return m_child.Start(m_strTool.c_str(), commandLine, m_folder.Path(), m_startup, false);
  }
  DWORD WaitForExitCode() {
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(m_child.Process(), 120000), WAIT_OBJECT_0);
    GetExitCodeProcess(m_child.Process(), &code);
    return code;
  }
  STARTUPINFOA m_startup = {};
  ChildProcess m_child;
};

std::string CurrentDirectory() {
  char directory[MAX_PATH];
  GetCurrentDirectoryA(sizeof directory, directory);
  return directory;
}

TEST_F(Child, WorksInItsFolderAndLeavesOursAlone) {
  const std::string before = CurrentDirectory();
  ASSERT_TRUE(Start(" args:" + m_folder.Path("out.txt")));
  EXPECT_EQ(CurrentDirectory(), before);
  EXPECT_EQ(WaitForExitCode(), 0U);
  const std::string text = ReadFile(m_folder.Path("out.txt"));
  EXPECT_EQ(text.substr(0, text.find('\n')), " args:" + m_folder.Path("out.txt")) << "as it was given";
  EXPECT_EQ(text.substr(text.find('\n') + 1), m_folder.Path() + "\n");
}

TEST_F(Child, TellsThatItCouldNotStart) {
  const std::string before = CurrentDirectory();
  m_strTool = m_folder.Path("none.exe");
  EXPECT_FALSE(Start(" x"));
  EXPECT_EQ(m_child.Process(), nullptr);
  EXPECT_EQ(CurrentDirectory(), before);
  m_child.Terminate();
}

TEST_F(Child, RefusesACommandLineBeyondItsBuffer) {
  ASSERT_TRUE(Start(" exit:3 " + std::string(15999 - 8, 'x')));
  EXPECT_EQ(WaitForExitCode(), 3U);
  m_child.Terminate();
  EXPECT_FALSE(Start(" exit:3 " + std::string(16000 - 8, 'x')));
}

TEST_F(Child, IsKilledWithExitCodeNine) {
  ASSERT_TRUE(Start(" sleep:600000"));
  HANDLE process = nullptr;
  ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), m_child.Process(), GetCurrentProcess(), &process, 0, FALSE,
                              DUPLICATE_SAME_ACCESS));
  m_child.Terminate();
  EXPECT_EQ(WaitForSingleObject(process, 120000), WAIT_OBJECT_0);
  DWORD code = 0;
  GetExitCodeProcess(process, &code);
  EXPECT_EQ(code, 9U);
  CloseHandle(process);
}

TEST_F(Child, TakesItsOwnChildrenAlong) {
  const std::string started = m_folder.Path("started");
  ASSERT_TRUE(Start(" child:600000 touch:" + started + " sleep:600000"));
  for (int i = 0; i < 12000 && !FileExists(started); ++i) Sleep(10);
  EXPECT_EQ(WaitForTools(2), 2);
  m_child.Terminate();
  EXPECT_EQ(WaitForTools(0), 0);
}

TEST_F(Child, LeavesNoHandleOpen) {
  const auto cycle = [&] {
    ASSERT_TRUE(Start(" exit:0"));
    WaitForExitCode();
    m_child.Terminate();
    m_strTool = m_folder.Path("none.exe");
    ASSERT_FALSE(Start(" exit:0"));
    m_strTool = m_folder.Path("gdal_translate.exe");
  };
  EXPECT_FALSE(LeavesMoreAndMoreOpen([&] {
    for (int i = 0; i < 5; ++i) cycle();
  }));
}

}  // namespace
