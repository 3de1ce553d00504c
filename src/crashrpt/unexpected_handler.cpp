// Compiled as C++14.
#include "unexpected_handler.h"

#include <exception>

void SetUnexpectedHandler(void (*handler)()) {
  std::set_unexpected(handler);
}
