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
// Crashes with a lock that everything needs that allocates memory, or loads a DLL or looks into one.
void CrashHoldingHeap();
void CrashHoldingLoader();
// As Windows does when it finds the heap damaged: with its lock, and without asking the process's filter.
void ReportDamagedHeap();

#endif  // MOSAICON_CRASHRPT_TESTING_CRASHES_H_
