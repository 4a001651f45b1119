// Records built field by field: the odd ones that no named constructor
// makes, such as a type tag outside the known ones, or counts and type bytes
// behind an unavailable tag.

#ifndef QUILLAROTH_TESTS_SUPPORT_RECORDS_H_
#define QUILLAROTH_TESTS_SUPPORT_RECORDS_H_

#include <cstdint>

#include "status/printer_levels.h"

// A record with exactly these fields, whatever the type says.
PrinterLevels LevelsWith(PrinterLevels::Type type, uint16_t total,
                         uint16_t remaining, unsigned char sheet_0,
                         unsigned char sheet_1);

#endif  // QUILLAROTH_TESTS_SUPPORT_RECORDS_H_
