#include "job/work_queue.h"

#include <process.h>

namespace {

constexpr DWORD kThreadCount = 1;
constexpr LONG kMaxQueued = 0x7fffffff;

}  // namespace

// Freed by the thread that it belongs to.
struct CWorkQueue::ThreadContext {
  CWorkQueue* pQueue;
  void* pThreadData;
};

bool CWorkQueue::Create() {
  m_pQueue = std::make_unique<std::deque<CWorkItemBase*>>();
  m_hSemaphore = CreateSemaphoreA(nullptr, 0, kMaxQueued, nullptr);
  if (m_hSemaphore == nullptr) {
    m_pQueue.reset();
    return false;
  }
  m_hAbortEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  if (m_hAbortEvent == nullptr) {
    CloseHandle(m_hSemaphore);
    m_hSemaphore = nullptr;
    m_pQueue.reset();
    return false;
  }
  InitializeCriticalSection(&m_csQueue);
  return StartThreads();
}

bool CWorkQueue::StartThreads() {
  m_phThreads = std::make_unique<HANDLE[]>(kThreadCount);
  for (m_dwThreads = 0; m_dwThreads < kThreadCount; ++m_dwThreads) {
    auto context = std::make_unique<ThreadContext>(ThreadContext{this, nullptr});
    const uintptr_t thread = _beginthreadex(nullptr, 0, ThreadProcedure, context.get(), 0, nullptr);
    if (thread == 0) {
      Destroy();
      return false;
    }
    (void)context.release();
    m_phThreads[m_dwThreads] = reinterpret_cast<HANDLE>(thread);
  }
  return true;
}

bool CWorkQueue::InsertWorkItem(CWorkItemBase* pWorkItem) {
  EnterCriticalSection(&m_csQueue);
  m_pQueue->push_back(pWorkItem);
  LeaveCriticalSection(&m_csQueue);
  return ReleaseSemaphore(m_hSemaphore, 1, nullptr) != FALSE;
}

void CWorkQueue::Destroy() {
  if (!SetEvent(m_hAbortEvent)) return;
  if (m_dwThreads > 0) WaitForMultipleObjects(m_dwThreads, m_phThreads.get(), TRUE, INFINITE);
  while (!m_pQueue->empty()) {
    CWorkItemBase* item = m_pQueue->front();
    m_pQueue->pop_front();
    item->Abort();
  }
  m_pQueue.reset();
  CloseHandle(m_hSemaphore);
  m_hSemaphore = nullptr;
  CloseHandle(m_hAbortEvent);
  m_hAbortEvent = nullptr;
  DeleteCriticalSection(&m_csQueue);
  for (DWORD i = 0; i < m_dwThreads; ++i) CloseHandle(m_phThreads[i]);
  m_dwThreads = 0;
  m_phThreads.reset();
}

// An exception here means that an item will never clear its global: better to end at once.
unsigned __stdcall CWorkQueue::ThreadProcedure(void* pContext) noexcept {
  const std::unique_ptr<ThreadContext> context(static_cast<ThreadContext*>(pContext));
  context->pQueue->RunThread(context->pThreadData);
  return 0;
}

void CWorkQueue::RunThread(void* pThreadData) {
  // The event stands first: it wins when both are signalled.
  const HANDLE objects[] = {m_hAbortEvent, m_hSemaphore};
  while (WaitForMultipleObjects(2, objects, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
    CWorkItemBase* item = TakeFront();
    if (item != nullptr) item->DoWork(pThreadData);
  }
}

CWorkItemBase* CWorkQueue::TakeFront() {
  EnterCriticalSection(&m_csQueue);
  CWorkItemBase* item = nullptr;
  if (!m_pQueue->empty()) {
    item = m_pQueue->front();
    m_pQueue->pop_front();
  }
  LeaveCriticalSection(&m_csQueue);
  return item;
}
