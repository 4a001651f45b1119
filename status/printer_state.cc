#include "status/printer_state.h"

#include <cstdio>

namespace {

// The filter's own code for a used-up ink ribbon; the printer never sends it.
const unsigned char kInternalSupplyLowCode[3] = {0xfe, 0xed, 0x01};
const unsigned char kGoodCode[3] = {0x00, 0x00, 0x00};

}  // namespace

// Nothing is known about the printer's state.
PrinterState PrinterState::Unavailable() {
  return PrinterState(Type::Unavailable);
}

// The printer reports no error.
PrinterState PrinterState::Good() {
  return PrinterState(Type::Available, &kGoodCode);
}

// The printer's own error code.
PrinterState PrinterState::Error(const unsigned char (*code)[3]) {
  return PrinterState(Type::Available, code);
}

// The ink ribbon is used up.
PrinterState PrinterState::InternalSupplyLow() {
  return PrinterState(Type::Available, &kInternalSupplyLowCode);
}

// Sets the type; the code stays zero and is not read for this type.
PrinterState::PrinterState(Type type) : type(type), error_code{0, 0, 0} {}

// Sets the type and copies the code, byte 0 first.
PrinterState::PrinterState(Type type, const unsigned char (*code)[3])
    : type(type), error_code{(*code)[0], (*code)[1], (*code)[2]} {}

// Compares two states: codes when both are available, else both unavailable.
bool PrinterState::operator==(const PrinterState& other) const {
  if (type == Type::Available && other.type == Type::Available)
    return *this == &other.error_code;
  return type == Type::Unavailable && other.type == Type::Unavailable;
}

// Negation of the state comparison.
bool PrinterState::operator!=(const PrinterState& other) const {
  return !(*this == other);
}

// True when the state is available and carries exactly this code.
bool PrinterState::operator==(const unsigned char (*code)[3]) const {
  return type == Type::Available && error_code[0] == (*code)[0] &&
         error_code[1] == (*code)[1] && error_code[2] == (*code)[2];
}

// Negation of the code comparison.
bool PrinterState::operator!=(const unsigned char (*code)[3]) const {
  return !(*this == code);
}

// Renders the state for the log.
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
