// Carrying out a reply plan: the same steps and log lines on every
// transport.
//
// A transport (the back-channel pipe, a TCP connection, a USB endpoint)
// says how it sends one piece of a reply, how it breaks the connection off
// after the pieces, and how it closes instead of replying; carry_out_reply()
// logs the plan and its ending and calls those in order:
//
//   sim: reply 192 bytes in pieces 100,92: power 00, ...
//   sim: back channel closes after 100 of 192 bytes     (a reset; the
//                                                        transport's words)
//
// A stall is the printer's business, not the transport's: the printer core
// reports it ("printer hangs after 100 of 192 bytes") as an event of its
// own, and the transport only sends the pieces.

#ifndef QUILLAROTH_SIM_REPLY_TRANSPORT_H_
#define QUILLAROTH_SIM_REPLY_TRANSPORT_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "sim/reply_plan.h"
#include "sim/sim_log.h"

class ReplyTransport {
 public:
  virtual ~ReplyTransport() = default;

  // Sends one piece of a reply, or queues it to go in a write of its own.
  virtual void SendPiece(const uint8_t* data, size_t size) = 0;
  // Breaks the connection off once the pieces sent so far have gone.
  virtual void ResetAfterPieces() = 0;
  // Closes the way back instead of replying.
  virtual void CloseInstead() = 0;
  // What a reset is on this transport, for the log: "back channel closes",
  // "connection 2 reset".
  virtual std::string ResetWords() const = 0;
};

// Logs the plan (describe_reply) and, for a reset, its ending; then sends
// its pieces and ends as it says, or closes, or does nothing.
void carry_out_reply(const ReplyPlan& plan, SimLog& log,
                     ReplyTransport& transport);

#endif  // QUILLAROTH_SIM_REPLY_TRANSPORT_H_
