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

// The printer-information reply of an unscripted printer (awake, no error,
// ink sheet 84 10, 123 of 350 prints left, 00 everywhere else), as the
// test kit describes it.
inline Bytes DefaultInfoReply() { return BytesOf(SimPrinter().Reply(false)); }

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
