// The shared vocabulary of the simulated printer's tests.

#ifndef QUILLAROTH_TESTS_SIM_SIM_KIT_H_
#define QUILLAROTH_TESTS_SIM_SIM_KIT_H_

#include <string>

#include "sim/option_table.h"
#include "sim/reply_plan.h"
#include "sim/scenario.h"
#include "sim/value_parsers.h"
#include "tests/support/sim_printer.h"

// Bytes from hex digits ("1b 56 32 31"); empty on a typo, which the
// comparison then shows.
inline Bytes Hex(const std::string& text) {
  Bytes bytes;
  parse_hex_bytes(text, &bytes);
  return bytes;
}

// The bytes of a string.
inline Bytes BytesOf(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

// The printer-information reply of an unscripted printer, written out by
// hand: awake (power 00 at offset 5), no error (00 00 00 at 131-133), ink
// sheet 84 10 at 145-146, 350 prints (01 5e at 148-149) with 123 left
// (00 7b at 150-151), 00 everywhere else.  The simulator's tests compare
// its replies with this, not with the test kit's SimPrinter, whose replies
// are the simulator's own.
inline Bytes DefaultInfoReply() {
  Bytes reply(kInfoReplySize, 0x00);
  reply[145] = 0x84;
  reply[146] = 0x10;
  reply[148] = 0x01;
  reply[149] = 0x5e;
  reply[150] = 0x00;
  reply[151] = 0x7b;
  return reply;
}

// The reply with `bytes` written from `offset` on.
inline Bytes WithBytes(Bytes reply, size_t offset, const Bytes& bytes) {
  for (size_t i = 0; i < bytes.size(); i++) reply[offset + i] = bytes[i];
  return reply;
}

// Applies scenario keys ("error=060202&wake-after=2"), as a device URI
// does; on a bad key returns the complaint, else "".
inline std::string ScriptUri(Scenario* scenario, const std::string& keys) {
  std::string why;
  apply_keys(keys, '&', kScenarioKey, scenario_target(scenario), &why);
  return why;
}

// Applies one query's keys ("error=060202,split=100+92"), as --reply
// does; on a bad key returns the complaint, else "".
inline std::string ScriptQuery(Scenario* scenario, long query,
                               const std::string& keys) {
  OptionTarget target;
  target.shape = &scenario->per_query[query];
  std::string why;
  apply_keys(keys, kKeySeparator, kPerQuery, target, &why);
  return why;
}

#endif  // QUILLAROTH_TESTS_SIM_SIM_KIT_H_
