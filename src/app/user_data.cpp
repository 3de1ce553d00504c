#include "app/user_data.h"

#include "kvtools/kvtools.h"

namespace {

constexpr char kSection[] = "UserData";
constexpr char kName[] = "UserData_Name";
constexpr char kSurname[] = "UserData_Surname";
constexpr char kEmail[] = "UserData_EMail";
constexpr char kCompany[] = "UserData_Company";
constexpr char kTelephone[] = "UserData_Tel";

std::string Load(const char* key) {
  char buffer[kUserDataBuffer];
  KVT_GetUserProfileString(kSection, key, "", buffer, kUserDataBuffer);
  return buffer;
}

void Save(const char* key, const std::string& value) {
  KVT_WriteUserProfileString(kSection, key, value.c_str());
}

}  // namespace

UserData LoadUserData() {
  return {Load(kName), Load(kSurname), Load(kEmail), Load(kCompany), Load(kTelephone)};
}

void SaveUserData(const UserData& data) {
  Save(kName, data.name);
  Save(kSurname, data.surname);
  Save(kEmail, data.email);
  Save(kCompany, data.company);
  Save(kTelephone, data.telephone);
}
