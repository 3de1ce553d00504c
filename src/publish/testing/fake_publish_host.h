// The dialog of a long operation, for tests: remembers what it was told and aborts when a test says so.
#ifndef MOSAICON_PUBLISH_TESTING_FAKE_PUBLISH_HOST_H_
#define MOSAICON_PUBLISH_TESTING_FAKE_PUBLISH_HOST_H_

#include <functional>
#include <string>
#include <vector>

#include "publish/publish_host.h"

class FakePublishHost : public PublishHost {
 public:
  bool IsAborted() override { return aborted || leaving; }
  bool IsLeaving() override { return leaving; }
  void PumpMessages() override {
    ++pumps;
    if (onPump) onPump();
  }
  void SetProgressRange(int count) override { range = count; }
  void SetProgressPosition(int value) override { positions.push_back(value); }
  int ProgressPosition() override { return positions.empty() ? 0 : positions.back(); }
  void SetProgressCaption(const std::string& caption) override { captions.push_back(caption); }
  void SetStatus(const std::string& text) override { statuses.push_back(text); }

  bool aborted = false;
  bool leaving = false;
  int pumps = 0;
  int range = -1;
  std::vector<int> positions;
  std::vector<std::string> captions;
  std::vector<std::string> statuses;
  // What a user does while messages are dispatched.
  std::function<void()> onPump;
};

#endif  // MOSAICON_PUBLISH_TESTING_FAKE_PUBLISH_HOST_H_
