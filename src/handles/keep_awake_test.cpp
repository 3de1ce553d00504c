#include "handles/keep_awake.h"

#include <gtest/gtest.h>

namespace {

// The system tells what was asked for before; asking for the same changes nothing.
EXECUTION_STATE Asked() {
  const EXECUTION_STATE asked = SetThreadExecutionState(ES_CONTINUOUS);
  SetThreadExecutionState(ES_CONTINUOUS | asked);
  return asked;
}

TEST(KeepAwake, LastsAsLongAsItLives) {
  SetThreadExecutionState(ES_CONTINUOUS);
  {
    const KeepAwake awake;
    EXPECT_EQ(Asked(), ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
    { const KeepAwake inner; }
    EXPECT_EQ(Asked(), ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
  }
  EXPECT_EQ(Asked(), ES_CONTINUOUS);
}

}  // namespace
