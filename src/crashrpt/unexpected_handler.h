// std::set_unexpected, which C++17 removed from the language but not from the library: for callers in
// newer language modes.
#ifndef MOSAICON_CRASHRPT_UNEXPECTED_HANDLER_H_
#define MOSAICON_CRASHRPT_UNEXPECTED_HANDLER_H_

void SetUnexpectedHandler(void (*handler)());

#endif  // MOSAICON_CRASHRPT_UNEXPECTED_HANDLER_H_
