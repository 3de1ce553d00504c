#include <gtest/gtest.h>

// A filter that matches nothing must not look like success.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) return 1;
  return result;
}
