// SimPrinter: the simulated printer of one test, described once.
//
// A test states what the printer is (its power, error code, ink sheet,
// ribbon counts, how long it sleeps, how its reply is cut) in this small
// value type.  Keys() says it once, in the words of the simulator's option
// table; the simulator's options, the backend's device URI and the USB
// printer's script are joins of those keys, and the reply bytes and the
// simulator's log line of each reply are what the simulator makes of them
// (sim/reply_plan.h; the tests of the simulator check it against bytes
// written by hand).  The filter's "printer_info" line is the test's own.
// The defaults are those of the simulator when nothing else is asked for:
// awake, no error, a PV-R31A(GX) ink sheet (84 10) with 123 of 350 prints
// left, every other byte 00.

#ifndef QUILLAROTH_TESTS_SUPPORT_SIM_PRINTER_H_
#define QUILLAROTH_TESTS_SUPPORT_SIM_PRINTER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// One key of the simulator's option table and its value: {"error",
// "060202"}.
using SimKey = std::pair<std::string, std::string>;

struct SimPrinter {
  // wake_after for a printer that sleeps through every query.
  static constexpr int kNeverWakes = -1;
  // close_back_at for a back channel closed before the first query.
  static constexpr int kAtStart = -1;

  uint8_t power = 0x00;        // offset 5, when not asleep (00 = awake)
  uint8_t memory = 0x00;       // offset 4
  uint16_t mech = 0x0000;      // offsets 128-129
  uint32_t error = 0x000000;   // offsets 131-133
  uint16_t sheet = 0x8410;     // offsets 145-146, the ink-sheet type
  uint16_t total = 350;        // offsets 148-149, big-endian
  uint16_t remaining = 123;    // offsets 150-151, big-endian
  uint8_t fill = 0x00;         // every byte that no field covers
  size_t size = 192;           // the reply's length
  std::vector<size_t> split;   // the reply's pieces (empty: in one piece)
  int wake_after = 0;          // queries 1 to N find it asleep (power 01)
  std::vector<int> asleep_at;  // further queries that find it asleep
  int fail_at = 0;             // the query that gets no answer (0: none)
  int close_back_at = 0;       // the query at which the back channel is
                               // closed instead of answered (0: never)

  // The same printer with one field changed, for chains such as
  // SimPrinter().Error(0x060202).Remaining(0).
  SimPrinter& Power(uint8_t v) { power = v; return *this; }
  SimPrinter& Memory(uint8_t v) { memory = v; return *this; }
  SimPrinter& Mech(uint16_t v) { mech = v; return *this; }
  SimPrinter& Error(uint32_t v) { error = v; return *this; }
  SimPrinter& Sheet(uint16_t v) { sheet = v; return *this; }
  SimPrinter& Total(uint16_t v) { total = v; return *this; }
  SimPrinter& Remaining(uint16_t v) { remaining = v; return *this; }
  SimPrinter& Fill(uint8_t v) { fill = v; return *this; }
  SimPrinter& Size(size_t v) { size = v; return *this; }
  SimPrinter& Split(std::vector<size_t> v) { split = v; return *this; }
  SimPrinter& WakeAfter(int v) { wake_after = v; return *this; }
  SimPrinter& AsleepAt(std::vector<int> v) { asleep_at = v; return *this; }
  SimPrinter& FailAt(int v) { fail_at = v; return *this; }
  SimPrinter& CloseBackAt(int v) { close_back_at = v; return *this; }

  // The printer as keys of the simulator's option table, in its order.
  std::vector<SimKey> Keys() const;
  // The quillaroth-sim options that make this printer: --KEY=VALUE.
  std::vector<std::string> SimOptions() const;
  // The quillarothsim device URI of a queue for this printer:
  // quillarothsim://QUEUE?KEY=VALUE&...  A key that a device URI does not
  // take (the per-query "reply" of AsleepAt) fails the test.
  std::string DeviceUri(const std::string& queue) const;
  // The emulated USB printer's script: KEY=VALUE lines.
  std::string UsbScript() const;

  // True when the Nth query (counted from 1 over the run) finds it asleep.
  bool IsAsleepAt(int query) const;
  // True when the filter receives a whole reply to the Nth query.
  bool Answers(int query) const;
  // What the filter's read returns for a query that it does not answer:
  // -1 (time-out) for a missing or short reply, 0 for a closed channel.
  long ReadFailure(int query) const;
  // The simulator's log lines of its answer to the Nth query.
  std::string SimAnswerLines(int query) const;
  // The bytes of its reply, asleep or awake.
  std::string Reply(bool asleep) const;
  // "DEBUG: printer_info=[...]" for that reply.
  std::string InfoLine(bool asleep) const;
  // The simulator's log line of that reply: "sim: reply N bytes[ in pieces
  // A,B]: power PP, error EE EE EE, sheet SS SS, ribbon R/T".
  std::string SimReplyLine(bool asleep) const;
  // The supply report of its reply: the marker level and the ink sheet's
  // name as the test expects them; the message follows from the counts
  // (blank for an unusable level, "-1").
  std::string LevelsLines(const std::string& level,
                          const std::string& sheet_name) const;
  // "Ink Ribbon = <remaining> / <total>".
  std::string RibbonMessage() const;
};

#endif  // QUILLAROTH_TESTS_SUPPORT_SIM_PRINTER_H_
