#include "crashrpt/hand_over.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>

#include "crashrpt/crashrpt.h"

namespace {

TEST(CrashInstallInfo, HasTheLayoutThatProgramsWereBuiltWith) {
  EXPECT_EQ(sizeof(CrashInstallInfo), 184U);
  EXPECT_EQ(offsetof(CrashInstallInfo, size), 0U);
  EXPECT_EQ(offsetof(CrashInstallInfo, applicationName), 8U);
  EXPECT_EQ(offsetof(CrashInstallInfo, callback), 56U);
  EXPECT_EQ(offsetof(CrashInstallInfo, priorities), 64U);
  EXPECT_EQ(offsetof(CrashInstallInfo, flags), 84U);
  EXPECT_EQ(offsetof(CrashInstallInfo, privacyPolicyUrl), 88U);
  EXPECT_EQ(offsetof(CrashInstallInfo, dumpType), 104U);
  EXPECT_EQ(offsetof(CrashInstallInfo, reportFolder), 112U);
  EXPECT_EQ(offsetof(CrashInstallInfo, restartTimeout), 176U);
  EXPECT_EQ(offsetof(CrashInstallInfo, reportsPerDay), 180U);
}

class FilledIn : public testing::Test {
 protected:
  FilledIn() { m_info.size = sizeof m_info; }
  bool Fill() { return FillHandOver(m_info, "program", *m_handOver, m_strError); }

  CrashInstallInfo m_info = {};
  std::unique_ptr<HandOver> m_handOver = std::make_unique<HandOver>();
  std::string m_strError;
};

TEST_F(FilledIn, HasDefaults) {
  ASSERT_TRUE(Fill()) << m_strError;
  EXPECT_STREQ(m_handOver->applicationName, "program");
  EXPECT_STREQ(m_handOver->applicationVersion, "");
  EXPECT_STREQ(m_handOver->emailSubject, "program crash report");
  EXPECT_STREQ(m_handOver->uploadUrl, "");
  EXPECT_STREQ(m_handOver->reportFolder, "");
  EXPECT_EQ(m_handOver->dumpType, 0U);
  EXPECT_EQ(m_handOver->withPicture, 0U);
  EXPECT_TRUE(IsSound(*m_handOver, sizeof(HandOver)));
}

TEST_F(FilledIn, TakesWhatIsGiven) {
  m_info.applicationName = "Mosaicon";
  m_info.applicationVersion = "1.0";
  m_info.emailTo = "a@b.example";
  m_info.emailText = "text";
  m_info.uploadUrl = "https://c.example/";
  m_info.privacyPolicyUrl = "https://d.example/";
  m_info.debugHelpDll = "C:\\dbghelp.dll";
  m_info.reportFolder = "C:\\reports";
  m_info.dumpType = 2;
  ASSERT_TRUE(Fill()) << m_strError;
  EXPECT_STREQ(m_handOver->applicationName, "Mosaicon");
  EXPECT_STREQ(m_handOver->applicationVersion, "1.0");
  EXPECT_STREQ(m_handOver->emailTo, "a@b.example");
  EXPECT_STREQ(m_handOver->emailSubject, "Mosaicon 1.0 crash report");
  EXPECT_STREQ(m_handOver->emailText, "text");
  EXPECT_STREQ(m_handOver->uploadUrl, "https://c.example/");
  EXPECT_STREQ(m_handOver->privacyPolicyUrl, "https://d.example/");
  EXPECT_STREQ(m_handOver->debugHelpDll, "C:\\dbghelp.dll");
  EXPECT_STREQ(m_handOver->reportFolder, "C:\\reports");
  EXPECT_EQ(m_handOver->dumpType, 2U);
}

TEST_F(FilledIn, TakesTheGivenSubject) {
  m_info.emailSubject = "subject";
  ASSERT_TRUE(Fill()) << m_strError;
  EXPECT_STREQ(m_handOver->emailSubject, "subject");
}

TEST_F(FilledIn, HasNoAddressWhenOnlyMailMayBeUsed) {
  m_info.uploadUrl = "https://c.example/";
  m_info.priorities[CRASH_WAY_SMTP] = 1;
  ASSERT_TRUE(Fill());
  EXPECT_STREQ(m_handOver->uploadUrl, "");
  m_info.priorities[CRASH_WAY_HTTP] = -3;
  ASSERT_TRUE(Fill());
  EXPECT_STREQ(m_handOver->uploadUrl, "");
  m_info.priorities[CRASH_WAY_HTTP] = 1;
  ASSERT_TRUE(Fill());
  EXPECT_STREQ(m_handOver->uploadUrl, "https://c.example/");
}

TEST_F(FilledIn, HasNoAddressThatOthersCouldReadAlongAt) {
  m_info.uploadUrl = "http://c.example/";
  ASSERT_TRUE(Fill());
  EXPECT_STREQ(m_handOver->uploadUrl, "");
}

TEST_F(FilledIn, CutsNothing) {
  const std::string longest(sizeof m_handOver->applicationVersion - 1, 'v');
  const std::string tooLong = longest + "v";
  m_info.applicationVersion = longest.c_str();
  ASSERT_TRUE(Fill());
  EXPECT_EQ(m_handOver->applicationVersion, longest);
  m_info.applicationVersion = tooLong.c_str();
  EXPECT_FALSE(Fill());
  EXPECT_EQ(m_strError, "The application version is longer than 255 characters.");
}

TEST_F(FilledIn, IsUnsoundWhenDamaged) {
  ASSERT_TRUE(Fill());
  EXPECT_FALSE(IsSound(*m_handOver, sizeof(HandOver) - 1));
  std::memset(m_handOver->reportFolder, 'x', sizeof m_handOver->reportFolder);
  EXPECT_FALSE(IsSound(*m_handOver, sizeof(HandOver))) << "a text without an end";
  m_handOver->reportFolder[0] = '\0';
  EXPECT_TRUE(IsSound(*m_handOver, sizeof(HandOver)));
  m_handOver->signature = 0;
  EXPECT_FALSE(IsSound(*m_handOver, sizeof(HandOver)));
}

}  // namespace
