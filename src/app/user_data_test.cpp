#include "app/user_data.h"

#include <gtest/gtest.h>

#include "kvtools/kvtools.h"

namespace {

class UserDataTest : public testing::Test {
 protected:
  void SetUp() override { SaveUserData({}); }

  static std::string Stored(const char* key) {
    char buffer[256];
    KVT_GetUserProfileString("UserData", key, "(none)", buffer, sizeof buffer);
    return buffer;
  }
};

TEST_F(UserDataTest, IsStoredUnderTheKeysThatTheProfileHasAlways) {
  SaveUserData({"Ada", "Byron", "ada@example.org", "Engine & Co", "+44 1"});
  EXPECT_EQ(Stored("UserData_Name"), "Ada");
  EXPECT_EQ(Stored("UserData_Surname"), "Byron");
  EXPECT_EQ(Stored("UserData_EMail"), "ada@example.org");
  EXPECT_EQ(Stored("UserData_Company"), "Engine & Co");
  EXPECT_EQ(Stored("UserData_Tel"), "+44 1");
}

TEST_F(UserDataTest, ComesBackAsItWasSaved) {
  SaveUserData({"Ada", "Byron", "ada@example.org", "Engine & Co", "+44 1"});
  const UserData data = LoadUserData();
  EXPECT_EQ(data.name, "Ada");
  EXPECT_EQ(data.surname, "Byron");
  EXPECT_EQ(data.email, "ada@example.org");
  EXPECT_EQ(data.company, "Engine & Co");
  EXPECT_EQ(data.telephone, "+44 1");
}

TEST_F(UserDataTest, IsReadIntoSixtyFourBytes) {
  SaveUserData({std::string(100, 'n'), "s", "e", "", ""});
  EXPECT_EQ(LoadUserData().name, std::string(63, 'n'));
}

TEST_F(UserDataTest, IsCompleteWithNameSurnameAndEmail) {
  EXPECT_TRUE((UserData{"n", "s", "e", "", ""}).IsComplete());
  EXPECT_FALSE((UserData{"", "s", "e", "c", "t"}).IsComplete());
  EXPECT_FALSE((UserData{"n", "", "e", "c", "t"}).IsComplete());
  EXPECT_FALSE((UserData{"n", "s", "", "c", "t"}).IsComplete());
  EXPECT_FALSE(LoadUserData().IsComplete());
}

}  // namespace
