// The properties of a report in memory that another process reads, also when this one crashed in the
// middle of a change: a change is made in a copy, and one store makes the copy the valid one.
//
// Names and values stand one after the other, each with its terminator. Portable. Writers take turns
// by a lock of their own; readers need none.
#ifndef MOSAICON_CRASHRPT_PROPERTY_AREA_H_
#define MOSAICON_CRASHRPT_PROPERTY_AREA_H_

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr uint32_t kPropertyRoom = 32 * 1024;

struct Property {
  std::string name;
  std::string value;
  bool operator==(const Property&) const = default;
};

// All zero is a valid area without properties.
struct PropertyArea {
  struct Copy {
    uint32_t used;
    char text[kPropertyRoom];
  };
  Copy copies[2];
  std::atomic<uint32_t> valid;  // which one
};

// Adds the property, or replaces the one of that name. Returns false and changes nothing when there is
// no room.
bool SetProperty(PropertyArea& area, const char* name, const char* value);

// What an area holds, in the order in which it was set; nothing when it is not well-formed.
std::vector<Property> GetProperties(const PropertyArea& area);

#endif  // MOSAICON_CRASHRPT_PROPERTY_AREA_H_
