// The backend's side of the filter's conversation with the printer.
//
// serve_printer() plays a bidirectional backend with the simulated printer
// behind it: it reads the escape commands that the filter writes, answers
// the filter's side-channel requests on CUPS_SC_FD (4) with libcups'
// cupsSideChannelRead()/cupsSideChannelWrite(), and writes the printer's
// replies to the back channel (descriptor 3) with cupsBackChannelWrite(),
// all as the scenario scripts them.
//
// Before a drain request is answered, everything that the filter has written
// so far is read and handled, as a real backend would send it to the
// printer first.  A reply in several pieces is written piece by piece: each
// further piece only once the filter has read the pipe empty, so that each
// piece arrives in a read of its own.

#ifndef QUILLAROTH_SIM_SERVE_H_
#define QUILLAROTH_SIM_SERVE_H_

#include "sim/scenario.h"
#include "sim/sim_log.h"

struct ServeChannels {
  int input_fd = -1;             // the filter's output (-1: none)
  int save_fd = -1;              // gets a copy of that output (-1: none)
  int backchannel_peek_fd = -1;  // a kept read end of the back channel
  bool until_sidechannel_eof = true;  // also wait for the side channel's end
};

// Serves until the filter's output ends (and, if asked, the side channel).
void serve_printer(const Scenario& scenario, const ServeChannels& channels,
                   SimLog& log);

#endif  // QUILLAROTH_SIM_SERVE_H_
