// Drives the real window through one job, without anybody at the screen:
//   drive_window PROGRAM ORTHOPHOTO TARGET REPORT_FILE PICTURE_FOLDER
// Starts PROGRAM, fills in its form, starts the job, keeps what the report says in REPORT_FILE, and leaves
// window-working.png, window-report.png and window-done.png in PICTURE_FOLDER, which must exist.
//
// When MOSAICON_FTP_HOST, _PORT, _USER and _PASSWORD tell of an FTP server, it also uploads TARGET there,
// leaves window-upload.png, and prints what the program says and how long it took. An empty ORTHOPHOTO means
// that there is no job but only that. The job's web address is MOSAICON_WEB_URL, when there is one, and the
// name of TARGET.
//
// Exit code 0: the report says that the orthophoto is OK and misses no map, and all files were uploaded. 1:
// standard error says what went wrong. 2: bad arguments.
#include <windows.h>

// After windows.h.
#include <commctrl.h>

#include <cstdio>
#include <fstream>
#include <utility>

#include "resources/resource.h"
#include "ui/message_box.h"
#include "ui/screenshot.h"
#include "ui/window_driver.h"

namespace {

constexpr char kMainTitle[] = "Kovel Software - Mosaicon";
constexpr char kUserDataTitle[] = "User Data";
constexpr char kReportTitle[] = "Process Completed";
constexpr char kUploadTitle[] = "FTP Upload";
constexpr char kMapTitle[] = "Sample";
constexpr DWORD kStartPatience = 120000;  // ms; the first start of Wine is slow
constexpr DWORD kJobPatience = 1800000;   // ms
constexpr DWORD kSmallPatience = 60000;   // ms
constexpr LRESULT kWorthAPicture = 20;    // percent

struct UserField {
  int id;
  const char* text;
};

constexpr UserField kUserFields[] = {
    {IDC_USER_NAME, "Sample"}, {IDC_USER_SURNAME, "User"}, {IDC_USER_EMAIL, "sample.user@example.org"}};

struct Arguments {
  std::string program;
  std::string orthophoto;
  std::string target;
  std::string reportFile;
  std::string pictureFolder;
};

std::string FromEnvironment(const char* variable) {
  char value[MAX_PATH] = "";
  GetEnvironmentVariableA(variable, value, sizeof value);
  return value;
}

// One run; each step returns false when the run must not go on, having said why.
class Drive {
 public:
  explicit Drive(const Arguments& arguments) : m_arguments(arguments), m_program(arguments.program) {}

  bool Run();

 private:
  bool Open();
  bool FillInUserData(const Window& form);
  bool FillInForm();
  bool WatchJob();
  bool TakeReport();
  bool PhotographMain();
  bool RunJob();
  bool OpenUpload();
  bool Connect();
  bool UploadTarget();
  bool Leave();
  bool Photograph(const Window& window, const char* name);
  bool Keep(const Picture& picture, const char* name);
  bool Fail(const std::string& what) const;

  const Arguments& m_arguments;
  Program m_program;
  Window m_main;
  Window m_report;
  Window m_upload;
};

bool Drive::Run() {
  if (!m_program.IsStarted()) return Fail("the program " + m_arguments.program + " could not be started");
  if (!Open()) return false;
  if (!m_arguments.orthophoto.empty() && !RunJob()) return false;
  if (!FromEnvironment("MOSAICON_FTP_HOST").empty() && !(OpenUpload() && Connect() && UploadTarget())) {
    return false;
  }
  return Leave();
}

bool Drive::RunJob() {
  return FillInForm() && WatchJob() && TakeReport() && PhotographMain();
}

// Every message box is in the way, and says why.
bool Drive::Fail(const std::string& what) const {
  std::fprintf(stderr, "drive_window: %s\n", what.c_str());
  if (const MessageBoxWindow box = FindMessageBox(m_program)) {
    std::fprintf(stderr, "drive_window: the program says: %s\n", box.Text().c_str());
  }
  if (m_program.IsStarted() && !m_program.IsRunning()) {
    std::fprintf(stderr, "drive_window: the program has ended with %lu\n", m_program.ExitCode());
  }
  return false;
}

bool Drive::Open() {
  Window form;
  WaitUntil(
      [&] {
        form = m_program.Find(kUserDataTitle);
        m_main = m_program.Find(kMainTitle);
        return form || m_main || FindMessageBox(m_program) || !m_program.IsRunning();
      },
      kStartPatience);
  if (form && !FillInUserData(form)) return Fail("the form for the user's data could not be filled in");
  if (!m_main) m_main = m_program.WaitFor(kMainTitle, kStartPatience);
  return (m_main && m_main.WaitUntilEnabled()) || Fail("the main window did not open");
}

bool Drive::FillInUserData(const Window& form) {
  for (const UserField& field : kUserFields) form.Item(field.id).SetText(field.text);
  form.Item(IDOK).Click();
  return form.WaitUntilGone();
}

// The click comes first: it leaves the field of the orthophoto, which is looked at then.
bool Drive::FillInForm() {
  const std::string web = FromEnvironment("MOSAICON_WEB_URL");
  if (!web.empty()) {
    if (!m_main.Item(IDC_WEB_OUTPUT).Check(true)) return Fail("the box of the web address cannot be ticked");
    m_main.Item(IDC_TARGET_URL)
        .SetText(web + "/" + m_arguments.target.substr(m_arguments.target.rfind('\\') + 1));
  }
  m_main.Item(IDC_ORTHOPHOTO).SetText(m_arguments.orthophoto);
  m_main.Item(IDC_MAP_TITLE).SetText(kMapTitle);
  m_main.Item(IDC_TARGET_FOLDER).SetText(m_arguments.target);
  m_main.Item(IDC_START).Click();
  const Window cancel = m_main.Item(IDC_CANCEL_JOB);
  WaitUntil([&] { return cancel.IsEnabled() || FindMessageBox(m_program) || !m_program.IsRunning(); },
            kSmallPatience);
  return cancel.IsEnabled() || Fail("the job did not start");
}

// The first picture is a safe one, in case that the job is done soon; the second shows more. The window is
// never still meanwhile.
bool Drive::WatchJob() {
  const Window label = m_main.Item(IDC_PROGRESS_LABEL);
  const Window progress = m_main.Item(IDC_PROGRESS);
  Picture picture;
  bool showsMore = false;
  WaitUntil(
      [&] {
        const bool tiling = label.Text().starts_with("Process ");
        const bool isFar = tiling && progress.Send(PBM_GETPOS) >= kWorthAPicture;
        Picture now;
        if (tiling && (picture.pixels.empty() || (isFar && !showsMore))) now = TakePicture(m_main.Place());
        m_report = m_program.Find(kReportTitle);
        if (m_report || FindMessageBox(m_program) || !m_program.IsRunning()) return true;
        if (now.pixels.empty()) return false;
        picture = std::move(now);
        showsMore = isFar;
        return false;
      },
      kJobPatience);
  if (!m_report) return Fail("the job came to no report");
  return Keep(picture, "window-working.png") || Fail("no picture of the working window could be taken");
}

bool Drive::TakeReport() {
  const std::string time = m_report.Item(IDC_WORK_TIME).Text();
  const std::string log = m_report.Item(IDC_LOG).Text();
  // Shown when a map is missing or incomplete, whatever the log says.
  const Window problems = m_report.Item(IDC_PROBLEM_COUNT);
  const std::string told =
      problems.IsVisible() ? problems.Text() + "\n" + m_report.Item(IDC_PROBLEMS).Text() : std::string();
  std::ofstream file(m_arguments.reportFile, std::ios::binary);
  file << time << "\r\n" << log;
  file.close();
  if (!file) return Fail("the report could not be written to " + m_arguments.reportFile);
  if (!Photograph(m_report, "window-report.png")) return Fail("no picture of the report could be taken");
  m_report.Item(IDOK).Click();
  if (!m_report.WaitUntilGone()) return Fail("the report did not close");
  if (!told.empty()) return Fail(told);
  if (log.find("- " + m_arguments.orthophoto + ": OK\r\n") != std::string::npos) return true;
  return Fail("the report does not say that " + m_arguments.orthophoto + " is OK:\n" + log);
}

bool Drive::PhotographMain() {
  return (m_main.WaitUntilEnabled() && Photograph(m_main, "window-done.png")) ||
         Fail("no picture of the window after the job could be taken");
}

bool Drive::OpenUpload() {
  m_main.Item(IDC_TARGET_FOLDER).SetText(m_arguments.target);
  m_main.Item(IDC_UPLOAD).Click();
  m_upload = m_program.WaitFor(kUploadTitle);
  return m_upload.Item(IDC_FTP_CONNECT).WaitUntilEnabled() || Fail("the upload dialog did not open");
}

bool Drive::Connect() {
  m_upload.Item(IDC_FTP_HOST)
      .SetText(FromEnvironment("MOSAICON_FTP_HOST") + ":" + FromEnvironment("MOSAICON_FTP_PORT"));
  m_upload.Item(IDC_FTP_USER_NAME).SetText(FromEnvironment("MOSAICON_FTP_USER"));
  m_upload.Item(IDC_FTP_PASSWORD).SetText(FromEnvironment("MOSAICON_FTP_PASSWORD"));
  if (!m_upload.Item(IDC_FTP_FIREWALL_MODE).Check(true)) return Fail("Firewall Mode cannot be ticked");
  m_upload.Item(IDC_FTP_CONNECT).Click();
  const Window upload = m_upload.Item(IDC_FTP_UPLOAD);
  WaitUntil([&] { return upload.IsEnabled() || FindMessageBox(m_program); }, kSmallPatience);
  return upload.IsEnabled() || Fail("the upload dialog did not connect");
}

bool Drive::UploadTarget() {
  const ULONGLONG start = GetTickCount64();
  m_upload.Item(IDC_FTP_UPLOAD).Click();
  // The window is not asked meanwhile: it would have to answer. A message box takes it its input.
  WaitUntil([&] { return !m_upload.IsEnabled() || !m_program.IsRunning(); }, kJobPatience);
  const MessageBoxWindow box = WaitForMessageBox(m_program);
  const auto seconds = static_cast<double>(GetTickCount64() - start) / 1000;
  // All others say more, or something else.
  if (!box || box.Text().find_first_not_of("0123456789") != box.Text().find(" file uploaded")) {
    return Fail("the upload failed");
  }
  std::printf("%s in %.1f seconds\n", box.Text().c_str(), seconds);
  std::fflush(stdout);
  if (!box.Answer(IDOK) || !m_upload.Item(IDOK).WaitUntilEnabled()) return Fail("the upload did not end");
  if (!Photograph(m_upload, "window-upload.png")) return Fail("no picture of the upload could be taken");
  m_upload.Item(IDOK).Click();
  return (m_upload.WaitUntilGone() && m_main.WaitUntilEnabled()) || Fail("the upload dialog did not close");
}

bool Drive::Leave() {
  m_main.Item(IDC_EXIT).Click();
  if (!m_program.WaitForEnd(kSmallPatience)) return Fail("the program did not end");
  return m_program.ExitCode() == 0 || Fail("the program did not end well");
}

bool Drive::Photograph(const Window& window, const char* name) {
  return Keep(TakePictureWhenStill(window.Handle()), name);
}

bool Drive::Keep(const Picture& picture, const char* name) {
  return SavePng(picture, m_arguments.pictureFolder + "\\" + name);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fprintf(stderr, "usage: drive_window PROGRAM ORTHOPHOTO TARGET REPORT_FILE PICTURE_FOLDER\n");
    return 2;
  }
  const Arguments arguments = {argv[1], argv[2], argv[3], argv[4], argv[5]};
  return Drive(arguments).Run() ? 0 : 1;
}
