// The warnings of `quillaroth status --warn-below N`: one line for each
// queue whose ribbon runs low and one for each error reason a queue shows.
// The command exits 1 when there is any line, so that a cron job or a
// monitoring check can act on it.

#ifndef QUILLAROTH_ADMIN_WARN_BELOW_H_
#define QUILLAROTH_ADMIN_WARN_BELOW_H_

#include <string>
#include <vector>

#include "admin/queue_status.h"

// True for a reason that stops the printer: the filter's own
// "com.quillaroth-errorNNNN" keywords and the standard ones that end in
// "-error" (not "-warning" or "-report").
bool IsErrorReason(const std::string& keyword);

// The warning lines, queue by queue in their order: "<queue>: N prints
// left (below <below>)" when fewer than `below` prints are left, then
// "<queue>: <keyword> <text>" for each error reason it shows (the keyword
// alone when its PPD gives no text).  A queue whose levels are unknown
// gets no line for them.
std::vector<std::string> WarnLines(const std::vector<QueueStatus>& queues,
                                   int below);

#endif  // QUILLAROTH_ADMIN_WARN_BELOW_H_
