#include "mirror/web_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "mirror/checksum.h"
#include "support/temporary_folder.h"

namespace mirror {

namespace {

constexpr const char* kAddress = "http://example.org/my%20maps";

class WebCheckTest : public testing::Test, public WebVisitor {
 protected:
  WebCheckTest() {
    Put("18/1.png", "image/png");
    Put("a name.jpg", "image/jpeg");
    Put("doc.kml", "application/vnd.google-earth.kml+xml");
    Put("leaflet.html", "text/html; charset=utf-8");
    Put("leaflet/map.js", "application/javascript");
  }

  void Put(const std::string& name, const std::string& type) {
    const std::filesystem::path path = std::filesystem::path(m_folder.Path("map")) / name;
    std::filesystem::create_directories(path.parent_path());
    WriteFile(path.string(), name);
    m_answers[name] = {
        .status = 200, .type = type, .size = name.size(), .checksum = ChecksumOf(name), .error = ""};
  }

  WebAnswer Get(const std::string& url, std::uint64_t mostBytes) override {
    m_urls.push_back(url);
    EXPECT_GT(mostBytes, 0U);
    for (const auto& [name, answer] : m_answers) {
      if (url == std::string(kAddress) + "/" + (name == "a name.jpg" ? "a%20name.jpg" : name)) return answer;
    }
    return {.status = 404, .type = "", .size = 0, .checksum = "", .error = ""};
  }

  WebReport Check(const std::string& address = kAddress) {
    m_urls.clear();
    return CheckOnTheWeb(*this, address, ReadLocalTree(m_folder.Path("map")), [this] { return m_isStopped; });
  }

  TemporaryFolder m_folder;
  std::map<std::string, WebAnswer> m_answers;
  std::vector<std::string> m_urls;
  bool m_isStopped = false;
};

TEST_F(WebCheckTest, FindsNothingWrongWhereAllIsWell) {
  for (const char* address : {kAddress, "http://example.org/my%20maps/"}) {
    const WebReport report = Check(address);
    EXPECT_EQ(report.problems, std::vector<std::string>());
    EXPECT_EQ(report.looked, 5U);
  }
  EXPECT_EQ(m_urls.front(), std::string(kAddress) + "/doc.kml") << "what people open comes first";
}

TEST_F(WebCheckTest, NamesWhatIsWrong) {
  m_answers["doc.kml"].type = "text/plain";
  m_answers["leaflet.html"].status = 403;
  m_answers["18/1.png"].checksum = "other";
  m_answers["18/1.png"].size = 7;
  m_answers.erase("leaflet/map.js");
  m_answers["a name.jpg"] = {
      .status = 0, .type = "", .size = 0, .checksum = "", .error = "Connection refused"};
  EXPECT_EQ(Check().problems, (std::vector<std::string>{
                                  "doc.kml: the web server calls it text/plain, not "
                                  "application/vnd.google-earth.kml+xml. Apache needs the "
                                  "line: AddType application/vnd.google-earth.kml+xml .kml",
                                  "leaflet.html: the web server answers 403",
                                  "leaflet/map.js: it is not found (404); capital and small letters count",
                                  "18/1.png: the web server has another one, of 7 bytes in place of 8",
                                  "a name.jpg: Connection refused",
                              }));
}

TEST_F(WebCheckTest, TellsOfAWrongTypeOnce) {
  for (int number = 0; number < 30; ++number) Put("18/" + std::to_string(number) + ".kml", "");
  EXPECT_EQ(Check().problems.size(), 1U);
}

TEST_F(WebCheckTest, GivesUpWhereNobodyAnswers) {
  for (auto& [name, answer] : m_answers)
    answer = {.status = 0, .type = "", .size = 0, .checksum = "", .error = "no"};
  EXPECT_EQ(Check().looked, 3U);
}

TEST_F(WebCheckTest, CanBeStopped) {
  m_isStopped = true;
  const WebReport report = Check();
  EXPECT_TRUE(report.wasStopped);
  EXPECT_EQ(report.looked, 0U);
}

TEST(FilesToLookAt, AreAllDocumentsAndASampleOfTheRest) {
  LocalTree tree;
  const auto put = [&](const std::string& path) {
    tree.files.push_back({.path = path, .source = "", .state = {}});
  };
  for (int number = 100; number < 200; ++number) put("18/" + std::to_string(number) + ".png");
  put(".htaccess");
  put("doc.kml");
  put("leaflet/a.js");
  std::vector<std::string> names;
  for (const LocalFile& file : FilesToLookAt(tree, 7)) names.push_back(file.path);
  EXPECT_EQ(names, (std::vector<std::string>{"doc.kml", "leaflet/a.js", "18/100.png", "18/124.png",
                                             "18/149.png", "18/174.png", "18/199.png"}));
  EXPECT_EQ(FilesToLookAt(tree, 1000).size(), 102U);
  EXPECT_EQ(FilesToLookAt({}, 7).size(), 0U);
}

TEST(WebAddress, IsOneOfHttp) {
  EXPECT_EQ(FindWebAddressProblem("https://example.org/maps"), "");
  EXPECT_EQ(FindWebAddressProblem("HTTP://example.org"), "");
  EXPECT_EQ(FindWebAddressProblem("ftp://example.org"), "a web address begins with http:// or https://");
  EXPECT_EQ(FindWebAddressProblem("http://example.org/a b"), "a web address has no blanks");
}

}  // namespace

}  // namespace mirror
