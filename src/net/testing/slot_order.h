// Where a class's virtual functions stand in its table. The answer is read from pointers to them, as GCC
// and Clang lay them out for x86-64 on Linux and Windows alike. Test code.
#ifndef MOSAICON_NET_TESTING_SLOT_ORDER_H_
#define MOSAICON_NET_TESTING_SLOT_ORDER_H_

#include <cstddef>
#include <cstring>
#include <numeric>
#include <vector>

// The destructor takes the first two slots.
inline constexpr int kFirstSlot = 2;

// -1 for a function that is not virtual.
template <class Function>
int Slot(Function function) {
  std::ptrdiff_t parts[2];
  static_assert(sizeof function == sizeof parts);
  std::memcpy(parts, &function, sizeof parts);
  return parts[0] % 2 == 0 ? -1 : static_cast<int>((parts[0] - 1) / static_cast<int>(sizeof(void*)));
}

template <class... Functions>
std::vector<int> Slots(Functions... functions) {
  return {Slot(functions)...};
}

inline std::vector<int> SlotsFrom(int first, int count) {
  std::vector<int> slots(static_cast<size_t>(count));
  std::iota(slots.begin(), slots.end(), first);
  return slots;
}

#endif  // MOSAICON_NET_TESTING_SLOT_ORDER_H_
