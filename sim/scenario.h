// The simulated printer's script: how it answers on each channel.
//
// A Scenario says how the backend side answers the filter's side-channel
// requests (the bidirectional probe and the output drains), and what the
// printer answers to each printer-information query: its reply fields
// (power, error code, ink ribbon ...), or a raw reply, and whether the reply
// comes whole, in pieces, cut short, broken off or not at all.
//
// The keys that fill it ("error=060202", "split=100+92", ...) are listed
// once, in sim/option_table.h, for the command line, --reply and the device
// URI alike; so are the printer's values when the script says nothing,
// which Scenario() takes from there.

#ifndef QUILLAROTH_SIM_SCENARIO_H_
#define QUILLAROTH_SIM_SCENARIO_H_

#include <cups/sidechannel.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

// What a printer-information reply looks like; everything that is set
// replaces what lies beneath it (the defaults, then the run-wide shape,
// then the shape of one query).
struct ReplyShape {
  // Reply fields by name ("power", "error" ...), each as the bytes that go
  // at its offset.
  std::map<std::string, Bytes> fields;
  std::optional<Bytes> raw;                  // the whole reply
  std::optional<size_t> size;                // cut or pad to this length
  std::optional<std::vector<size_t>> split;  // sizes of the pieces
  std::optional<size_t> reset;               // reset after N bytes
  std::optional<size_t> stall;               // hang after N bytes
  bool none = false;                         // the printer says nothing
  bool close = false;                        // the back channel closes
};

// How one side-channel request is answered: with this status, or never.
// The status is an int, not a cups_sc_status_t: the script may answer with
// any byte, libcups names only some.
struct SideAnswer {
  bool answered = true;
  int status = CUPS_SC_STATUS_NONE;
};

struct Scenario {
  // The unscripted printer: every option at the option table's default.
  Scenario();

  // The bidirectional probe (CUPS_SC_CMD_GET_BIDI).
  SideAnswer bidi;
  Bytes bidi_data;

  // The output drains (CUPS_SC_CMD_DRAIN_OUTPUT), all of them and the Nth.
  SideAnswer drain;
  std::map<long, SideAnswer> drain_at;

  // The side channel closes: -1 never, 0 at start, N when the Nth
  // side-channel request arrives (the probe is the first).
  long close_sidechannel_at = -1;
  // The back channel closes before the first query (per_query[N].close
  // closes it at the Nth query instead).
  bool close_backchannel_at_start = false;

  // The printer-information replies: for every query, and for the Nth.
  ReplyShape every;
  std::map<long, ReplyShape> per_query;
  // Queries 1..wake_after find the printer asleep; -1: it never wakes.
  long wake_after{};
  uint8_t fill{};  // the bytes that no field covers
  // The printer hangs from the start: it reads and answers nothing.
  bool hang = false;

  // Bytes 8-11 of the 20-byte job status reply.
  std::array<uint8_t, 4> job_status{};
};

#endif  // QUILLAROTH_SIM_SCENARIO_H_
