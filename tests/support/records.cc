#include "tests/support/records.h"

PrinterLevels LevelsWith(PrinterLevels::Type type, uint16_t total,
                         uint16_t remaining, unsigned char sheet_0,
                         unsigned char sheet_1) {
  PrinterLevels levels(type);
  levels.ribbon_total = total;
  levels.ribbon_remaining = remaining;
  levels.ink_sheet_type[0] = sheet_0;
  levels.ink_sheet_type[1] = sheet_1;
  return levels;
}
