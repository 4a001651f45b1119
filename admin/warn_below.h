// STUB until the monitor branch is merged.
#ifndef QUILLAROTH_ADMIN_WARN_BELOW_H_
#define QUILLAROTH_ADMIN_WARN_BELOW_H_
#include <string>
#include <vector>
#include "admin/queue_status.h"
std::vector<std::string> WarnLines(const std::vector<QueueStatus>& queues, long below);
#endif
