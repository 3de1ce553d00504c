#include "app/user_data.h"

#include "kvtools/profile_section.h"

namespace {

constexpr ProfileSection kProfile("UserData", kUserDataBuffer);
constexpr char kName[] = "UserData_Name";
constexpr char kSurname[] = "UserData_Surname";
constexpr char kEmail[] = "UserData_EMail";
constexpr char kCompany[] = "UserData_Company";
constexpr char kTelephone[] = "UserData_Tel";

}  // namespace

UserData LoadUserData() {
  return {kProfile.Load(kName), kProfile.Load(kSurname), kProfile.Load(kEmail), kProfile.Load(kCompany),
          kProfile.Load(kTelephone)};
}

void SaveUserData(const UserData& data) {
  kProfile.Save(kName, data.name);
  kProfile.Save(kSurname, data.surname);
  kProfile.Save(kEmail, data.email);
  kProfile.Save(kCompany, data.company);
  kProfile.Save(kTelephone, data.telephone);
}
