// The program that drives the window for ./run: what it leaves, and what it says when a job fails.
//
// Needs in the environment MOSAICON_DRIVE_WINDOW, the program, and an FTP server and a web server (see
// with_ftp_server.py).
#include <algorithm>
#include <filesystem>

#include "ui/publish_fixture.h"

namespace {

constexpr DWORD kDrivePatience = 120000;  // ms

class DriveWindow : public MosaiconTest {
 protected:
  static void SetUpTestSuite() { s_strFtpHost = TextFromEnvironment("MOSAICON_FTP_HOST"); }

  void SetUp() override {
    EmptyProfile();
    SetEnvironmentVariableA("MOSAICON_FTP_HOST", nullptr);
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(Remote("out"), ignored);
    MosaiconTest::TearDown();
  }
  static void AllowUpload() { SetEnvironmentVariableA("MOSAICON_FTP_HOST", s_strFtpHost.c_str()); }

  // Returns the exit code; what it said is in m_strSaid.
  DWORD Drive(const std::string& orthophoto) {
    const std::string said = Path("said.txt");
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE file =
        CreateFileA(said.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdError = file;
    startup.hStdOutput = file;
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
    m_strSaid = ReadFile(said);
    return code;
  }

  std::string m_strSaid;

 private:
  static std::string s_strFtpHost;
};

std::string DriveWindow::s_strFtpHost;

TEST_F(DriveWindow, LeavesReportAndPictures) {
  const std::string input = MakeOrthophoto("harbour.tif");
  EXPECT_EQ(Drive(input), 0U) << m_strSaid;
  EXPECT_EQ(m_strSaid, "");
  const std::string report = ReadFile(Path("report.txt"));
  EXPECT_TRUE(report.starts_with("Total work time: ")) << report;
  EXPECT_TRUE(report.ends_with("\r\n- " + input + ": OK\r\n")) << report;
  for (const char* name : {"window-working.png", "window-report.png", "window-done.png"}) {
    EXPECT_TRUE(ReadFile(Path(name)).starts_with("\x89PNG\r\n")) << name;
  }
  EXPECT_TRUE(FileExists(Path("out") + "\\googleearth_loc.kml"));
}

TEST_F(DriveWindow, UploadsWhatTheJobHasMade) {
  AllowUpload();
  EXPECT_EQ(Drive(MakeOrthophoto("harbour.tif")), 0U) << m_strSaid;
  const Tree made = ReadTree(Path("out"));
  EXPECT_EQ(Differences(ReadTree(Remote("out")), made), std::vector<std::string>());
  const auto isFile = [](const auto& entry) { return !entry.first.ends_with('\\'); };
  const auto files = std::count_if(made.begin(), made.end(), isFile);
  EXPECT_TRUE(m_strSaid.starts_with(std::to_string(files) + " file uploaded in ")) << m_strSaid;
  EXPECT_TRUE(ReadFile(Path("window-upload.png")).starts_with("\x89PNG\r\n"));
  // With its web address in it.
  const std::string link = "<href>" + TextFromEnvironment("MOSAICON_WEB_URL") + "/out/";
  EXPECT_NE(ReadFile(Path("out") + "\\googleearth_web.kml").find(link), std::string::npos);
}

TEST_F(DriveWindow, UploadsAFolderWithoutAJob) {
  AllowUpload();
  WriteFileIn(Path("out") + "\\mine\\a.txt", "a");
  EXPECT_EQ(Drive(""), 0U) << m_strSaid;
  EXPECT_TRUE(m_strSaid.starts_with("1 file uploaded in ")) << m_strSaid;
  EXPECT_TRUE(PathExists(Remote("out\\mine\\a.txt")));
  EXPECT_FALSE(FileExists(Path("report.txt")));
}

TEST_F(DriveWindow, SaysWhatStandsAgainstAnUpload) {
  AllowUpload();
  WriteFileIn(Path("out") + "\\a.txt", "a");
  CreateDirectoryA(Remote("out").c_str(), nullptr);
  EXPECT_EQ(Drive(""), 1U);
  EXPECT_EQ(m_strSaid,
            "drive_window: the upload failed\r\n"
            "drive_window: the program says: Remote folder already exists.\r\nPlease remove it or specify a "
            "different folder name\r\n");
}

// The log calls its orthophoto OK all the same.
TEST_F(DriveWindow, SaysWhichMapIsMissing) {
  RasterRecipe recipe;
  recipe.type = GDT_CInt16;
  MakeRaster(Path("complex.tif"), recipe);
  EXPECT_EQ(Drive(Path("complex.tif")), 1U);
  EXPECT_TRUE(m_strSaid.starts_with("drive_window: The map is missing or incomplete:\r\n" +
                                    Path("complex.tif") + ": the image "))
      << m_strSaid;
  EXPECT_NE(ReadFile(Path("report.txt")).find("complex.tif: OK"), std::string::npos);
}

TEST_F(DriveWindow, SaysWhatTheProgramSays) {
  WriteFile(Path("bad.tif"), "no image");
  EXPECT_EQ(Drive(Path("bad.tif")), 1U);
  EXPECT_EQ(m_strSaid,
            "drive_window: the job did not start\r\n"
            "drive_window: the program says: Unable to get geographic information into selected file\r\n");
  EXPECT_FALSE(FileExists(Path("report.txt")));
}

}  // namespace
