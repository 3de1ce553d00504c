// Room on a thread's stack for handling the overflow of that stack. Win32.
#ifndef MOSAICON_CRASHRPT_STACK_RESERVE_H_
#define MOSAICON_CRASHRPT_STACK_RESERVE_H_

// For the calling thread.
void ReserveStackForCrash();

#endif  // MOSAICON_CRASHRPT_STACK_RESERVE_H_
