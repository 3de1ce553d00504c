// In which order the user's data are written. The profile is one that takes notes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/user_data.h"
#include "kvtools/kvtools.h"

namespace {

std::vector<std::string>& Written() {
  static std::vector<std::string> written;
  return written;
}

TEST(UserData, IsWrittenInTheOrderOfTheForm) {
  SaveUserData({"n", "s", "e", "c", "t"});
  EXPECT_EQ(Written(), (std::vector<std::string>{"UserData/UserData_Name=n", "UserData/UserData_Surname=s",
                                                 "UserData/UserData_EMail=e", "UserData/UserData_Company=c",
                                                 "UserData/UserData_Tel=t"}));
}

}  // namespace

int KVT_GetUserProfileString(const char* /*section*/, const char* /*key*/, const char* /*defaultValue*/,
                             char* /*buffer*/, int /*size*/) {
  return 0;
}

bool KVT_WriteUserProfileString(const char* section, const char* key, const char* value) {
  Written().push_back(std::string(section) + "/" + key + "=" + value);
  return true;
}
