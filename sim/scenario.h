// The simulated printer's script: how it answers on each channel.
//
// A Scenario says how the backend side answers the filter's side-channel
// requests (the bidirectional probe and the output drains), and what the
// printer answers to each printer-information query: its power, mechanism
// and memory bytes, its error code, its ink ribbon, or a raw reply, and
// whether the reply comes whole, in pieces, cut short, or not at all.
//
// The same keys ("error=060202", "split=100+92", ...) script the simulator's
// command line, its per-query replies and the backend's device URI, so the
// parsing of one key=value pair lives here too.

#ifndef QUILLAROTH_SIM_SCENARIO_H_
#define QUILLAROTH_SIM_SCENARIO_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

// What a printer-information reply looks like; every field that is set
// replaces the one beneath it (defaults, then the run-wide shape, then the
// shape of one query).
struct ReplyShape {
  std::optional<uint8_t> power;                 // offset 5
  std::optional<uint8_t> memory;                // offset 4
  std::optional<std::array<uint8_t, 2>> mech;   // offsets 128, 129
  std::optional<std::array<uint8_t, 3>> error;  // offsets 131-133
  std::optional<std::array<uint8_t, 2>> sheet;  // offsets 145, 146
  std::optional<uint16_t> total;                // offsets 148-149, big-endian
  std::optional<uint16_t> remaining;            // offsets 150-151, big-endian
  std::optional<Bytes> raw;                     // the whole reply
  std::optional<size_t> size;                   // cut or pad to this length
  std::optional<std::vector<size_t>> split;     // sizes of the pieces
  std::optional<size_t> reset;                  // reset after N bytes
  std::optional<size_t> stall;                  // hang after N bytes
  bool none = false;                            // the printer says nothing
  bool close = false;                           // the back channel closes
};

// How one side-channel request is answered: with this status, or never.
struct SideAnswer {
  bool answered = true;
  int status = 1;  // CUPS_SC_STATUS_OK
};

struct Scenario {
  // The bidirectional probe (CUPS_SC_CMD_GET_BIDI).
  SideAnswer bidi;
  Bytes bidi_data = {1};  // CUPS_SC_BIDI_SUPPORTED

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
  long wake_after = 0;
  uint8_t fill = 0;  // the bytes that no field covers
  // The printer hangs from the start: it reads and answers nothing.
  bool hang = false;

  // Bytes 8-11 of the 20-byte job status reply.
  std::array<uint8_t, 4> job_status = {0, 0, 0, 0};
};

// Parses exactly 2*N hex digits into N bytes; false on anything else.
bool parse_hex_exact(const std::string& text, uint8_t* out, size_t count);

// Parses hex digits (blanks and colons between bytes allowed) into bytes.
bool parse_hex_bytes(const std::string& text, Bytes* out);

// Parses a decimal count in [min, max].
bool parse_count(const std::string& text, long min, long max, long* out);

// Parses a side-channel status: a CUPS name ("OK", "CUPS_SC_STATUS_OK",
// any case) or a number 0-255.
bool parse_sc_status(const std::string& text, int* out);

// The short name of a side-channel status for the log ("OK", "TIMEOUT"),
// or its number.
std::string sc_status_name(int status);

// Sets one reply key (power, memory, mech, error, sheet, total, remaining,
// raw, size, short, split, none, close) in the shape.  On failure returns
// false and says why in *why.
bool set_reply_key(ReplyShape* shape, const std::string& key,
                   const std::string& value, std::string* why);

// Sets each key of "key=value,key=value,..." in the shape.
bool set_reply_keys(ReplyShape* shape, const std::string& list,
                    std::string* why);

// Sets the wake-up point from a count of sleeping queries or "never".
bool parse_wake_after(const std::string& text, long* out);

#endif  // QUILLAROTH_SIM_SCENARIO_H_
