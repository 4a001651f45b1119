// The queues' state in the Prometheus text exposition format, for the
// node exporter's textfile collector (`quillaroth status --prometheus`).
//
// Every family is a gauge with one series per queue, labelled
// queue="<name>"; a value the queue does not know is left out rather than
// written as a sentinel, so that an alert on "< 20" never fires on "-1".
// No sample carries a timestamp: the textfile collector refuses them.

#ifndef QUILLAROTH_ADMIN_PROMETHEUS_TEXT_H_
#define QUILLAROTH_ADMIN_PROMETHEUS_TEXT_H_

#include <ctime>
#include <string>
#include <vector>

#include "admin/queue_status.h"

// The metric families, in the order PrometheusText() writes them.
extern const char kPrintsRemainingMetric[];  // quillaroth_prints_remaining
extern const char kRibbonCapacityMetric[];   // quillaroth_ribbon_capacity
extern const char kLevelPercentMetric[];     // quillaroth_level_percent
extern const char kReasonMetric[];           // quillaroth_reason
extern const char kLevelsAgeMetric[];        // quillaroth_levels_age_seconds
extern const char kReachableMetric[];        // quillaroth_printer_reachable

// The whole exposition of the queues, in their order, as of `now` (which
// gives the age of each queue's levels): each family's "# HELP" and
// "# TYPE" lines, then its series.
std::string PrometheusText(const std::vector<QueueStatus>& queues, time_t now);

// A label value in double quotes, escaped as the format requires
// (backslash, double quote, line feed), with each byte that is not part
// of valid UTF-8 replaced by U+FFFD: one bad queue name must not make the
// collector drop the whole file.
std::string QuotedLabelValue(const std::string& value);

#endif  // QUILLAROTH_ADMIN_PROMETHEUS_TEXT_H_
