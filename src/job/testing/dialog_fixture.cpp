#include "job/testing/dialog_fixture.h"

#include "job/georeference.h"
#include "job/preview_image.h"
#include "kvtools/kvtools.h"

namespace {

constexpr char kZone[] = "EPSG:32632";
constexpr char kOrthophoto[] = "orthophoto";

}  // namespace

bool ReadTifData(const std::string& path, CTifData& data) {
  if (DialogTest::s_onRead) DialogTest::s_onRead();
  if (!FileExists(path) || ReadFile(path) != kOrthophoto) return false;
  data.m_strFileName = path;
  // 600 x 500 pixels of half a metre.
  data.m_vCorners = {{0, 0, 10.39548, 50.00392, 600000, 5540000},
                     {0, 500, 10.39541, 50.00168, 600000, 5539750},
                     {600, 0, 10.39966, 50.00387, 600300, 5540000},
                     {600, 500, 10.39960, 50.00163, 600300, 5539750}};
  data.m_strTargetEPSG = kZone;
  data.m_strSourceEPSG = DialogTest::s_strSourceCode;
  return true;
}

int MakePreviewImage(const std::string& /*inputPath*/, const std::string& /*outputPath*/,
                     std::string* /*reason*/) {
  if (DialogTest::s_onPicture) DialogTest::s_onPicture();
  return 1;
}

bool IsPreviewImage(const std::string& /*path*/) {
  return true;
}

void DialogTest::SetUp() {
  ASSERT_NO_FATAL_FAILURE(ToolFixture::SetUp());
  ASSERT_TRUE(CreateDirectoryA(m_folder.Path("gdal2tiles").c_str(), nullptr));
  for (const char* name : {"python.exe", "gdal_translate.exe", "gdalwarp.exe"}) {
    ASSERT_TRUE(
        MoveFileA(m_folder.Path(name).c_str(), m_folder.Path(std::string("gdal2tiles\\") + name).c_str()));
  }
  WriteFile(m_folder.Path("gdal2tiles\\gdal2tiles.py"), "");
  s_strSourceCode = kZone;
  LetToolsTake(0);
}

void DialogTest::TearDown() {
  s_onRead = nullptr;
  s_onPicture = nullptr;
  for (const char* key : {"TargetURL", "GoogleAPI", "Resampling", "MapTitle", "TargetFolder"}) {
    KVT_WriteUserProfileString("Input", key, "");
  }
}

std::string DialogTest::MakeOrthophoto(const std::string& name) const {
  WriteFile(m_folder.Path(name), kOrthophoto);
  return m_folder.Path(name);
}

void DialogTest::LetToolsTake(DWORD milliseconds) {
  SetEnvironmentVariableA("TEST_TOOL_TALKS", std::to_string(milliseconds).c_str());
}
