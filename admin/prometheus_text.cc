#include "admin/prometheus_text.h"

#include <optional>
#include <set>
#include <string>

const char kPrintsRemainingMetric[] = "quillaroth_prints_remaining";
const char kRibbonCapacityMetric[] = "quillaroth_ribbon_capacity";
const char kLevelPercentMetric[] = "quillaroth_level_percent";
const char kReasonMetric[] = "quillaroth_reason";
const char kLevelsAgeMetric[] = "quillaroth_levels_age_seconds";
const char kReachableMetric[] = "quillaroth_printer_reachable";

namespace {

const char kReplacementCharacter[] = "\xEF\xBF\xBD";  // U+FFFD

// The filter's marker level for "the printer could not be asked".
constexpr int kUnreachableLevel = -2;

// The length of the valid UTF-8 sequence that starts at text[i]; 0 when
// none does (a stray continuation byte, an overlong form, a surrogate, a
// code point past U+10FFFF, or a sequence cut short).
size_t Utf8SequenceLength(const std::string& text, size_t i) {
  const unsigned char lead = static_cast<unsigned char>(text[i]);
  if (lead < 0x80) return 1;
  size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead == 0xE0) {
    length = 3;
    low = 0xA0;
  } else if (lead == 0xED) {
    length = 3;
    high = 0x9F;
  } else if (lead >= 0xE1 && lead <= 0xEF) {
    length = 3;
  } else if (lead == 0xF0) {
    length = 4;
    low = 0x90;
  } else if (lead >= 0xF1 && lead <= 0xF3) {
    length = 4;
  } else if (lead == 0xF4) {
    length = 4;
    high = 0x8F;
  } else {
    return 0;
  }
  if (text.size() - i < length) return 0;
  const unsigned char second = static_cast<unsigned char>(text[i + 1]);
  if (second < low || second > high) return 0;
  for (size_t k = 2; k < length; ++k) {
    const unsigned char next = static_cast<unsigned char>(text[i + k]);
    if (next < 0x80 || next > 0xBF) return 0;
  }
  return length;
}

// The series of one family, and how to write them after its header.
class Family {
 public:
  Family(const char* name, const char* help) : name_(name), help_(help) {}

  // Adds the series {queue="<queue>"<more_labels>} with the value.
  void Add(const std::string& queue, const std::string& more_labels,
           long long value) {
    series_ += name_;
    series_ += "{queue=" + QuotedLabelValue(queue) + more_labels + "} ";
    series_ += std::to_string(value) + "\n";
  }

  // Appends the "# HELP" and "# TYPE" lines and the series.
  void AppendTo(std::string* out) const {
    *out += std::string("# HELP ") + name_ + " " + help_ + "\n";
    *out += std::string("# TYPE ") + name_ + " gauge\n";
    *out += series_;
  }

 private:
  const char* name_;
  const char* help_;
  std::string series_;
};

}  // namespace

std::string QuotedLabelValue(const std::string& value) {
  std::string quoted = "\"";
  size_t i = 0;
  while (i < value.size()) {
    const size_t length = Utf8SequenceLength(value, i);
    if (length == 0) {
      quoted += kReplacementCharacter;
      ++i;
      continue;
    }
    if (value[i] == '\\') {
      quoted += "\\\\";
    } else if (value[i] == '"') {
      quoted += "\\\"";
    } else if (value[i] == '\n') {
      quoted += "\\n";
    } else {
      quoted.append(value, i, length);
    }
    i += length;
  }
  return quoted + "\"";
}

std::string PrometheusText(const std::vector<QueueStatus>& queues,
                           time_t now) {
  Family remaining(kPrintsRemainingMetric,
                   "Prints left on the ink ribbon, as the filter last read "
                   "them.");
  Family capacity(kRibbonCapacityMetric,
                  "Prints a full ink ribbon of the loaded type holds.");
  Family level(kLevelPercentMetric,
               "The ink ribbon's level in percent, as the filter last read "
               "it.");
  Family reason(kReasonMetric,
                "1 for each printer-state-reasons keyword the queue shows "
                "now.");
  Family age(kLevelsAgeMetric,
             "Seconds since the filter last reported the levels.");
  Family reachable(kReachableMetric,
                   "0 when the last reading of the levels could not reach "
                   "the printer, else 1.");
  for (const QueueStatus& queue : queues) {
    if (queue.prints_remaining) {
      remaining.Add(queue.queue, "", *queue.prints_remaining);
    }
    if (queue.prints_total) capacity.Add(queue.queue, "", *queue.prints_total);
    if (queue.level_percent) level.Add(queue.queue, "", *queue.level_percent);
    // A keyword twice would be one series twice, which the format forbids.
    std::set<std::string> shown;
    for (const Reason& shown_reason : queue.reasons) {
      if (!shown.insert(shown_reason.keyword).second) continue;
      reason.Add(queue.queue,
                 ",reason=" + QuotedLabelValue(shown_reason.keyword), 1);
    }
    if (queue.levels_read_at) {
      age.Add(queue.queue, "",
              static_cast<long long>(now) -
                  static_cast<long long>(*queue.levels_read_at));
    }
    if (queue.marker_level) {
      reachable.Add(queue.queue, "",
                    *queue.marker_level == kUnreachableLevel ? 0 : 1);
    }
  }
  std::string text;
  for (const Family* family :
       {&remaining, &capacity, &level, &reason, &age, &reachable}) {
    family->AppendTo(&text);
  }
  return text;
}
