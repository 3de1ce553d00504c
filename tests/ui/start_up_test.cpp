// How the program starts: what it asks, what it wants of crash reporting, and what it shows. In a program's
// folder of its own, where another DLL stands in for crashrpt.dll and writes down what is called.
//
// Needs in the environment MOSAICON_RECORDER, that DLL, and MOSAICON_THROWING_APP, another program.
#include <algorithm>
#include <filesystem>
#include <sstream>

#include "handles/drawing_handles.h"
#include "maker.h"
#include "ui/mosaicon_fixture.h"
#include "ui/screenshot.h"

namespace {

namespace fs = std::filesystem;

constexpr char kUserDataTitle[] = "User Data - ";
constexpr char kSplashClass[] = "KVToolsSplashScreen";
constexpr DWORD kSplashTime = 1000;  // ms
using Strings = std::vector<std::string>;

class StartUp : public MosaiconTest {
 protected:
  static void SetUpTestSuite() {
    MosaiconTest::SetUpTestSuite();
    s_pFolder = std::make_unique<TemporaryFolder>();
    for (const auto& entry : fs::directory_iterator(StageFolder())) {
      if (entry.is_directory()) continue;
      const std::string name = entry.path().filename().string();
      const std::string source =
          name == "crashrpt.dll" ? PathFromEnvironment("MOSAICON_RECORDER") : entry.path().string();
      ASSERT_TRUE(CopyFileA(source.c_str(), s_pFolder->Path(name).c_str(), TRUE)) << source;
    }
  }
  static void TearDownTestSuite() {
    MosaiconTest::TearDownTestSuite();
    s_pFolder.reset();
  }

  void SetUp() override {
    MosaiconTest::SetUp();
    SetEnvironmentVariableA("CRASHRPT_RECORD", RecordPath().c_str());
  }
  void TearDown() override {
    StopProgram();
    SetEnvironmentVariableA("CRASHRPT_REFUSE", nullptr);
    MosaiconTest::TearDown();
  }

  static std::string ProgramPath() { return s_pFolder->Path("Mosaicon.exe"); }
  std::string RecordPath() const { return Path("record.txt"); }
  bool IsRecorded() const { return FileExists(RecordPath()); }
  Strings Record() const {
    std::istringstream text(ReadFile(RecordPath()));
    Strings lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

 private:
  static std::unique_ptr<TemporaryFolder> s_pFolder;
};

std::unique_ptr<TemporaryFolder> StartUp::s_pFolder;

TEST_F(StartUp, InstallsCrashReportingAsTheMakerWantsIt) {
  ASSERT_TRUE(Restart("", ProgramPath()));
  const Strings expected = {"size 184",
                            "name Mosaicon",
                            "version 1.0.0",
                            std::string("to ") + kSupportEmail,
                            "subject Mosaicon (ver. 1.0.0) Error report",
                            std::string("url ") + kMakerWebAddress,
                            "callback 1",
                            "priorities 3 2 1 0 0",
                            "flags 5FFF",
                            std::string("privacy ") + kMakerWebAddress,
                            "rest zero",
                            "picture 0"};
  Strings record = Record();
  ASSERT_GT(record.size(), expected.size());
  record.resize(expected.size());
  EXPECT_EQ(record, expected);
}

TEST_F(StartUp, AddsThePropertiesInTheirOrder) {
  ASSERT_TRUE(Restart("", ProgramPath()));
  Strings names;
  size_t adapters = 0;
  for (const std::string& line : Record()) {
    if (!line.starts_with("property ")) continue;
    const std::string name = line.substr(9, line.find('=') - 9);
    if (name == "Graphic_Adapter_" + std::to_string(adapters)) {
      EXPECT_EQ(names.size(), 5U) << "between the computer and the user";
      ++adapters;
    } else {
      names.push_back(name);
    }
  }
  EXPECT_EQ(names, (Strings{"ExceptionTypeMeaning", "OS_Info", "Screen_Pixel_Depth", "Screen_Resolution",
                            "RAM_Info", "User Data - Name", "User Data - Surname", "User Data - email",
                            "User Data - company", "User Data - telephone"}));
}

TEST(MakersAddresses, AreEncrypted) {
  EXPECT_TRUE(std::string(kMakerWebAddress).starts_with("https://"));
  EXPECT_TRUE(std::string(kUpdateAddress).starts_with("https://"));
}

TEST_F(StartUp, EndsWithTheLibrarysMessageWhenReportingCannotBeInstalled) {
  SetEnvironmentVariableA("CRASHRPT_REFUSE", "There is no room.");
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  const HANDLE output = CreateFileA(Path("output.txt").c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable,
                                    CREATE_NEW, 0, nullptr);
  const auto program = Program::FromCommandLine("\"" + ProgramPath() + "\"", output);
  CloseHandle(output);
  const MessageBoxWindow box = WaitForMessageBox(*program);
  ASSERT_TRUE(box);
  EXPECT_EQ(box.Text(), "There is no room.");
  EXPECT_EQ(box.Buttons(), std::vector<int>{IDOK});
  EXPECT_EQ(program->Windows().size(), 1U) << "no splash screen, no main dialog";
  EXPECT_TRUE(box.Answer(IDOK));
  ASSERT_TRUE(program->WaitForEnd());
  std::string told = ReadFile(Path("output.txt"));
  std::erase(told, '\r');
  EXPECT_EQ(told, "There is no room.\n");
  const Strings record = Record();
  ASSERT_FALSE(record.empty());
  EXPECT_EQ(record.back(), "error 512") << "neither picture nor properties";
}

TEST_F(StartUp, AsksForMissingDataBeforeAnythingElse) {
  WriteProfile("UserData", "UserData_EMail", "");
  WriteProfile("UserData", "UserData_Company", "Engine & Co");
  auto program = std::make_unique<Program>(ProgramPath());
  const Window form = program->WaitFor(kUserDataTitle);
  ASSERT_TRUE(form);
  EXPECT_EQ(form.Item(IDC_USER_NAME).Text(), "Ada");
  EXPECT_EQ(form.Item(IDC_USER_SURNAME).Text(), "Byron");
  EXPECT_EQ(form.Item(IDC_USER_EMAIL).Text(), "");
  EXPECT_EQ(form.Item(IDC_USER_COMPANY).Text(), "Engine & Co");
  EXPECT_FALSE(IsRecorded());
  form.Item(IDC_USER_EMAIL).SetText("ada@example.org");
  form.Item(IDOK).Click();
  ASSERT_TRUE(Use(std::move(program)));
  const Strings record = Record();
  EXPECT_NE(std::find(record.begin(), record.end(), "property User Data - email=ada@example.org"),
            record.end());
}

Window FindSplash(const Program& program) {
  for (const Window& window : program.Windows()) {
    if (window.ClassName() == kSplashClass) return window;
  }
  return Window();
}

// The picture of the program's resources with this number.
Picture PictureOf(const std::string& program, int number) {
  const HMODULE module = LoadLibraryExA(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  const GdiObject<HBITMAP> bitmap(
      static_cast<HBITMAP>(LoadImageA(module, MAKEINTRESOURCEA(number), IMAGE_BITMAP, 0, 0, 0)));
  BITMAP facts = {};
  GetObjectA(bitmap.get(), sizeof facts, &facts);
  Picture picture = {facts.bmWidth, facts.bmHeight, {}};
  picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  GetDIBits(WindowContext(nullptr).Get(), bitmap.get(), 0, static_cast<UINT>(picture.height),
            picture.pixels.data(), &info, DIB_RGB_COLORS);
  for (uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  FreeLibrary(module);
  return picture;
}

TEST_F(StartUp, ShowsTheSplashScreenForASecondBeforeTheMainDialog) {
  const ULONGLONG begin = GetTickCount64();
  auto program = std::make_unique<Program>(ProgramPath());
  Window splash;
  ASSERT_TRUE(WaitUntil([&] { return static_cast<bool>(splash = FindSplash(*program)); }));
  EXPECT_TRUE(IsRecorded()) << "crash reporting comes first";
  EXPECT_FALSE(program->Find(kMainTitle));
  const Picture expected = PictureOf(ProgramPath(), IDB_SPLASH);
  EXPECT_GT(expected.width, 0);
  EXPECT_TRUE(WaitUntil([&] { return TakePicture(splash.Place()) == expected; }, kSplashTime));
  ASSERT_TRUE(splash.WaitUntilGone());
  // Reckoned from the start of the program: nobody knows how long it was there before it was seen here.
  EXPECT_GT(GetTickCount64() - begin, kSplashTime);
  EXPECT_TRUE(Use(std::move(program)));
}

MessageBoxWindow WaitForMessageBoxOf(const Program& program, const std::string& caption) {
  WaitUntil([&] { return static_cast<bool>(FindMessageBox(program, caption)) || !program.IsRunning(); });
  return FindMessageBox(program, caption);
}

TEST(AnyProgram, TellsWhyItCannotGoOn) {
  const Program program(PathFromEnvironment("MOSAICON_THROWING_APP"));
  const MessageBoxWindow box = WaitForMessageBoxOf(program, "Throwing");
  ASSERT_TRUE(box);
  EXPECT_EQ(box.Text(), "Throwing cannot go on: no reason.");
  EXPECT_TRUE(box.Answer(IDOK));
  ASSERT_TRUE(program.WaitForEnd());
  EXPECT_EQ(program.ExitCode(), 1U);
}

}  // namespace
