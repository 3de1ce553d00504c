// A piece of work for the one-thread queue.
#ifndef MOSAICON_JOB_WORK_ITEM_H_
#define MOSAICON_JOB_WORK_ITEM_H_

class CWorkItemBase {
 public:
  // Runs the item, on the queue's thread. pThreadData is the queue's word for that thread.
  virtual void DoWork(void* pThreadData) = 0;
  // Asks the item to stop; returns at once. Any thread.
  virtual void Abort() = 0;
  virtual ~CWorkItemBase() = default;
};

#endif  // MOSAICON_JOB_WORK_ITEM_H_
