#include "crashrpt/property_area.h"

#include <cstring>

namespace {

bool Append(PropertyArea::Copy& copy, const char* name, const char* value) {
  const size_t nameSize = std::strlen(name) + 1;
  const size_t valueSize = std::strlen(value) + 1;
  const size_t room = kPropertyRoom - copy.used;
  if (nameSize > room || valueSize > room - nameSize) return false;
  std::memcpy(copy.text + copy.used, name, nameSize);
  std::memcpy(copy.text + copy.used + nameSize, value, valueSize);
  copy.used += static_cast<uint32_t>(nameSize + valueSize);
  return true;
}

}  // namespace

bool SetProperty(PropertyArea& area, const char* name, const char* value) {
  const uint32_t before = area.valid.load();
  PropertyArea::Copy& changed = area.copies[1 - before];
  changed.used = 0;
  bool replaced = false;
  for (const Property& property : GetProperties(area)) {
    const bool same = property.name == name;
    replaced = replaced || same;
    if (!Append(changed, property.name.c_str(), same ? value : property.value.c_str())) return false;
  }
  if (!replaced && !Append(changed, name, value)) return false;
  area.valid.store(1 - before);
  return true;
}

std::vector<Property> GetProperties(const PropertyArea& area) {
  std::vector<Property> properties;
  const uint32_t valid = area.valid.load();
  if (valid > 1) return properties;
  const PropertyArea::Copy& copy = area.copies[valid];
  const uint32_t used = copy.used;
  if (used > kPropertyRoom) return properties;
  // A copy, because the program may be changing the area at this moment.
  const std::string texts(copy.text, used);
  size_t position = 0;
  while (position < texts.size()) {
    const size_t nameEnd = texts.find('\0', position);
    const size_t valueEnd = nameEnd != std::string::npos ? texts.find('\0', nameEnd + 1) : nameEnd;
    if (valueEnd == std::string::npos) return {};
    properties.push_back(
        {texts.substr(position, nameEnd - position), texts.substr(nameEnd + 1, valueEnd - nameEnd - 1)});
    position = valueEnd + 1;
  }
  return properties;
}
