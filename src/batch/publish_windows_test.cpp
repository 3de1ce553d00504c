#include "batch/publish_windows.h"

#include <gtest/gtest.h>
#include <windows.h>

// Behind windows.h.
#include <wincred.h>

#include "files/wide_text.h"

namespace {

class StoredLoginTest : public testing::Test {
 protected:
  void SetUp() override {
    std::wstring user = WideFromUtf8("ann ä");
    std::wstring password = WideFromUtf8("geheim €");
    CREDENTIALW credential = {};
    credential.Type = CRED_TYPE_GENERIC;
    credential.TargetName = m_target.data();
    credential.UserName = user.data();
    credential.CredentialBlob = reinterpret_cast<LPBYTE>(password.data());
    credential.CredentialBlobSize = static_cast<DWORD>(password.size() * sizeof(wchar_t));
    credential.Persist = CRED_PERSIST_SESSION;
    ASSERT_TRUE(CredWriteW(&credential, 0)) << GetLastError();
  }
  void TearDown() override { CredDeleteW(m_target.c_str(), CRED_TYPE_GENERIC, 0); }

  static std::optional<StoredLogin> Find(const std::string& text) {
    mirror::PublishAddress address;
    EXPECT_EQ(mirror::ParsePublishAddress(text, address), "");
    return FindStoredLogin(address);
  }

  std::wstring m_target = L"Mosaicon/login.example.org";
};

TEST_F(StoredLoginTest, IsFoundByItsHost) {
  const auto login = Find("sftp://login.example.org/maps");
  ASSERT_TRUE(login);
  EXPECT_EQ(login->user, "ann ä");
  EXPECT_EQ(login->password, "geheim €");
  EXPECT_FALSE(Find("sftp://other.example.org/maps"));
}

TEST_F(StoredLoginTest, IsThatOfOneUser) {
  EXPECT_TRUE(Find("sftp://ann%20%C3%A4@login.example.org/"));
  EXPECT_FALSE(Find("sftp://bob@login.example.org/"));
}

TEST(PublishFromCommandLine, RefusesWrongArguments) {
  EXPECT_EQ(PublishFromCommandLine({"--publish", "nonsense://a/", "b"}), 2);
  EXPECT_EQ(PublishFromCommandLine({"--publish", "ftp://a/", "--help"}), 0);
}

}  // namespace
