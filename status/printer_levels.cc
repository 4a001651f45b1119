#include "status/printer_levels.h"

#include <cstdio>

PrinterLevels PrinterLevels::Unavailable() {
  return PrinterLevels(Type::Unavailable);
}

PrinterLevels PrinterLevels::Fill(uint16_t total, uint16_t remaining,
                                  uint8_t sheet_type_0, uint8_t sheet_type_1) {
  PrinterLevels levels(Type::Available);
  levels.ribbon_total = total;
  levels.ribbon_remaining = remaining;
  levels.ink_sheet_type[0] = sheet_type_0;
  levels.ink_sheet_type[1] = sheet_type_1;
  return levels;
}

PrinterLevels::PrinterLevels(Type type)
    : type(type), ribbon_total(0), ribbon_remaining(0), ink_sheet_type{0, 0} {}

bool PrinterLevels::isAvailable() const { return type == Type::Available; }

std::string PrinterLevels::InkSheetTypeName() const {
  switch (ink_sheet_type[0] * 256 + ink_sheet_type[1]) {
    case 0x8400:
      return "PV-R31A 13x18(5x7\u2033)";
    case 0x8410:
      return "PV-R31A(GX) 13x18(5x7\u2033)";
    case 0x8F00:
      return "PV-R32A 15x20(6x8\u2033)";
    case 0x8F10:
      return "PV-R32A(GX) 15x20(6x8\u2033)";
    default: {
      // An unknown sheet: the first byte alone says the most about it.
      char text[8];
      snprintf(text, sizeof(text), "%02x", ink_sheet_type[0]);
      return text;
    }
  }
}

std::string PrinterLevels::to_string() const {
  switch (type) {
    case Type::Unavailable:
      return "UNAVAILABLE";
    case Type::Available: {
      char text[64];
      snprintf(text, sizeof(text),
               "ink ribbon %d / %d ink_sheet_type=0x%02x.0x%02x",
               ribbon_remaining, ribbon_total, ink_sheet_type[0],
               ink_sheet_type[1]);
      return text;
    }
  }
  return "UNKNOWN";
}
