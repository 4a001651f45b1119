#include "status/printer_info.h"

#include <cstdio>

namespace {

// Reads an unsigned big-endian 16-bit count at offset.
uint16_t be16(const uint8_t* reply, int offset) {
  return static_cast<uint16_t>(reply[offset] * 256 + reply[offset + 1]);
}

}  // namespace

PrinterInfo PrinterInfo::Unavailable() {
  return PrinterInfo(Type::Unavailable);
}

PrinterInfo PrinterInfo::Parse(const char* reply) {
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(reply);
  PrinterInfo info(Type::Available);
  info.power_state = bytes[5];
  info.mech_state[0] = bytes[128];
  info.mech_state[1] = bytes[129];
  info.memory_state = bytes[4];
  info.error_info[0] = bytes[131];
  info.error_info[1] = bytes[132];
  info.error_info[2] = bytes[133];
  info.ribbon_total = be16(bytes, 148);
  info.ribbon_remaining = be16(bytes, 150);
  info.ink_sheet_type[0] = bytes[145];
  info.ink_sheet_type[1] = bytes[146];
  return info;
}

PrinterInfo::PrinterInfo(Type type)
    : type(type),
      power_state(0),
      mech_state{0, 0},
      memory_state(0),
      error_info{0, 0, 0},
      ribbon_total(0),
      ribbon_remaining(0),
      ink_sheet_type{0, 0} {}

bool PrinterInfo::isAvailable() const { return type == Type::Available; }

bool PrinterInfo::isWakeUp() const {
  return type != Type::Unavailable && power_state == 0x00;
}

bool PrinterInfo::isMechGood() const {
  return type != Type::Unavailable &&
         (mech_state[0] == 0x00 || mech_state[0] == 0x20) &&
         mech_state[1] == 0x00;
}

bool PrinterInfo::isMemoryFree() const {
  return type != Type::Unavailable && memory_state != 0xff;
}

PrinterState PrinterInfo::GetPrinterState() const {
  if (type == Type::Unavailable) return PrinterState::Unavailable();
  if (ribbon_remaining >= 1) return PrinterState::Error(&error_info);
  return PrinterState::InternalSupplyLow();
}

PrinterLevels PrinterInfo::GetPrinterLevels() const {
  if (type == Type::Unavailable) return PrinterLevels::Unavailable();
  return PrinterLevels::Fill(ribbon_total, ribbon_remaining, ink_sheet_type[0],
                             ink_sheet_type[1]);
}

std::string PrinterInfo::to_string() const {
  switch (type) {
    case Type::Unavailable:
      return "UNAVAILABLE";
    case Type::Available: {
      char text[96];
      snprintf(text, sizeof(text),
               "power_state=0x%02x mech_state=[0x%02x,0x%02x] "
               "memory_state=0x%02x",
               power_state, mech_state[0], mech_state[1], memory_state);
      return std::string(text) + " error_info=[" +
             GetPrinterState().to_string() + "] levels=[" +
             GetPrinterLevels().to_string() + "]";
    }
  }
  return "UNKNOWN";
}
