// PrinterState: the printer's error state as the rest of the filter sees it.
//
// Either Unavailable (nothing known: no answer from the printer, or no
// bidirectional link) or Available with the printer's three-byte error code,
// bytes in the order the printer sends them.  00 00 00 is the good state;
// fe ed 01 is the filter's own code for a used-up ink ribbon.  The meaning of
// a code lives only in PRINTER_STATE_REASONS (report/printer_state_reasons.h).
//
// A plain value type: copy it, compare it, render it for the log.

#ifndef QUILLAROTH_STATUS_PRINTER_STATE_H_
#define QUILLAROTH_STATUS_PRINTER_STATE_H_

#include <cstdint>
#include <string>
#include <type_traits>

// Every byte field of the records is a uint8_t; callers hand in their codes
// as plain unsigned char arrays, which must be the same type.
static_assert(std::is_same<uint8_t, unsigned char>::value,
              "uint8_t is unsigned char");

class PrinterState {
 public:
  enum class Type : int32_t { Unavailable = 0, Available = 1 };

  // Nothing is known about the printer's state.
  static PrinterState Unavailable();
  // The printer reports no error (code 00 00 00).
  static PrinterState Good();
  // The printer's own error code, copied byte for byte.
  static PrinterState Error(const uint8_t (*code)[3]);
  // The filter's own code (fe ed 01) for an ink ribbon that is used up.
  static PrinterState InternalSupplyLow();

  // Sets the type only; the code bytes are zeroed and never read unless the
  // type is Available.
  explicit PrinterState(Type type);
  // Sets the type and copies the three code bytes, byte 0 first.
  PrinterState(Type type, const uint8_t (*code)[3]);

  // Two Available states are equal when their codes are; two Unavailable
  // states are always equal; a state of any other type equals nothing, not
  // even itself.
  bool operator==(const PrinterState& other) const;
  bool operator!=(const PrinterState& other) const;
  // True exactly when the state is Available and carries this code.
  bool operator==(const uint8_t (*code)[3]) const;
  bool operator!=(const uint8_t (*code)[3]) const;

  // "UNAVAILABLE", "GOOD", "0x%02x,0x%02x,0x%02x" or "UNKNOWN".
  std::string to_string() const;

  Type type;
  uint8_t error_code[3];
};

#endif  // QUILLAROTH_STATUS_PRINTER_STATE_H_
