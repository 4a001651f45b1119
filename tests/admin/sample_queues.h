// The four queues that the monitoring tests describe: one with its ribbon
// partly used, one showing a printer error, one whose levels were never
// read and one whose printer could not be asked.

#ifndef QUILLAROTH_TESTS_ADMIN_SAMPLE_QUEUES_H_
#define QUILLAROTH_TESTS_ADMIN_SAMPLE_QUEUES_H_

#include <ctime>
#include <vector>

#include "admin/queue_status.h"

// The moment the samples are described at (2026-11-24 12:00:00 UTC).
constexpr time_t kSampleNow = 1795521600;

// "photo": 120 of 350 prints left (34 %), read 90 s ago.
// "booth": 48 of 350 (13 %), read 30 s ago, showing
//          com.quillaroth-error0001.
// "spare": never read, no reason.
// "kiosk": unreachable at the last reading 600 s ago (marker level -2),
//          showing com.quillaroth-error0023 and offline-report.
std::vector<QueueStatus> SampleQueues();

// A queue whose name holds what the text format must escape (double
// quotes, a backslash, a line feed), a UTF-8 letter and a Latin-1 byte
// that is not UTF-8, with 7 prints left and media-empty-error showing.
QueueStatus OddlyNamedQueue();

#endif  // QUILLAROTH_TESTS_ADMIN_SAMPLE_QUEUES_H_
