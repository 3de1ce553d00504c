// What the window tells about a tool that is missing or fails, and its end while one of them works. In a
// program's folder of its own.
//
// Needs in the environment MOSAICON_FAKE_TOOL, which stands in for tools and takes its time.
#include <filesystem>

#include "ui/mosaicon_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr char kContact[] = ". Please contact Kovel Software (support@kovel-software.example)";
constexpr DWORD kClosePatience = 10000;  // ms

struct Tool {
  const char* name;
  const char* description;
};

constexpr Tool kTools[] = {{"gdal2tiles.py", "script gdal2tiles"},
                           {"gdal_translate.exe", "tool gdal_translate"},
                           {"gdalwarp.exe", "tool gdalwarp"},
                           {"python.exe", "scripts"}};

class Tools : public MosaiconTest {
 protected:
  static void SetUpTestSuite() {
    MosaiconTest::SetUpTestSuite();
    s_pFolder = std::make_unique<TemporaryFolder>();
    const std::string stage = StageFolder();
    for (const auto& entry : fs::recursive_directory_iterator(stage)) {
      const std::string copy = s_pFolder->Path() + entry.path().string().substr(stage.size());
      if (entry.is_directory()) {
        fs::create_directory(copy);
      } else if (!CreateHardLinkA(copy.c_str(), entry.path().string().c_str(), nullptr)) {
        ASSERT_TRUE(CopyFileA(entry.path().string().c_str(), copy.c_str(), TRUE)) << copy;
      }
    }
  }
  static void TearDownTestSuite() {
    MosaiconTest::TearDownTestSuite();
    s_pFolder.reset();
  }

  static std::string ToolPath(const std::string& name) { return s_pFolder->Path("gdal2tiles\\" + name); }
  static void Remove(const std::string& name) {
    ASSERT_TRUE(MoveFileA(ToolPath(name).c_str(), (ToolPath(name) + ".away").c_str()));
  }
  // The fake tool takes the place of one.
  static void Replace(const std::string& name) {
    Remove(name);
    ASSERT_TRUE(CopyFileA(PathFromEnvironment("MOSAICON_FAKE_TOOL").c_str(), ToolPath(name).c_str(), TRUE));
  }
  static void Restore(const std::string& name) {
    ASSERT_TRUE(
        MoveFileExA((ToolPath(name) + ".away").c_str(), ToolPath(name).c_str(), MOVEFILE_REPLACE_EXISTING));
  }

  static std::unique_ptr<TemporaryFolder> s_pFolder;
};

std::unique_ptr<TemporaryFolder> Tools::s_pFolder;

TEST_F(Tools, AreMissedOneByOne) {
  ASSERT_TRUE(Restart("", s_pFolder->Path("Mosaicon.exe")));
  FillIn({.orthophoto = MakeOrthophoto("a.tif"), .target = Path("out")});
  for (const Tool& tool : kTools) {
    Remove(tool.name);
    PressStart();
    EXPECT_EQ(NextMessage(),
              (Told{std::string("Unable to find the process data ") + tool.description + kContact,
                    BoxIcon::kInformation}));
    EXPECT_TRUE(IsSilent()) << tool.name;
    EXPECT_FALSE(IsWorking());
    Restore(tool.name);
  }
  EXPECT_FALSE(FileExists(Path("out")));
  const auto report = RunJob({.orthophoto = Path("a.tif"), .target = Path("out")});
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- " + Path("a.tif") + ": OK\r\n");
  EXPECT_EQ(report->problemCount + report->problems, "") << "all is there";
}

// The log calls the map OK all the same; below it is what is missing.
TEST_F(Tools, ThatDoNothingAreToldInTheReport) {
  Replace("python.exe");
  SetEnvironmentVariableA("FAKE_TOOL_CALLS", Path("calls").c_str());
  SetEnvironmentVariableA("FAKE_TOOL_MILLISECONDS", "0");
  ASSERT_TRUE(Restart("", s_pFolder->Path("Mosaicon.exe")));
  const auto report = RunJob({.orthophoto = MakeOrthophoto("a.tif"), .target = Path("out")});
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- " + Path("a.tif") + ": OK\r\n");
  EXPECT_EQ(report->problemCount, "The map is missing or incomplete:");
  EXPECT_EQ(report->problems, Path("a.tif") + ": the tiler did not start or was ended from outside\r\n");
  StopProgram();
  Restore("python.exe");
}

TEST_F(Tools, ThatFailAreToldWithTheReasonOfEachAndTheirLog) {
  ASSERT_TRUE(Restart("", s_pFolder->Path("Mosaicon.exe")));
  ASSERT_TRUE(CreateDirectoryA(Path("in").c_str(), nullptr));
  MakeOrthophoto("in\\a.tif");
  RasterRecipe recipe;
  recipe.bands = 6;
  MakeRaster(Path("in\\b.tif"), recipe);
  const auto report = RunJob({.orthophoto = Path("in"), .target = Path("out"), .folderMode = true});
  ASSERT_TRUE(report);
  EXPECT_EQ(report->log, "- " + Path("in\\a.tif") + ": OK\r\n- " + Path("in\\b.tif") + ": OK\r\n");
  EXPECT_EQ(report->problemCount, "1 of 2 maps is missing or incomplete:");
  const std::string begin = Path("in\\b.tif") + ": the image ";
  EXPECT_EQ(report->problems.substr(0, begin.size()), begin) << report->problems;
  const std::string details = "\r\nDetails are in ";
  const size_t place = report->problems.find(details);
  ASSERT_NE(place, std::string::npos) << report->problems;
  std::string log = report->problems.substr(place + details.size());
  ASSERT_TRUE(log.ends_with(".log\r\n")) << log;
  log.resize(log.size() - 2);
  EXPECT_NE(ReadFile(log).find("RESULT FAILED the image "), std::string::npos);
  StopProgram();
  EXPECT_TRUE(FileExists(log)) << "it outlives the program";
  EXPECT_TRUE(DeleteFileA(log.c_str()));
}

class SlowTool : public Tools, public testing::WithParamInterface<const char*> {};

TEST_P(SlowTool, EndsWithTheWindow) {
  Replace(GetParam());
  SetEnvironmentVariableA("FAKE_TOOL_CALLS", Path("calls").c_str());
  SetEnvironmentVariableA("FAKE_TOOL_MILLISECONDS", "600000");
  ASSERT_TRUE(Restart("", s_pFolder->Path("Mosaicon.exe")));
  RasterRecipe recipe;
  recipe.epsg = 3003;
  recipe.geoTransform = {1500000, 1.2, 0, 4983000, 0, -1.2};
  MakeRaster(Path("grid.tif"), recipe);
  FillIn({.orthophoto = Path("grid.tif"), .target = Path("out")});
  PressStart();
  ASSERT_TRUE(WaitUntil([this] { return FileExists(Path("calls")); }));
  EXPECT_EQ(RunningTools(), std::vector<std::string>{GetParam()});
  // Only the script can be aborted.
  Item(IDC_CANCEL_JOB).Click();
  EXPECT_TRUE(IsSilent());
  EXPECT_TRUE(IsWorking());
  Main().Post(WM_CLOSE);
  EXPECT_TRUE(Running().WaitForEnd(kClosePatience));
  EXPECT_EQ(Running().ExitCode(), 0U);
  EXPECT_TRUE(WaitUntil([] { return RunningTools().empty(); }));
  StopProgram();
  Restore(GetParam());
}

INSTANTIATE_TEST_SUITE_P(EachOfTwo, SlowTool, testing::Values("gdal_translate.exe", "gdalwarp.exe"));

}  // namespace
