#include "report/report_printer_levels.h"

#include <cstdint>
#include <cstdio>
#include <string>

void report_printer_levels(PrinterLevels const& levels) {
  fprintf(stderr, "DEBUG: [ReportLevels] %s\n", levels.to_string().c_str());

  int32_t level;
  std::string message;
  if (!levels.isAvailable()) {
    level = -2;
    message = " ";
  } else if (levels.ribbon_remaining == 0xFFFF ||
             levels.ribbon_total == 0xFFFF || levels.ribbon_total == 0) {
    // The printer gave counts that say nothing about the level.
    level = -1;
    message = " ";
  } else {
    // Truncated, and not clamped: a count above the total shows as such.
    level = static_cast<int32_t>(uint32_t{levels.ribbon_remaining} * 100u /
                                 uint32_t{levels.ribbon_total});
    char text[128];
    snprintf(text, sizeof(text), "Ink Ribbon = %d / %d",
             levels.ribbon_remaining, levels.ribbon_total);
    message = text;
  }

  std::string names = " ";
  if (levels.ink_sheet_type[0] != 0xFF)
    names = "InkSheetType: " + levels.InkSheetTypeName();

  fprintf(stderr, "ATTR: marker-colors=#00FF00\n");
  fprintf(stderr, "ATTR: marker-levels=%d\n", level);
  fprintf(stderr, "ATTR: marker-message=\"%s\"\n", message.c_str());
  fprintf(stderr, "ATTR: marker-names=\"%s\"\n", names.c_str());
  fprintf(stderr, "ATTR: marker-types=ink-ribbon\n");
}
