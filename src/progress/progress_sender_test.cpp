// Positions and captions that another thread sends.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "kvtools/kvtools.h"
#include "progress/testing/bar_fixture.h"

namespace {

class SentByAnotherThread : public BarTest {
 protected:
  void SetUp() override {
    BarTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(Create(0));
    KVT_PumpMessages();
  }
  // Sends, from another thread, while this one does not look.
  void Send(UINT message, WPARAM position, const char* caption = nullptr) {
    m_bAnswered = false;
    m_sender = std::thread([=, this, window = m_bar.GetSafeHwnd()] {
      // It is gone once the message is answered.
      const auto text = std::make_unique<std::string>(caption != nullptr ? caption : "");
      m_nAnswer = SendMessageA(window, message, position,
                               caption != nullptr ? reinterpret_cast<LPARAM>(text->c_str()) : 0);
      text->assign(text->size(), '?');
      m_bAnswered = true;
    });
    const bool pending =
        WaitFor([] { return (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) & QS_SENDMESSAGE) != 0; });
    EXPECT_TRUE(pending) << "the message was not sent";
  }
  void PostToOwner() { PostMessageA(m_owner.GetSafeHwnd(), kOwnerMessage, 0, 0); }
  static bool WaitFor(const std::function<bool()>& condition) {
    const ULONGLONG end = GetTickCount64() + 120000;
    while (!condition() && GetTickCount64() < end) Sleep(1);
    return condition();
  }
  void TearDown() override {
    if (m_sender.joinable()) m_sender.join();
    BarTest::TearDown();
  }

  std::thread m_sender;
  std::atomic<bool> m_bAnswered = false;
  std::atomic<LRESULT> m_nAnswer = 0;
};

// The handler of a stop button waits for the thread that tells how far it is.
TEST_F(SentByAnotherThread, PositionIsAnsweredBeforeAHandlerRuns) {
  m_bar.SetPos(10);
  m_owner.onMessage = [&] { EXPECT_TRUE(WaitFor([&] { return m_bAnswered.load(); })); };
  Send(PBM_SETPOS, 20);
  PostToOwner();
  KVT_PumpMessages();
  EXPECT_EQ(m_owner.handled, 1);
  m_sender.join();
  EXPECT_EQ(m_nAnswer, 10);
  EXPECT_EQ(m_bar.GetPos(), 20);
}

TEST_F(SentByAnotherThread, CaptionIsAnsweredBeforeAHandlerRuns) {
  m_owner.onMessage = [&] { EXPECT_TRUE(WaitFor([&] { return m_bAnswered.load(); })); };
  Send(WM_SETCUROP_MT, 0, "Reading");
  PostToOwner();
  KVT_PumpMessages();
  EXPECT_EQ(m_owner.handled, 1);
  m_sender.join();
  EXPECT_EQ(m_nAnswer, 0);
  EXPECT_EQ(m_bar.m_caption, "Reading");
}

TEST_F(SentByAnotherThread, NewestPositionStays) {
  m_owner.onMessage = [&] {
    EXPECT_TRUE(WaitFor([&] { return m_bAnswered.load(); }));
    m_sender.join();
    Send(PBM_SETPOS, 30);
    EXPECT_TRUE(WaitFor([&] {
      KVT_PumpMessages();
      return m_bar.GetPos() == 30;
    }));
  };
  Send(PBM_SETPOS, 20);
  PostToOwner();
  KVT_PumpMessages();
  EXPECT_EQ(m_owner.handled, 1);
  EXPECT_EQ(m_bar.GetPos(), 30);
}

}  // namespace
