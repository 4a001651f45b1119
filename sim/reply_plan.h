// ReplyPlan: what the simulated printer does about one query.
//
// The printer information reply is 192 bytes (unless the script makes it
// longer or shorter); its fields (power state, error code, ink ribbon ...)
// sit at the offsets that the option table gives (sim/option_table.cc).
// The job status reply is 20 bytes with the four status bytes at 8-11.
// Every other byte holds the scenario's fill byte.
//
// A plan says which bytes to send and in which writes, or that nothing is
// sent; a transport carries it out in its own terms (a pipe, a TCP
// connection, a USB endpoint).

#ifndef QUILLAROTH_SIM_REPLY_PLAN_H_
#define QUILLAROTH_SIM_REPLY_PLAN_H_

#include <cstddef>
#include <string>
#include <vector>

#include "sim/scenario.h"

constexpr size_t kInfoReplySize = 192;
constexpr size_t kJobStatusReplySize = 20;

struct ReplyPlan {
  enum class Kind {
    kSend,   // send the pieces, then end as `end` says
    kNone,   // say nothing: the host's read times out
    kClose,  // say nothing and close the way back (back channel, connection)
  };
  enum class End {
    kWhole,  // the pieces are the whole reply
    kReset,  // the pieces are its first bytes, then the connection is reset
             // (on a pipe: the back channel closes)
    kStall,  // the pieces are its first bytes, then the printer hangs: it
             // neither sends nor reads anything more
  };

  const char* what = "";  // "printer information" or "job status"
  Kind kind = Kind::kSend;
  End end = End::kWhole;
  Bytes bytes;                 // the whole reply as the printer made it
  std::vector<size_t> pieces;  // sizes of the writes, from the first byte

  // The number of bytes that the pieces carry.
  size_t SentSize() const;
};

// The reply to the Nth printer-information query (counted from 1).
ReplyPlan plan_info_reply(const Scenario& scenario, long query);

// The reply to the Nth job-status query (counted from 1).
ReplyPlan plan_job_status_reply(const Scenario& scenario, long query);

// The log line for a plan: "reply 192 bytes: power 00, error 00 00 00,
// sheet 84 10, ribbon 123/350" (what the reply carries), "reply 192 bytes
// in pieces 100,92: ...", "no reply to printer information".
std::string describe_reply(const ReplyPlan& plan);

#endif  // QUILLAROTH_SIM_REPLY_PLAN_H_
