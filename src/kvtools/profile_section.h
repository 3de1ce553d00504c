// One section of the user's settings, for texts of a known greatest length. Not for what must not stay in
// memory, such as a password. Portable; threads as for the profile functions.
#ifndef MOSAICON_KVTOOLS_PROFILE_SECTION_H_
#define MOSAICON_KVTOOLS_PROFILE_SECTION_H_

#include <string>

#include "kvtools/kvtools.h"

class ProfileSection {
 public:
  // name must outlive it. Texts of size characters and more are cut when they are loaded.
  constexpr ProfileSection(const char* name, int size) : m_name(name), m_nSize(size) {}

  std::string Load(const char* key, const char* defaultValue = "") const {
    std::string text(static_cast<size_t>(m_nSize), '\0');
    const int length = KVT_GetUserProfileString(m_name, key, defaultValue, text.data(), m_nSize);
    text.resize(static_cast<size_t>(length));
    return text;
  }
  void Save(const char* key, const std::string& value) const {
    KVT_WriteUserProfileString(m_name, key, value.c_str());
  }

 private:
  const char* m_name;
  int m_nSize;
};

#endif  // MOSAICON_KVTOOLS_PROFILE_SECTION_H_
