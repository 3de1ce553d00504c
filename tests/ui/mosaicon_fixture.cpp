#include "ui/mosaicon_fixture.h"

#include <algorithm>
#include <iostream>

#include "maker.h"

namespace {

constexpr DWORD kStartPatience = 60000;  // ms; the machine may have much to do
constexpr int kLargeSide = 40000;        // pixels

std::string ProfilePath(const std::string& section) {
  return std::string("Software\\") + kMakerName + "\\Mosaicon\\" + section;
}

}  // namespace

std::string PathFromEnvironment(const char* variable) {
  char value[MAX_PATH] = "";
  EXPECT_NE(GetEnvironmentVariableA(variable, value, sizeof value), 0U) << variable << " is not set";
  std::string path = value;
  // As a Linux host writes it.
  if (path.starts_with("/")) path = "Z:" + path;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

std::string StageFolder() {
  return PathFromEnvironment("MOSAICON_STAGE");
}

std::string StageProgram() {
  return StageFolder() + "\\Mosaicon.exe";
}

std::optional<std::string> ReadProfile(const std::string& section, const std::string& key) {
  char value[4096] = "";
  DWORD size = sizeof value;
  if (RegGetValueA(HKEY_CURRENT_USER, ProfilePath(section).c_str(), key.c_str(), RRF_RT_REG_SZ, nullptr,
                   value, &size) != ERROR_SUCCESS) {
    return {};
  }
  return value;
}

void WriteProfile(const std::string& section, const std::string& key, const std::string& value) {
  EXPECT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, ProfilePath(section).c_str(), key.c_str(), REG_SZ,
                            value.c_str(), static_cast<DWORD>(value.size() + 1)),
            ERROR_SUCCESS);
}

void EmptyProfile() {
  RegDeleteTreeA(HKEY_CURRENT_USER, (std::string("Software\\") + kMakerName).c_str());
}

std::ostream& operator<<(std::ostream& out, const Told& told) {
  out << '"' << told.text << "\" under \"" << told.caption << "\" with icon " << static_cast<int>(told.icon)
      << " and buttons";
  for (const int button : told.buttons) out << ' ' << button;
  return out;
}

std::unique_ptr<Program> MosaiconTest::s_pProgram;

void MosaiconTest::SetUp() {
  EmptyProfile();
  WriteProfile("UserData", "UserData_Name", "Ada");
  WriteProfile("UserData", "UserData_Surname", "Byron");
  WriteProfile("UserData", "UserData_EMail", "ada@example.org");
}

void MosaiconTest::TearDown() {
  if (HasFailure()) StopProgram();
}

bool MosaiconTest::Restart(const std::string& arguments, const std::string& path) {
  StopProgram();
  return Use(std::make_unique<Program>(path, arguments));
}

bool MosaiconTest::Use(std::unique_ptr<Program> program) {
  s_pProgram = std::move(program);
  return s_pProgram->WaitFor(kMainTitle, kStartPatience).WaitUntilEnabled();
}

const Program& MosaiconTest::Running() {
  if (s_pProgram == nullptr) {
    EXPECT_TRUE(Restart()) << "Mosaicon did not open its window";
  }
  return *s_pProgram;
}

Window MosaiconTest::Main() {
  return Running().Find(kMainTitle);
}

void MosaiconTest::FillIn(const JobForm& form) {
  EXPECT_TRUE(Item(IDC_PICK_FOLDER).Check(form.folderMode));
  EXPECT_TRUE(Item(IDC_WEB_OUTPUT).Check(form.url.has_value()));
  Item(IDC_ORTHOPHOTO).SetText(form.orthophoto);
  Item(IDC_TARGET_FOLDER).SetText(form.target);
  Item(IDC_MAP_TITLE).SetText(form.title);
  Item(IDC_TARGET_URL).SetText(form.url.value_or(""));
}

Told MosaiconTest::NextMessage(int answer) {
  const MessageBoxWindow box = WaitForMessageBox(Running());
  EXPECT_TRUE(box) << "no message came";
  const Told told = {box.Text(), box.Icon(), box.Buttons(), box.Frame().Text()};
  EXPECT_TRUE(box.Answer(answer)) << told << " could not be answered";
  return told;
}

// Posted messages are served one after the other: when the focus has moved twice, all that was posted
// before, and all that serving it has posted, is done.
bool MosaiconTest::IsSilent() {
  return Item(IDC_HELP_INPUT_OUTPUT).TakeFocus() && Item(IDC_ABOUT).TakeFocus() && Main().IsEnabled() &&
         !FindMessageBox(Running());
}

bool MosaiconTest::IsWorking() {
  return Item(IDC_CANCEL_JOB).IsEnabled();
}

bool MosaiconTest::WaitUntilTiling() {
  return WaitUntil([this] {
    return IsWorking() && Item(IDC_PROGRESS_LABEL).Text().starts_with("Process ") && !RunningTools().empty();
  });
}

std::optional<Report> MosaiconTest::TakeReport() {
  const Program& program = Running();
  Window dialog;
  MessageBoxWindow box;
  WaitUntil(
      [&] {
        dialog = program.Find(kReportTitle);
        box = FindMessageBox(program);
        return dialog || box || !program.IsRunning();
      },
      kJobPatience);
  if (!dialog) {
    std::cout << "No report came; the program says \"" << box.Text() << "\".\n";
    return {};
  }
  // It fills itself in before it is shown.
  const auto shownText = [&](int id) {
    return dialog.Item(id).IsVisible() ? dialog.Item(id).Text() : std::string();
  };
  const Report report = {dialog.Item(IDC_WORK_TIME).Text(),
                         dialog.Item(IDC_LOG).Text(),
                         dialog.Item(IDC_COPY_HINT).Text(),
                         dialog.Item(IDC_WEB_HINT).Text(),
                         dialog.Item(IDC_COPY_HINT).IsVisible() || dialog.Item(IDC_WEB_HINT).IsVisible(),
                         shownText(IDC_PROBLEM_COUNT),
                         shownText(IDC_PROBLEMS)};
  EXPECT_EQ(dialog.Text(), kReportTitle);
  dialog.Item(IDOK).Click();
  EXPECT_TRUE(dialog.WaitUntilGone());
  EXPECT_TRUE(Main().WaitUntilEnabled());
  return report;
}

std::optional<Report> MosaiconTest::RunJob(const JobForm& form) {
  FillIn(form);
  PressStart();
  return TakeReport();
}

std::string MosaiconTest::MakeOrthophoto(const std::string& name, int width, int height) {
  RasterRecipe recipe;
  recipe.width = width;
  recipe.height = height;
  const std::string path = Path(name);
  MakeRaster(path, recipe);
  return path;
}

std::string MosaiconTest::MakeLargeOrthophoto() {
  RasterRecipe recipe;
  recipe.width = recipe.height = kLargeSide;
  const std::string path = Path("large.tif");
  MakeEmptyRaster(path, recipe);
  return path;
}
