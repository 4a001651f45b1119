// The ink-ribbon supply as the scheduler's marker attributes.
//
// report_printer_levels() writes "DEBUG: [ReportLevels] ..." and then the
// five lines marker-colors, marker-levels, marker-message, marker-names and
// marker-types to stderr.  The level is -2 when nothing is known, -1 when
// the printer's counts are unusable (a count of 65535 or a total of 0), else
// remaining * 100 / total, truncated and not clamped.

#ifndef QUILLAROTH_REPORT_REPORT_PRINTER_LEVELS_H_
#define QUILLAROTH_REPORT_REPORT_PRINTER_LEVELS_H_

#include "status/printer_levels.h"

// Writes the supply report for the levels to stderr.  Keeps nothing.
void report_printer_levels(PrinterLevels const& levels);

#endif  // QUILLAROTH_REPORT_REPORT_PRINTER_LEVELS_H_
