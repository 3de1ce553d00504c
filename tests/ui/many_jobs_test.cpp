// Ten jobs in one process take no more than two.
#include <iostream>

#include "ui/mosaicon_fixture.h"
#include "ui/resources_of.h"

namespace {

// Of the script's input and output, which stay open by design: each run makes them anew.
constexpr int kPipeHandlesOfAJob = 4;
// A job gives three buttons another icon, at its start and at its end, and Wine's buttons lose three
// bitmaps whenever they are given one.
constexpr int kBitmapsThatWineLoses = 2 * 3 * 3;
constexpr double kMemoryBound = 8;  // MB, for eight jobs

class ManyJobs : public MosaiconTest {
 protected:
  void RunTo(int jobs, ResourceCount& count) {
    for (; m_nJobs < jobs; ++m_nJobs) {
      const auto report =
          RunJob({.orthophoto = m_strInput, .target = Path("out" + std::to_string(m_nJobs)), .title = "m"});
      // The others would come to nothing either, each after a long wait.
      ASSERT_TRUE(report);
      EXPECT_EQ(report->log, "- " + m_strInput + ": OK\r\n");
    }
    count = CountResources(Running());
    std::cout << jobs << " jobs: " << count << '\n';
  }

  int m_nJobs = 0;
  const std::string m_strInput = MakeOrthophoto("tiny.tif", 8, 8);
};

TEST_F(ManyJobs, TakeNoMoreThanAFew) {
  ResourceCount two;
  ASSERT_NO_FATAL_FAILURE(RunTo(2, two));
  ASSERT_GT(two.handles, 0);
  ASSERT_GT(two.drawingObjects, 0);
  ASSERT_GT(two.windows, 1);
  ASSERT_GT(two.privateMegabytes, 0);
  ResourceCount ten;
  ASSERT_NO_FATAL_FAILURE(RunTo(10, ten));
  EXPECT_EQ(ten.handles, two.handles + 8 * kPipeHandlesOfAJob);
  EXPECT_LE(ten.drawingObjects, two.drawingObjects + 8 * kBitmapsThatWineLoses);
  EXPECT_EQ(ten.windows, two.windows);
  EXPECT_LT(ten.privateMegabytes, two.privateMegabytes + kMemoryBound);
}

}  // namespace
