#include "status/printer_state.h"

#include <cstdio>

namespace {

// The filter's own code for a used-up ink ribbon; the printer never sends it.
const uint8_t kInternalSupplyLowCode[3] = {0xfe, 0xed, 0x01};
const uint8_t kGoodCode[3] = {0x00, 0x00, 0x00};

}  // namespace

PrinterState PrinterState::Unavailable() {
  return PrinterState(Type::Unavailable);
}

PrinterState PrinterState::Good() {
  return PrinterState(Type::Available, &kGoodCode);
}

PrinterState PrinterState::Error(const uint8_t (*code)[3]) {
  return PrinterState(Type::Available, code);
}

PrinterState PrinterState::InternalSupplyLow() {
  return PrinterState(Type::Available, &kInternalSupplyLowCode);
}

PrinterState::PrinterState(Type type) : type(type), error_code{0, 0, 0} {}

PrinterState::PrinterState(Type type, const uint8_t (*code)[3])
    : type(type), error_code{(*code)[0], (*code)[1], (*code)[2]} {}

bool PrinterState::operator==(const PrinterState& other) const {
  if (type == Type::Available && other.type == Type::Available)
    return *this == &other.error_code;
  return type == Type::Unavailable && other.type == Type::Unavailable;
}

bool PrinterState::operator!=(const PrinterState& other) const {
  return !(*this == other);
}

bool PrinterState::operator==(const uint8_t (*code)[3]) const {
  return type == Type::Available && error_code[0] == (*code)[0] &&
         error_code[1] == (*code)[1] && error_code[2] == (*code)[2];
}

bool PrinterState::operator!=(const uint8_t (*code)[3]) const {
  return !(*this == code);
}

std::string PrinterState::to_string() const {
  switch (type) {
    case Type::Unavailable:
      return "UNAVAILABLE";
    case Type::Available: {
      if (*this == Good()) return "GOOD";
      char text[16];
      snprintf(text, sizeof(text), "0x%02x,0x%02x,0x%02x", error_code[0],
               error_code[1], error_code[2]);
      return text;
    }
  }
  return "UNKNOWN";
}
