// In a program of its own, for its question must be the first one.
#include <gtest/gtest.h>

#include "net/error_codes.h"

namespace {

TEST(ErrorCodes, HaveTheirTextsAfterAFirstQuestionOutsideTheTable) {
  ASSERT_STREQ(CUT_ERR::GetErrorString(152), "CUT_ERR::GetErrorString: Array out of bounds!");
  EXPECT_STREQ(CUT_ERR::GetErrorString(0), "Operation completed successfully.");
  EXPECT_STREQ(CUT_ERR::GetErrorString(151), "Invalid encoding format.");
}

}  // namespace
