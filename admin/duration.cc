#include "admin/duration.h"

#include <cctype>

namespace {

constexpr long kMaxSeconds = 366L * 24 * 3600;

struct Unit {
  const char* name;
  long seconds;
};

constexpr Unit kUnits[] = {
    {"", 1},    {"s", 1},        {"sec", 1},  {"m", 60},    {"min", 60},
    {"h", 3600}, {"hour", 3600}, {"d", 86400}, {"day", 86400},
};

}  // namespace

std::optional<long> ParseDuration(const std::string& text) {
  size_t digits = 0;
  while (digits < text.size() && isdigit(static_cast<unsigned char>(text[digits])))
    digits++;
  if (digits == 0 || digits > 9) return std::nullopt;
  long number = std::stol(text.substr(0, digits));
  std::string unit = text.substr(digits);
  for (const Unit& u : kUnits) {
    if (unit == u.name) {
      long seconds = number * u.seconds;
      if (seconds > kMaxSeconds) return std::nullopt;
      return seconds;
    }
  }
  return std::nullopt;
}

std::string ShortAge(long seconds) {
  if (seconds < 0) seconds = 0;
  if (seconds < 120) return std::to_string(seconds) + "s";
  if (seconds < 2 * 3600) return std::to_string(seconds / 60) + "m";
  if (seconds < 2 * 86400) return std::to_string(seconds / 3600) + "h";
  return std::to_string(seconds / 86400) + "d";
}
