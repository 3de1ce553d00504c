// The upload dialog against a real server, which MOSAICON_FTP_HOST, _PORT, _USER, _PASSWORD and _ROOT
// tell of.
#include <cstdlib>

#include "ui/publish_fixture.h"
#include "ui/screenshot.h"

namespace {

std::string FromEnvironment(const char* variable) {
  char value[MAX_PATH] = "";
  EXPECT_NE(GetEnvironmentVariableA(variable, value, sizeof value), 0U) << variable << " is not set";
  return value;
}

Login ServerLogin() {
  return {.host = FromEnvironment("MOSAICON_FTP_HOST") + ":" + FromEnvironment("MOSAICON_FTP_PORT"),
          .user = FromEnvironment("MOSAICON_FTP_USER"),
          .password = FromEnvironment("MOSAICON_FTP_PASSWORD")};
}

std::string Remote(const std::string& name = "") {
  return PathFromEnvironment("MOSAICON_FTP_ROOT") + "\\" + name;
}

TEST_F(PublishTest, Shot) {
  WriteFileIn(Path("my ortho\\a b.png"), "x");
  ASSERT_TRUE(OpenUpload(Path("my ortho")));
  SavePng(TakePictureWhenStill(Ftp().Handle()), "Z:\\tmp\\shot1.png");
  ASSERT_TRUE(Connect(ServerLogin()));
  FtpItem(IDC_FTP_UPLOAD).Click();
  EXPECT_EQ(NextMessage().text, "1 file uploaded");
  SavePng(TakePictureWhenStill(Ftp().Handle()), "Z:\\tmp\\shot2.png");
  EXPECT_EQ(ReadTree(Remote("my_ortho")), ReadTreeAsUploaded(Path("my ortho")));
}

}  // namespace
