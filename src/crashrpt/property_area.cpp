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
  if (copy.used > kPropertyRoom || (copy.used > 0 && copy.text[copy.used - 1] != '\0')) return properties;
  const char* position = copy.text;
  const char* const end = copy.text + copy.used;
  while (position != end) {
    const std::string name = position;
    position += name.size() + 1;
    if (position == end) return {};  // a name without its value
    const std::string value = position;
    position += value.size() + 1;
    properties.push_back({name, value});
  }
  return properties;
}
