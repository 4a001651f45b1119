// PrometheusText: the whole exposition of the sample queues, and the
// quoting of label values.

#include "admin/prometheus_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/admin/sample_queues.h"
#include "tests/support/files.h"

namespace {

TEST(PrometheusTextTest, SampleQueues) {
  EXPECT_EQ(
      "# HELP quillaroth_prints_remaining Prints left on the ink ribbon, as "
      "the filter last read them.\n"
      "# TYPE quillaroth_prints_remaining gauge\n"
      "quillaroth_prints_remaining{queue=\"photo\"} 120\n"
      "quillaroth_prints_remaining{queue=\"booth\"} 48\n"
      "# HELP quillaroth_ribbon_capacity Prints a full ink ribbon of the "
      "loaded type holds.\n"
      "# TYPE quillaroth_ribbon_capacity gauge\n"
      "quillaroth_ribbon_capacity{queue=\"photo\"} 350\n"
      "quillaroth_ribbon_capacity{queue=\"booth\"} 350\n"
      "# HELP quillaroth_level_percent The ink ribbon's level in percent, as "
      "the filter last read it.\n"
      "# TYPE quillaroth_level_percent gauge\n"
      "quillaroth_level_percent{queue=\"photo\"} 34\n"
      "quillaroth_level_percent{queue=\"booth\"} 13\n"
      "# HELP quillaroth_reason 1 for each printer-state-reasons keyword the "
      "queue shows now.\n"
      "# TYPE quillaroth_reason gauge\n"
      "quillaroth_reason{queue=\"booth\",reason=\"com.quillaroth-error0001\"} "
      "1\n"
      "quillaroth_reason{queue=\"kiosk\",reason=\"com.quillaroth-error0023\"} "
      "1\n"
      "quillaroth_reason{queue=\"kiosk\",reason=\"offline-report\"} 1\n"
      "# HELP quillaroth_levels_age_seconds Seconds since the filter last "
      "reported the levels.\n"
      "# TYPE quillaroth_levels_age_seconds gauge\n"
      "quillaroth_levels_age_seconds{queue=\"photo\"} 90\n"
      "quillaroth_levels_age_seconds{queue=\"booth\"} 30\n"
      "quillaroth_levels_age_seconds{queue=\"kiosk\"} 600\n"
      "# HELP quillaroth_printer_reachable 0 when the last reading of the "
      "levels could not reach the printer, else 1.\n"
      "# TYPE quillaroth_printer_reachable gauge\n"
      "quillaroth_printer_reachable{queue=\"photo\"} 1\n"
      "quillaroth_printer_reachable{queue=\"booth\"} 1\n"
      "quillaroth_printer_reachable{queue=\"kiosk\"} 0\n",
      PrometheusText(SampleQueues(), kSampleNow));
}

// The README's example is this text.
TEST(PrometheusTextTest, ReadmeExampleIsTheSampleQueues) {
  const std::string start =
      "<!-- example metrics: from PrometheusText(SampleQueues()) -->\n```\n";
  const std::string end = "```\n<!-- end of the example metrics -->\n";
  const std::string readme = ReadFile(README_PATH);
  size_t from = readme.find(start);
  size_t to = readme.find(end);
  ASSERT_NE(std::string::npos, from) << "no example metrics in " << README_PATH;
  ASSERT_NE(std::string::npos, to);
  from += start.size();
  EXPECT_EQ(PrometheusText(SampleQueues(), kSampleNow),
            readme.substr(from, to - from));
}

// The exposition of no queue but the one given, as of kSampleNow, without
// the "# HELP" and "# TYPE" lines.
std::string Series(const QueueStatus& queue) {
  std::string series;
  const std::string text = PrometheusText({queue}, kSampleNow);
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = text.find('\n', start) + 1;
    if (text[start] != '#') series += text.substr(start, end - start);
    start = end;
  }
  return series;
}

TEST(PrometheusTextTest, LevelNotSaidIsStillReachable) {
  QueueStatus queue;
  queue.queue = "photo";
  queue.levels_read_at = kSampleNow - 5;
  queue.marker_level = -1;
  EXPECT_EQ(
      "quillaroth_levels_age_seconds{queue=\"photo\"} 5\n"
      "quillaroth_printer_reachable{queue=\"photo\"} 1\n",
      Series(queue));
}

TEST(PrometheusTextTest, ReasonShownTwiceIsOneSeries) {
  QueueStatus queue;
  queue.queue = "photo";
  queue.reasons = {{"media-empty-error", ""},
                   {"media-empty-error", ""},
                   {"com.quillaroth-error0005", "Ink ribbon used up"}};
  EXPECT_EQ(
      "quillaroth_reason{queue=\"photo\",reason=\"media-empty-error\"} 1\n"
      "quillaroth_reason{queue=\"photo\",reason=\"com.quillaroth-error0005\"}"
      " 1\n",
      Series(queue));
}

// Without a queue every family still says what it is: the header lines
// of the sample exposition, and nothing else.
TEST(PrometheusTextTest, NoQueue) {
  const std::string sample = PrometheusText(SampleQueues(), kSampleNow);
  std::string headers;
  size_t start = 0;
  while (start < sample.size()) {
    const size_t end = sample.find('\n', start) + 1;
    if (sample[start] == '#') headers += sample.substr(start, end - start);
    start = end;
  }
  EXPECT_EQ(headers, PrometheusText({}, kSampleNow));
}

TEST(PrometheusTextTest, OddQueueName) {
  QueueStatus queue;
  queue.queue = "Fot\xC3\xB3-\"A\"\\1\nx";
  queue.prints_remaining = 7;
  EXPECT_EQ(
      "quillaroth_prints_remaining{queue=\"Fot\xC3\xB3-\\\"A\\\"\\\\1\\nx\"} "
      "7\n",
      Series(queue));
}

struct QuotingCase {
  std::string value;
  std::string quoted;
};

TEST(QuotedLabelValueTest, EscapesAndUtf8) {
  const std::vector<QuotingCase> cases = {
      {"", "\"\""},
      {"photo_1.booth-2", "\"photo_1.booth-2\""},
      {"a\\b", "\"a\\\\b\""},
      {"say \"cheese\"", "\"say \\\"cheese\\\"\""},
      {"two\nlines", "\"two\\nlines\""},
      {"\\n", "\"\\\\n\""},
      {"tab\there", "\"tab\there\""},
      {"{q=\"x\"},y", "\"{q=\\\"x\\\"},y\""},
      {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\xB7",
       "\"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\xB7\""},
      // Latin-1, not UTF-8: each bad byte becomes U+FFFD.
      {"caf\xE9", "\"caf\xEF\xBF\xBD\""},
      {"\xFF\xFE", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
      // Overlong "/", a surrogate, past U+10FFFF, cut short at the end.
      {"\xC0\xAF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {"\xF4\x90\x80\x80",
       "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {"x\xE2\x82", "\"x\xEF\xBF\xBD\xEF\xBF\xBD\""},
  };
  for (const QuotingCase& c : cases) {
    EXPECT_EQ(c.quoted, QuotedLabelValue(c.value)) << c.value;
  }
}

}  // namespace
