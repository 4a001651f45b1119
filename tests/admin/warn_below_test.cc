// WarnLines: the warnings for the sample queues, and where "below" draws
// its line.

#include "admin/warn_below.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/admin/sample_queues.h"

namespace {

using Lines = std::vector<std::string>;

TEST(WarnLinesTest, SampleQueues) {
  EXPECT_EQ(
      (Lines{"booth: 48 prints left (below 50)",
             "booth: com.quillaroth-error0001 Printer error 0001 - see the "
             "printer's panel",
             "kiosk: com.quillaroth-error0023 Printer not reachable or "
             "unknown printer error"}),
      WarnLines(SampleQueues(), 50));
}

// A queue with `left` prints, nothing else.
QueueStatus WithPrints(int left) {
  QueueStatus queue;
  queue.queue = "photo";
  queue.prints_remaining = left;
  return queue;
}

TEST(WarnLinesTest, FewerThanBelow) {
  EXPECT_EQ(Lines{}, WarnLines({WithPrints(20)}, 20));
  EXPECT_EQ(Lines{"photo: 19 prints left (below 20)"},
            WarnLines({WithPrints(19)}, 20));
  EXPECT_EQ(Lines{"photo: 1 print left (below 20)"},
            WarnLines({WithPrints(1)}, 20));
  EXPECT_EQ(Lines{"photo: 0 prints left (below 20)"},
            WarnLines({WithPrints(0)}, 20));
  EXPECT_EQ(Lines{}, WarnLines({WithPrints(0)}, 0));
}

TEST(WarnLinesTest, ErrorReasonsOnly) {
  QueueStatus queue;
  queue.queue = "photo";
  queue.reasons = {{"offline-report", ""},
                   {"media-low-warning", ""},
                   {"media-empty-error", ""},
                   {"com.quillaroth-error0005", "Ink ribbon used up"},
                   {"paused", ""}};
  EXPECT_EQ((Lines{"photo: media-empty-error",
                   "photo: com.quillaroth-error0005 Ink ribbon used up"}),
            WarnLines({queue}, 20));
}

TEST(IsErrorReasonTest, Keywords) {
  EXPECT_TRUE(IsErrorReason("com.quillaroth-error0001"));
  EXPECT_TRUE(IsErrorReason("com.quillaroth-error0023"));
  EXPECT_TRUE(IsErrorReason("media-jam-error"));
  EXPECT_TRUE(IsErrorReason("com.example-thing-error"));
  EXPECT_FALSE(IsErrorReason("-error"));
  EXPECT_FALSE(IsErrorReason("media-low-warning"));
  EXPECT_FALSE(IsErrorReason("offline-report"));
  EXPECT_FALSE(IsErrorReason("paused"));
  EXPECT_FALSE(IsErrorReason("com.quillaroth-errors"));
}

}  // namespace
