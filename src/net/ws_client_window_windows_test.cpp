#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "net/testing/clients.h"
#include "net/ws_client.h"

namespace {

class Client : public Watched<CUT_WSClient> {
 public:
  void OnNotification1(int low, int high) override { notes.push_back({1, low, high}); }
  void OnNotification2(int high) override { notes.push_back({2, high}); }
  void OnNotification3(int high) override { notes.push_back({3, high}); }

  std::vector<std::vector<int>> notes;
};

TEST(NotifyWindow, ForwardsItsMessages) {
  Client client;
  const HINSTANCE module = GetModuleHandleA(nullptr);
  ASSERT_EQ(client.CreateNotifyWindow(module), kNetSuccess);
  ASSERT_EQ(client.CreateNotifyWindow(module), kNetSuccess) << "it is there already";
  Client second;
  ASSERT_EQ(second.CreateNotifyWindow(module), kNetSuccess) << "the class is there already";
  HWND windows[2] = {};
  windows[0] = FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr);
  windows[1] = FindWindowExA(HWND_MESSAGE, windows[0], "CUT_WSClient", nullptr);
  ASSERT_NE(windows[1], nullptr);
  EXPECT_EQ(FindWindowExA(HWND_MESSAGE, windows[1], "CUT_WSClient", nullptr), nullptr);
  for (HWND window : windows) {
    SendMessageA(window, 1152, 7, MAKELPARAM(11, 12));
    SendMessageA(window, 1153, 7, MAKELPARAM(21, 22));
    SendMessageA(window, 1154, 7, MAKELPARAM(31, 32));
    SendMessageA(window, 1155, 7, 0);
  }
  const std::vector<std::vector<int>> expected = {{1, 11, 12}, {2, 22}, {3, 32}};
  EXPECT_EQ(client.notes, expected);
  EXPECT_EQ(second.notes, expected);
}

TEST(NotifyWindow, FailsWhenTheWindowDoes) {
  const HINSTANCE module = GetModuleHandleA(nullptr);
  UnregisterClassA("CUT_WSClient", module);
  WNDCLASSA unwilling = {};
  unwilling.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return FALSE; };
  unwilling.hInstance = module;
  unwilling.lpszClassName = "CUT_WSClient";
  ASSERT_NE(RegisterClassA(&unwilling), 0);
  Client client;
  EXPECT_EQ(client.CreateNotifyWindow(module), kNetFailed);
  EXPECT_EQ(client.codes, std::vector<int>{kNetFailed});
  ASSERT_TRUE(UnregisterClassA("CUT_WSClient", module));
  EXPECT_EQ(client.CreateNotifyWindow(module), kNetSuccess);
}

TEST(NotifyWindow, BelongsToNobodyWhenItIsCreated) {
  Client client;
  ASSERT_EQ(client.CreateNotifyWindow(GetModuleHandleA(nullptr)), kNetSuccess);
  const HWND window = FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr);
  ASSERT_NE(GetWindowLongPtrA(window, 0), 0);
  SendMessageA(window, WM_CREATE, 0, 0);
  EXPECT_EQ(GetWindowLongPtrA(window, 0), 0);
  SendMessageA(window, 1152, 7, MAKELPARAM(11, 12));
  EXPECT_TRUE(client.notes.empty());
}

TEST(NotifyWindow, EndsWithItsClient) {
  {
    Client client;
    ASSERT_EQ(client.CreateNotifyWindow(GetModuleHandleA(nullptr)), kNetSuccess);
  }
  EXPECT_EQ(FindWindowExA(HWND_MESSAGE, nullptr, "CUT_WSClient", nullptr), nullptr);
}

}  // namespace
