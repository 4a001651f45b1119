// PrinterCore: the simulated printer itself, apart from any transport.
//
// The printer understands three escape commands:
//
//   wake-up               1b 45 57 55         no answer
//   printer information   1b 56 32 31         a reply (see reply_plan.h)
//   job status            1b 56 31 30 00 00   a 20-byte reply
//
// A transport (the pipes of quillaroth-sim and of the quillarothsim backend,
// a TCP connection, an emulated USB device) hands the core the bytes that
// the host sends, cut anywhere, and carries out what comes back, in order:
//
//   PrinterCore printer(scenario);
//   handle(printer.Start());  // "printer hangs: ..." when scripted to
//   handle(printer.Take(data, size));
//
// where handle() logs each event's line and carries out a query's reply
// (carry_out_reply() in sim/reply_transport.h):
//
//   for (const PrinterEvent& event : events) {
//     log.Line("%s", event.log_line.c_str());
//     if (event.is_query) carry_out_reply(event.reply, log, transport);
//   }
//   ...
//   for (const PrinterEvent& event : printer.Finish()) ...  // host is done
//
// Bytes that begin no command are reported up to the next escape byte.  A
// command whose first bytes have come waits in the core for the rest.
//
// One core is one connection's printer: queries are counted from 1 in each
// core, so --wake-after and --reply N count again for every new connection
// (every backend run, every TCP connection, every USB claim).  After a plan
// that stalls, or from the start when the scenario says hang, the printer
// is hung: Take() swallows everything and yields nothing.  The core says so
// itself, in an event of its own: "printer hangs: it reads and answers
// nothing" from Start(), "printer hangs after 100 of 192 bytes" right
// after the query whose reply stalls.
//
// The core does no I/O and keeps no pointer into the caller's buffers.

#ifndef QUILLAROTH_SIM_PRINTER_CORE_H_
#define QUILLAROTH_SIM_PRINTER_CORE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sim/reply_plan.h"
#include "sim/scenario.h"

// One reaction of the printer to the host's bytes.
struct PrinterEvent {
  // "cmd 1b 56 32 31", "unknown bytes (4): 6a 75 6e 6b", or "printer
  // hangs after 100 of 192 bytes".
  std::string log_line;
  // True for a query: the printer answers it as `reply` plans.
  bool is_query = false;
  ReplyPlan reply;
};

class PrinterCore {
 public:
  // A printer that plays the scenario (copied: the core owns its script).
  explicit PrinterCore(Scenario scenario);

  // The printer is switched on: a printer scripted to hang says so.
  std::vector<PrinterEvent> Start() const;
  // Takes bytes that the host sent; returns what the printer does about
  // every command (or unknown bytes) that they complete.
  std::vector<PrinterEvent> Take(const uint8_t* data, size_t size);
  // The host's output has ended: bytes still waiting are unknown bytes.
  std::vector<PrinterEvent> Finish();

  // The printer reads and answers nothing any more (hang, or a stall).
  bool hung() const { return hung_; }
  // Printer-information queries so far.
  long info_queries() const { return info_queries_; }
  // Job-status queries so far.
  long job_status_queries() const { return job_status_queries_; }
  // The script.
  const Scenario& scenario() const { return scenario_; }

 private:
  // Handles every complete command at the front of the input.
  void HandleInput(bool at_end, std::vector<PrinterEvent>* events);

  Scenario scenario_;
  Bytes input_;
  bool hung_;
  long info_queries_ = 0;
  long job_status_queries_ = 0;
};

#endif  // QUILLAROTH_SIM_PRINTER_CORE_H_
