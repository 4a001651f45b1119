// StatusJson: `quillaroth status --json`, for scripts.  Its shape is stable:
//
//   {"queues": [{"queue": str, "scheme": str,
//                "state": "idle"|"processing"|"stopped", "enabled": bool,
//                "reasons": [{"keyword": str, "text": str}],
//                "prints_remaining": int|null, "prints_total": int|null,
//                "level_percent": int|null, "ink_sheet": str|null,
//                "levels_read_at": RFC 3339 str|null,
//                "levels_age_seconds": int|null}]}
//
// written with two-space indentation, keys in this order.

#ifndef QUILLAROTH_ADMIN_STATUS_JSON_H_
#define QUILLAROTH_ADMIN_STATUS_JSON_H_

#include <ctime>
#include <string>
#include <vector>

#include "admin/queue_status.h"

// The JSON document of QUEUES, ages counted to NOW; ends in a line feed.
std::string StatusJson(const std::vector<QueueStatus>& queues, time_t now);

// TEXT as a JSON string, quotes included.
std::string JsonString(const std::string& text);

// "2026-11-24T04:30:00Z".
std::string Rfc3339(time_t when);

#endif  // QUILLAROTH_ADMIN_STATUS_JSON_H_
