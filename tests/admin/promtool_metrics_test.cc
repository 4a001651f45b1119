// Prometheus' own linter, promtool (Debian package prometheus), on the
// exposition of the sample queues and of a queue with an odd name.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/prometheus_text.h"
#include "tests/admin/sample_queues.h"
#include "tests/support/subprocess.h"

namespace {

TEST(PromtoolTest, CheckMetrics) {
  const std::string promtool = FindProgram("promtool");
  if (promtool.empty()) {
    GTEST_SKIP() << "promtool is not installed (Debian package prometheus)";
  }
  std::vector<QueueStatus> queues = SampleQueues();
  queues.push_back(OddlyNamedQueue());
  const ProgramResult result =
      RunProgram({promtool, "check", "metrics"},
                 PrometheusText(queues, kSampleNow));
  EXPECT_EQ(0, result.status) << result.Describe();
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
}

}  // namespace
