// Who uses the program: asked for once, kept in the profile, and part of every crash report.
// Portable; text in the ANSI code page.
#ifndef MOSAICON_APP_USER_DATA_H_
#define MOSAICON_APP_USER_DATA_H_

#include <string>

// Each text is stored and read with at most this many bytes, the terminator included.
inline constexpr int kUserDataBuffer = 64;

struct UserData {
  std::string name;
  std::string surname;
  std::string email;
  std::string company;    // may be empty
  std::string telephone;  // may be empty

  // Name, surname and e-mail are there.
  bool IsComplete() const { return !name.empty() && !surname.empty() && !email.empty(); }
};

UserData LoadUserData();
void SaveUserData(const UserData& data);

#endif  // MOSAICON_APP_USER_DATA_H_
