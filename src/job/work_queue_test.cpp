#include "job/work_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "support/open_handles.h"

namespace {

// Written by the queue's thread only, read after Destroy; their number may be read at any time.
std::vector<std::string> g_events;
std::atomic<size_t> g_nEvents{0};

class Item : public CWorkItemBase {
 public:
  explicit Item(std::string name, HANDLE gate = nullptr) : m_strName(std::move(name)), m_hGate(gate) {}
  void DoWork(void* pThreadData) override {
    EXPECT_EQ(pThreadData, nullptr);
    m_bStarted = true;
    if (m_hGate != nullptr) WaitForSingleObject(m_hGate, INFINITE);
    g_events.push_back("work " + m_strName);
    ++g_nEvents;
    m_dwThread = GetCurrentThreadId();
  }
  void Abort() override { g_events.push_back("abort " + m_strName); }

  const std::string m_strName;
  const HANDLE m_hGate;
  std::atomic<bool> m_bStarted{false};
  std::atomic<DWORD> m_dwThread{0};
};

class WorkQueue : public testing::Test {
 protected:
  void SetUp() override {
    g_events.clear();
    g_nEvents = 0;
    ASSERT_TRUE(m_queue.Create());
  }
  void WaitForEvents(size_t count) {
    for (int i = 0; i < 12000 && g_nEvents < count; ++i) Sleep(10);
    ASSERT_EQ(g_nEvents, count);
  }
  CWorkQueue m_queue;
};

TEST_F(WorkQueue, WorksFirstInFirstOutOnOneThreadOfItsOwn) {
  Item a("a"), b("b"), c("c");
  for (Item* item : {&a, &b, &c}) EXPECT_TRUE(m_queue.InsertWorkItem(item));
  WaitForEvents(3);
  m_queue.Destroy();
  EXPECT_EQ(g_events, (std::vector<std::string>{"work a", "work b", "work c"}));
  EXPECT_NE(a.m_dwThread, GetCurrentThreadId());
  EXPECT_EQ(a.m_dwThread, b.m_dwThread);
  EXPECT_EQ(a.m_dwThread, c.m_dwThread);
}

DWORD WINAPI OpenGateLater(LPVOID gate) {
  Sleep(300);
  SetEvent(static_cast<HANDLE>(gate));
  return 0;
}

TEST_F(WorkQueue, FinishesTheRunningItemAndAbortsTheOthersAtItsEnd) {
  HANDLE gate = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  Item running("running", gate), first("first"), second("second");
  for (Item* item : {&running, &first, &second}) EXPECT_TRUE(m_queue.InsertWorkItem(item));
  while (!running.m_bStarted) Sleep(1);
  HANDLE opener = CreateThread(nullptr, 0, OpenGateLater, gate, 0, nullptr);
  m_queue.Destroy();
  EXPECT_EQ(g_events, (std::vector<std::string>{"work running", "abort first", "abort second"}));
  WaitForSingleObject(opener, INFINITE);
  CloseHandle(opener);
  CloseHandle(gate);
}

TEST_F(WorkQueue, EndsWithoutEverHavingWorked) {
  m_queue.Destroy();
  EXPECT_TRUE(g_events.empty());
}

TEST(WorkQueueLifetime, LeavesNoHandleOpen) {
  const auto cycle = [] {
    CWorkQueue queue;
    ASSERT_TRUE(queue.Create());
    queue.Destroy();
  };
  EXPECT_FALSE(LeavesMoreAndMoreOpen([&] {
    for (int i = 0; i < 20; ++i) cycle();
  }));
}

}  // namespace
