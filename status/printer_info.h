// PrinterInfo: the printer information reply (answer to ESC "V21").
//
// The reply is at least 192 bytes; only these are read (big-endian counts):
//
//   offset  width  field
//     4       1    memory_state      0xff: memory not free
//     5       1    power_state       0x00: awake
//   128       2    mech_state        [0] 0x00 or 0x20 and [1] 0x00: good
//   131       3    error_info        the printer's error code, 00 00 00 = none
//   145       2    ink_sheet_type    ink-sheet type code
//   148       2    ribbon_total      total count of the ink ribbon
//   150       2    ribbon_remaining  remaining count of the ink ribbon
//
// Every other byte is ignored; nothing is validated.  The record keeps its
// own copies (it points nowhere into the reply) and its field order is its
// own, not the reply's.

#ifndef QUILLAROTH_STATUS_PRINTER_INFO_H_
#define QUILLAROTH_STATUS_PRINTER_INFO_H_

#include <cstdint>
#include <string>

#include "status/printer_levels.h"
#include "status/printer_state.h"

class PrinterInfo {
 public:
  enum class Type : int32_t { Unavailable = 0, Available = 1 };

  // No reply: the query failed or the printer never woke up.
  static PrinterInfo Unavailable();
  // A record filled from a reply of at least 192 bytes.
  static PrinterInfo Parse(const char* reply);

  // Sets the type only; the fields are zeroed and not read while the type is
  // Unavailable.
  explicit PrinterInfo(Type type);

  // True exactly when the type is Available.
  bool isAvailable() const;
  // The printer is awake (power state 0x00).
  bool isWakeUp() const;
  // Both mechanism state bytes read good.
  bool isMechGood() const;
  // The printer's memory is free (memory state other than 0xff).
  bool isMemoryFree() const;

  // Unavailable; else the supply-low code when no ribbon is left; else the
  // printer's own error code.
  PrinterState GetPrinterState() const;
  // Unavailable, or the ribbon counts and ink-sheet type.
  PrinterLevels GetPrinterLevels() const;

  // One line for the log: "power_state=0x%02x mech_state=[0x%02x,0x%02x]
  // memory_state=0x%02x error_info=[<state>] levels=[<levels>]",
  // "UNAVAILABLE" or "UNKNOWN".
  std::string to_string() const;

  Type type;
  uint8_t power_state;
  uint8_t mech_state[2];
  uint8_t memory_state;
  uint8_t error_info[3];
  uint16_t ribbon_total;
  uint16_t ribbon_remaining;
  uint8_t ink_sheet_type[2];
};

#endif  // QUILLAROTH_STATUS_PRINTER_INFO_H_
