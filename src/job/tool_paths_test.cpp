#include "job/tool_paths.h"

#include <gtest/gtest.h>

#include "files/testing/fake_file_system.h"
#include "support/fakes.h"

namespace {

constexpr char kFolder[] = "C:\\Apps\\Tiler\\gdal2tiles";

class Tools : public testing::Test {
 protected:
  Events m_events;
  FakeHost m_host{m_events};
  FakeFileSystem m_files;
  FakeEnvironment m_environment;
  const ToolPaths m_tools = MakeToolPaths("C:\\Apps\\Tiler\\Mosaicon.exe");
};

TEST_F(Tools, LieInAFolderBesideTheProgram) {
  EXPECT_EQ(m_tools.folder, kFolder);
  EXPECT_EQ(m_tools.engine, std::string(kFolder) + "\\mosaicon-tiler.exe");
  EXPECT_EQ(m_tools.script, std::string(kFolder) + "\\gdal2tiles.py");
  EXPECT_EQ(m_tools.translator, std::string(kFolder) + "\\gdal_translate.exe");
  EXPECT_EQ(m_tools.warper, std::string(kFolder) + "\\gdalwarp.exe");
  EXPECT_EQ(m_tools.interpreter, std::string(kFolder) + "\\python.exe");
}

TEST_F(Tools, AreNamedOneByOneWhenMissing) {
  const std::string contact = ". Please contact Kovel Software (support@kovel-software.example)";
  const std::pair<std::string, std::string> steps[] = {
      {m_tools.script, "script gdal2tiles"},
      {m_tools.translator, "tool gdal_translate"},
      {m_tools.warper, "tool gdalwarp"},
      {m_tools.interpreter, "scripts"},
  };
  for (const auto& [path, what] : steps) {
    m_events.clear();
    EXPECT_FALSE(CheckTools(m_tools, m_files, m_host));
    EXPECT_EQ(m_events, Events{"information: Unable to find the process data " + what + contact});
    m_files.Put(path);
  }
  m_events.clear();
  EXPECT_TRUE(CheckTools(m_tools, m_files, m_host));
  EXPECT_TRUE(m_events.empty());
}

TEST_F(Tools, NeedNoScriptAndInterpreterBesideTheEngine) {
  m_files.Put(m_tools.engine);
  for (const std::string& missing : {m_tools.translator, m_tools.warper}) {
    EXPECT_FALSE(CheckTools(m_tools, m_files, m_host)) << missing;
    m_files.Put(missing);
  }
  EXPECT_TRUE(CheckTools(m_tools, m_files, m_host));
  EXPECT_EQ(m_events.size(), 2U);
}

TEST_F(Tools, CutTilesByTheEngineWhereItIs) {
  TilerProgram tiler = FindTiler(m_tools, m_files);
  EXPECT_EQ(tiler.path, m_tools.interpreter);
  EXPECT_EQ(tiler.script, m_tools.script);
  m_files.Put(m_tools.engine);
  tiler = FindTiler(m_tools, m_files);
  EXPECT_EQ(tiler.path, m_tools.engine);
  EXPECT_EQ(tiler.script, "");
}

TEST_F(Tools, AreStartedByTheirNames) {
  EXPECT_EQ(NameOfTiler(m_tools.engine), "mosaicon-tiler.exe");
  EXPECT_EQ(NameOfTiler(m_tools.interpreter), "python.exe");
  EXPECT_EQ(NameOfTiler("C:\\t\\python"), "python.exe");
  EXPECT_EQ(NameOfTiler("C:\\t\\anything"), "python.exe");
}

TEST_F(Tools, AreMadeKnownByTheEnvironment) {
  m_environment.values["PATH"] = "C:\\Windows";
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  EXPECT_EQ(m_environment.order,
            (std::vector<std::string>{"GDAL_PATH", "PATH", "GDAL_DATA", "GDAL_DRIVER_PATH"}));
  EXPECT_EQ(m_environment.values["GDAL_PATH"], kFolder);
  EXPECT_EQ(m_environment.values["PATH"], std::string("C:\\Windows;") + kFolder);
  EXPECT_EQ(m_environment.values["GDAL_DATA"], std::string(kFolder) + "\\gdal-data");
  EXPECT_EQ(m_environment.values["GDAL_DRIVER_PATH"], std::string(kFolder) + "\\gdalplugins");
}

TEST_F(Tools, DoNotMakeThePathGrowFromJobToJob) {
  m_environment.values["PATH"] = "C:\\Windows";
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  const std::string once = m_environment.values["PATH"];
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  EXPECT_EQ(m_environment.values["PATH"], once);
}

TEST_F(Tools, CountAsInThePathWhenPartOfALongerName) {
  m_environment.values["PATH"] = std::string(kFolder) + "-old;C:\\Windows";
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  EXPECT_EQ(m_environment.values["PATH"], std::string(kFolder) + "-old;C:\\Windows");
}

TEST_F(Tools, LeaveAPathAloneThatWouldNotFit) {
  const size_t added = 1 + std::string(kFolder).size();
  for (const size_t length : {size_t{4096}, size_t{20000}, 32766 - added}) {
    m_environment.values["PATH"] = std::string(length, 'p');
    ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
    EXPECT_EQ(m_environment.values["PATH"], std::string(length, 'p') + ";" + kFolder);
  }
  m_environment.values["PATH"] = std::string(32767 - added, 'p');
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  EXPECT_EQ(m_environment.values["PATH"], std::string(32767 - added, 'p'));
}

TEST_F(Tools, WorkWithoutAnyPath) {
  ASSERT_TRUE(SetToolEnvironment(m_tools, m_environment, m_host));
  EXPECT_EQ(m_environment.values["PATH"], std::string(";") + kFolder);
}

TEST_F(Tools, EndTheStartWhenAVariableCannotBeSet) {
  const std::vector<std::string> names = {"GDAL_PATH", "PATH", "GDAL_DATA", "GDAL_DRIVER_PATH"};
  for (size_t i = 0; i < names.size(); ++i) {
    m_environment = FakeEnvironment();
    m_environment.refused = names[i];
    m_events.clear();
    EXPECT_FALSE(SetToolEnvironment(m_tools, m_environment, m_host));
    EXPECT_EQ(m_events, Events{"warning: Unable to set environmental variables"});
    EXPECT_EQ(m_environment.order.size(), i) << "what was set before stays set";
  }
}

}  // namespace
