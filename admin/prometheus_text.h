// STUB until the monitor branch is merged.
#ifndef QUILLAROTH_ADMIN_PROMETHEUS_TEXT_H_
#define QUILLAROTH_ADMIN_PROMETHEUS_TEXT_H_
#include <ctime>
#include <string>
#include <vector>
#include "admin/queue_status.h"
std::string PrometheusText(const std::vector<QueueStatus>& queues, time_t now);
#endif
