#ifndef MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_PROCESS_H_
#define MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_PROCESS_H_

#include <cstdint>

uintptr_t _beginthreadex(void* security, unsigned stackSize, unsigned (*procedure)(void*), void* argument,
                         unsigned flags, unsigned* id);

#endif  // MOSAICON_TESTS_SUPPORT_WIN32_ON_THREADS_PROCESS_H_
