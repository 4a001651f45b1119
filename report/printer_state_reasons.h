// The printer's error codes as the scheduler's printer-state-reasons.
//
// PRINTER_STATE_REASONS maps each error code that the printer is known to
// report to the vendor keywords ("com.quillaroth-error0001" ...) it raises.
// update_printer_state() writes a complete report for one state: a
// "STATE: +keyword" line for every reason that holds now, then a
// "STATE: -keyword" line for every other known vendor keyword, so that the
// scheduler's list is right whatever it held before.

#ifndef QUILLAROTH_REPORT_PRINTER_STATE_REASONS_H_
#define QUILLAROTH_REPORT_PRINTER_STATE_REASONS_H_

#include <cstddef>
#include <cstdint>

#include "status/printer_state.h"

struct PrinterStateReasonEntry {
  uint8_t error_code[3];   // in the order of PrinterState::error_code
  const char* reasons[4];  // used slots first; a null slot ends them
};

// The known error codes, in lookup order (the first match wins).
constexpr size_t PRINTER_STATE_REASONS_COUNT = 38;
extern const PrinterStateReasonEntry
    PRINTER_STATE_REASONS[PRINTER_STATE_REASONS_COUNT];

// Raised when nothing is known of the printer's state.
extern const char* const UNAVAILABLE_REASON;
// Raised when the printer reports a code that no entry holds.
extern const char* const UNDEFINED_ERROR_REASON;

// Writes the "STATE: +%s\n" / "STATE: -%s\n" lines for the state to stderr
// (after "DEBUG: encountered undefined error number (%s)\n" for an unknown
// code).  Keeps nothing between calls.
void update_printer_state(const PrinterState& state);

#endif  // QUILLAROTH_REPORT_PRINTER_STATE_REASONS_H_
