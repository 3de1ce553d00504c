#include "tiler/progress_records.h"

#include <gtest/gtest.h>

#include <vector>

namespace tiler {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kNever{3600 * 1000};

// What is written, from the thread that writes.
class Reader {
 public:
  bool Take(const std::string& record) {
    const std::lock_guard lock(m_mutex);
    m_records.push_back(record);
    m_changed.notify_all();
    return m_reads;
  }
  void GoAway() {
    const std::lock_guard lock(m_mutex);
    m_reads = false;
  }
  void WaitFor(std::size_t count) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_records.size() >= count; });
  }
  std::vector<std::string> Records() {
    const std::lock_guard lock(m_mutex);
    return m_records;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::vector<std::string> m_records;
  bool m_reads = true;
};

ProgressRecords::Write To(Reader& reader) {
  return [&reader](const std::string& record) { return reader.Take(record); };
}

TEST(ProgressRecords, TellNewWholePerCentsOnly) {
  Reader reader;
  {
    ProgressRecords records(To(reader), kNever);
    records.Start();
    for (const int done : {1, 10, 19, 5, 290, 1000, 1001}) records.Report(done, 1000);
    records.Finish();
  }
  EXPECT_EQ(reader.Records(),
            (std::vector<std::string>{"Progress 0.00 done\n", "Progress 0.01 done\n", "Progress 0.29 done\n",
                                      "Progress 0.99 done\n", "Progress 1.00 done\n"}));
}

TEST(ProgressRecords, RepeatTheLastInATimeOfSilence) {
  Reader reader;
  ProgressRecords records(To(reader), milliseconds(1));
  reader.WaitFor(2);
  EXPECT_EQ(reader.Records()[1], "Progress 0.00 done\n");
  records.Report(37, 100);
  const std::size_t before = reader.Records().size();
  reader.WaitFor(before + 3);
  EXPECT_EQ(reader.Records().back(), "Progress 0.37 done\n");
}

TEST(ProgressRecords, EndWithTheirReader) {
  Reader reader;
  reader.GoAway();
  {
    ProgressRecords records(To(reader), kNever);
    records.Start();
    reader.WaitFor(1);
    records.Finish();
  }
  EXPECT_EQ(reader.Records().size(), 1U);
}

TEST(ProgressRecords, TellNothingOfNothing) {
  Reader reader;
  {
    ProgressRecords records(To(reader), kNever);
    records.Report(0, 0);
  }
  EXPECT_EQ(reader.Records(), std::vector<std::string>{"Progress 0.00 done\n"});
}

TEST(ProgressRecords, HoldUpNobodyWhenNobodyReads) {
  std::mutex full;
  full.lock();
  auto records = std::make_unique<ProgressRecords>([&full](const std::string&) {
    const std::lock_guard lock(full);
    return true;
  });
  for (int i = 0; i < 100000; ++i) records->Report(i, 100000);
  records->Finish();
  full.unlock();
}

}  // namespace
}  // namespace tiler
