// Fixture of the tests of the real window. Mosaicon is started when a test first asks for it and serves
// all tests of a suite, because a start takes seconds; after a test that failed the next one gets a new
// one. The profile, in a registry that only this test program sees, is emptied but for the user's data.
//
// Needs in the environment MOSAICON_STAGE, the program's folder.
#ifndef MOSAICON_TESTS_UI_MOSAICON_FIXTURE_H_
#define MOSAICON_TESTS_UI_MOSAICON_FIXTURE_H_

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "resources/resource.h"
#include "support/rasters.h"
#include "support/temporary_folder.h"
#include "ui/message_box.h"
#include "ui/window_driver.h"

inline constexpr char kMainTitle[] = "Kovel Software - Mosaicon";
inline constexpr char kReportTitle[] = "Process Completed";
inline constexpr DWORD kJobPatience = 60000;  // ms

// A path from the environment as Windows names it, whoever has set it; the program's folder, and the
// program in it.
std::string PathFromEnvironment(const char* variable);
std::string StageFolder();
std::string StageProgram();

// One value below HKCU\Software\<maker>\Mosaicon\<section>; nothing when there is none.
std::optional<std::string> ReadProfile(const std::string& section, const std::string& key);
void WriteProfile(const std::string& section, const std::string& key, const std::string& value);
void EmptyProfile();

// A message box to compare with.
struct Told {
  std::string text;
  BoxIcon icon;
  std::vector<int> buttons = {IDOK};
  std::string caption = "Mosaicon";

  bool operator==(const Told&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Told& told);

struct Report {
  std::string workTime;
  std::string log;
  std::string copyHint;
  std::string webHint;
  bool hintsAreShown = false;
  std::string problemCount;  // both empty when they are not shown
  std::string problems;
};

// What the form is filled in with; the rest of it is as it was.
struct JobForm {
  std::string orthophoto = {};
  std::string target = {};
  std::string title = {};
  bool folderMode = false;
  std::optional<std::string> url = {};  // the web box is ticked when there is one
};

class MosaiconTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { s_pProgram.reset(); }
  static void TearDownTestSuite() { s_pProgram.reset(); }
  void SetUp() override;
  void TearDown() override;

  // Starts the program anew; false when its window does not open.
  bool Restart(const std::string& arguments = "", const std::string& path = StageProgram());
  // Takes a program that was started otherwise, with a window that is to open.
  bool Use(std::unique_ptr<Program> program);
  // Starts it where there is none.
  const Program& Running();
  static void StopProgram() { s_pProgram.reset(); }
  Window Main();
  Window Item(int id) { return Main().Item(id); }

  void FillIn(const JobForm& form);
  void PressStart() { Item(IDC_START).Click(); }
  // What the next message box says; it is answered.
  Told NextMessage(int answer = IDOK);
  // Whether the program has nothing to say to what was done to it. Moves the focus to About.
  bool IsSilent();
  bool IsWorking();
  // Waits until the script of an orthophoto is at work.
  bool WaitUntilTiling();
  // Waits for the report, reads and closes it; nothing when there is none.
  std::optional<Report> TakeReport();
  std::optional<Report> RunJob(const JobForm& form);

  // A small orthophoto in its UTM zone, in the folder of this test.
  std::string MakeOrthophoto(const std::string& name, int width = 120, int height = 90);
  // One that keeps a tiler busy for a minute.
  std::string MakeLargeOrthophoto();
  std::string Path(const std::string& name = "") const { return m_folder.Path(name); }

 private:
  static std::unique_ptr<Program> s_pProgram;
  TemporaryFolder m_folder;
};

// What can be read of a file that may vanish meanwhile, as those of a process do when it ends.
std::string ReadWhileThere(const std::string& path);

// The tools of this test program's jobs that are at work, those of a Linux host included.
std::vector<std::string> RunningTools();

#endif  // MOSAICON_TESTS_UI_MOSAICON_FIXTURE_H_
