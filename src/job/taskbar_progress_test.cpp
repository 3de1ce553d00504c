#include "job/taskbar_progress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class FakeButton : public TaskbarButton {
 public:
  void ShowNothing() override { shown.emplace_back("nothing"); }
  void ShowActivity() override { shown.emplace_back("activity"); }
  void ShowPercent(int percent) override { shown.push_back(std::to_string(percent)); }

  std::vector<std::string> shown;
};

using Shown = std::vector<std::string>;

TEST(TaskbarProgress, FollowsAJob) {
  FakeButton button;
  TaskbarProgress progress(button);
  progress.Begin();
  progress.SetPercent(0);
  progress.SetPercent(1);
  progress.SetPercent(100);
  progress.End();
  EXPECT_EQ(button.shown, (Shown{"activity", "activity", "1", "100", "nothing"}));
}

// The bar of the window is emptied when the job is over.
TEST(TaskbarProgress, ShowsNothingWhileNoJobRuns) {
  FakeButton button;
  TaskbarProgress progress(button);
  progress.SetPercent(0);
  progress.SetPercent(50);
  EXPECT_EQ(button.shown, Shown());
  progress.Begin();
  progress.End();
  progress.SetPercent(0);
  progress.SetPercent(50);
  EXPECT_EQ(button.shown.back(), "nothing");
}

}  // namespace
