// The simulated printer's replies.
//
// The printer information reply is 192 bytes (unless the script makes it
// longer or shorter); the fields that the filter reads sit at fixed offsets:
//
//   offset  width  field
//     4       1    memory state       (0xff: memory not free)
//     5       1    power state        (0x00: awake)
//   128       2    mechanism state
//   131       3    error code         (00 00 00: no error)
//   145       2    ink-sheet type
//   148       2    ribbon total       (big-endian)
//   150       2    ribbon remaining   (big-endian)
//
// The job status reply is 20 bytes with the four status bytes at 8-11.
// Every other byte holds the scenario's fill byte.

#ifndef QUILLAROTH_SIM_PRINTER_H_
#define QUILLAROTH_SIM_PRINTER_H_

#include <cstddef>
#include <vector>

#include "sim/scenario.h"

constexpr size_t INFO_REPLY_SIZE = 192;
constexpr size_t JOB_STATUS_REPLY_SIZE = 20;

// What the printer does about one query.
struct ReplyPlan {
  enum class Kind { Send, None, Close };
  Kind kind = Kind::Send;
  Bytes bytes;                // the reply
  std::vector<size_t> pieces; // sizes of the writes, adding up to the reply
};

// The reply to the Nth printer-information query (counted from 1).
ReplyPlan plan_info_reply(const Scenario& scenario, long query);

// The reply to the Nth job-status query (counted from 1).
ReplyPlan plan_job_status_reply(const Scenario& scenario, long query);

#endif  // QUILLAROTH_SIM_PRINTER_H_
