// Sets crash reporting up for this process. Win32; user-interface thread, once.
#ifndef MOSAICON_APP_CRASH_REPORTING_H_
#define MOSAICON_APP_CRASH_REPORTING_H_

#include <string>

#include "app/user_data.h"

// From here on a crash makes a report that names the program (the file name of programPath without
// its extension), this version, the computer and the user. On failure returns false and the library's
// message.
bool InstallCrashReporting(const std::string& programPath, const std::string& version, const UserData& user,
                           std::string& message);

// From here on reports show these data of the user in the place of those before.
void ShowUserDataInReports(const UserData& user);

#endif  // MOSAICON_APP_CRASH_REPORTING_H_
