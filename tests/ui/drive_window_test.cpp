// The program that drives the window for ./run: what it leaves, and what it says when a job fails.
//
// Needs in the environment MOSAICON_DRIVE_WINDOW, the program.
#include "ui/mosaicon_fixture.h"

namespace {

constexpr DWORD kDrivePatience = 120000;  // ms

class DriveWindow : public MosaiconTest {
 protected:
  void SetUp() override { EmptyProfile(); }

  // Returns the exit code; what it said is in m_strErrors.
  DWORD Drive(const std::string& orthophoto) {
    const std::string said = Path("errors.txt");
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE file =
        CreateFileA(said.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdError = file;
    PROCESS_INFORMATION process = {};
    std::string commandLine = "\"" + PathFromEnvironment("MOSAICON_DRIVE_WINDOW") + "\" \"" + StageProgram() +
                              "\" \"" + orthophoto + "\" \"" + Path("out") + "\" \"" + Path("report.txt") +
                              "\" \"" + Path() + "\"";
    const BOOL started = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(file);
    EXPECT_TRUE(started) << commandLine;
    if (!started) return STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, kDrivePatience), WAIT_OBJECT_0);
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    m_strErrors = ReadFile(said);
    return code;
  }

  std::string m_strErrors;
};

TEST_F(DriveWindow, LeavesReportAndPictures) {
  const std::string input = MakeOrthophoto("harbour.tif");
  EXPECT_EQ(Drive(input), 0U) << m_strErrors;
  EXPECT_EQ(m_strErrors, "");
  const std::string report = ReadFile(Path("report.txt"));
  EXPECT_TRUE(report.starts_with("Total work time: ")) << report;
  EXPECT_TRUE(report.ends_with("\r\n- " + input + ": OK\r\n")) << report;
  for (const char* name : {"window-working.png", "window-report.png", "window-done.png"}) {
    EXPECT_TRUE(ReadFile(Path(name)).starts_with("\x89PNG\r\n")) << name;
  }
  EXPECT_TRUE(FileExists(Path("out") + "\\googleearth_loc.kml"));
}

TEST_F(DriveWindow, SaysWhatTheProgramSays) {
  WriteFile(Path("bad.tif"), "no image");
  EXPECT_EQ(Drive(Path("bad.tif")), 1U);
  EXPECT_EQ(m_strErrors,
            "drive_window: the job did not start\r\n"
            "drive_window: the program says: Unable to get geographic information into selected file\r\n");
  EXPECT_FALSE(FileExists(Path("report.txt")));
}

}  // namespace
