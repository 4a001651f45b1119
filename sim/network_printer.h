// The simulated printer on a TCP port: quillaroth-sim --listen HOST:PORT.
//
// It plays a network printer of the AppSocket kind (port 9100 style), the
// kind that CUPS' own `socket` backend prints to: the host connects, writes
// the escape commands, reads the replies from the same connection, and
// half-closes when its job is done; the printer then sends what it still
// has and closes too.  Each connection gets a printer core of its own
// (sim/printer_core.h), scripted by the run-wide options and that
// connection's --connection keys, so queries and --wake-after count from 1
// in every connection, that is in every job.  Connections are served side
// by side; one that hangs does not hold up the next.
//
// The faults of the script, as the host sees them:
//   reset=N      N bytes of the reply, then a TCP reset (ECONNRESET)
//   stall=N      N bytes of the reply, then silence on an open connection
//   hang         a connection that is accepted and never read or answered
//   close        the printer closes the connection instead of answering
//   --accept N   N connections are served, later ones refused
//                (ECONNREFUSED: the port stays bound but does not listen)
//
// The bound address goes to stdout as "listening on HOST:PORT", so that a
// caller that asked for port 0 learns the port.  The log (--log) gets what
// the printer saw, in the words of the other transports, plus a line for
// each connection's start and end.  SIGTERM or SIGINT end the run with
// status 0.

#ifndef QUILLAROTH_SIM_NETWORK_PRINTER_H_
#define QUILLAROTH_SIM_NETWORK_PRINTER_H_

#include "sim/sim_log.h"
#include "sim/sim_settings.h"

// Serves connections until SIGTERM or SIGINT; returns the exit status (0,
// or 2 when the address cannot be bound, with a message on stderr).
int serve_network_printer(const SimSettings& settings, SimLog& log);

#endif  // QUILLAROTH_SIM_NETWORK_PRINTER_H_
