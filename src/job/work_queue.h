// A queue of work items with one thread of its own: first in, first out. Made and destroyed around
// each run of a tool. The queue never deletes an item; items see to themselves.
//
// Create, InsertWorkItem and Destroy belong to the user-interface thread.
#ifndef MOSAICON_JOB_WORK_QUEUE_H_
#define MOSAICON_JOB_WORK_QUEUE_H_

#include <windows.h>

#include <deque>
#include <memory>

#include "job/work_item.h"

class CWorkQueue {
 public:
  CWorkQueue() = default;
  CWorkQueue(const CWorkQueue&) = delete;
  CWorkQueue& operator=(const CWorkQueue&) = delete;
  // Ends no thread and closes no handle: Destroy does, and comes first.
  virtual ~CWorkQueue() = default;

  // Starts the thread. On failure everything is released again and the result is false.
  bool Create();
  // Appends an item and wakes the thread; false when it could not be woken.
  bool InsertWorkItem(CWorkItemBase* pWorkItem);
  // Lets the running item finish, ends the thread, then calls Abort on every item still queued,
  // front first, and releases everything. Does nothing at all when the thread cannot be told to end.
  void Destroy();

 private:
  struct ThreadContext;
  static unsigned __stdcall ThreadProcedure(void* pContext) noexcept;
  void RunThread(void* pThreadData);
  bool StartThreads();
  CWorkItemBase* TakeFront();

  std::unique_ptr<HANDLE[]> m_phThreads;
  DWORD m_dwThreads = 0;
  HANDLE m_hAbortEvent = nullptr;
  HANDLE m_hSemaphore = nullptr;
  CRITICAL_SECTION m_csQueue = {};
  std::unique_ptr<std::deque<CWorkItemBase*>> m_pQueue;
};

#endif  // MOSAICON_JOB_WORK_QUEUE_H_
