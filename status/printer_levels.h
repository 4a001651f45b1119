// PrinterLevels: the ink-ribbon supply of the printer.
//
// How many units the loaded ink sheet holds in all, how many are left, and
// the two-byte ink-sheet type code, all exactly as the printer reports them
// (no range checks; 0 and 65535 are judged by report_printer_levels).
// Filled from the printer information reply by PrinterInfo::GetPrinterLevels,
// or Unavailable when there is nothing to report.

#ifndef QUILLAROTH_STATUS_PRINTER_LEVELS_H_
#define QUILLAROTH_STATUS_PRINTER_LEVELS_H_

#include <cstdint>
#include <string>

class PrinterLevels {
 public:
  enum class Type : int32_t { Unavailable = 0, Available = 1 };

  // Nothing known: type Unavailable, every other field 0.
  static PrinterLevels Unavailable();
  // Levels read from the printer.  Mind the order: the total comes first.
  static PrinterLevels Fill(uint16_t total, uint16_t remaining,
                            uint8_t sheet_type_0, uint8_t sheet_type_1);

  // Sets the type; counts and type bytes are 0.
  explicit PrinterLevels(Type type);

  // True exactly when the type is Available.
  bool isAvailable() const;
  // The media name of the ink-sheet type, for example
  // "PV-R31A 13x18(5x7″)"; for an unknown code, the first byte as "%02x".
  std::string InkSheetTypeName() const;
  // "UNAVAILABLE", "ink ribbon %d / %d ink_sheet_type=0x%02x.0x%02x"
  // (remaining first) or "UNKNOWN".
  std::string to_string() const;

  Type type;
  uint16_t ribbon_total;
  uint16_t ribbon_remaining;
  uint8_t ink_sheet_type[2];
};

#endif  // QUILLAROTH_STATUS_PRINTER_LEVELS_H_
