// Test code: real crashes of all kinds, in the calling thread. Compiled in an old language mode, which
// still has std::unexpected, and with the stack protector.
#ifndef MOSAICON_CRASHRPT_TESTING_CRASHES_H_
#define MOSAICON_CRASHRPT_TESTING_CRASHES_H_

// number: a crash type. Returns only when the crash did not come about.
void CrashBy(int number);

void OverflowStack();
void ThrowToNobody();
void DivideByZero();
// An exception of somebody's own, which no instruction repeats.
void RaiseOwnException();

#endif  // MOSAICON_CRASHRPT_TESTING_CRASHES_H_
