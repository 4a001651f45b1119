#include "tests/support/sim_printer.h"

#include <algorithm>
#include <cstdio>

#include "tests/support/expected_trace.h"

namespace {

// The value in hex, width digits.
std::string Hex(unsigned value, int width) {
  char text[16];
  snprintf(text, sizeof(text), "%0*x", width, value);
  return text;
}

// "0x06,0x02,0x02" for three bytes of a value.
std::string CodeText(uint32_t code) {
  char text[32];
  snprintf(text, sizeof(text), "0x%02x,0x%02x,0x%02x", (code >> 16) & 0xff,
           (code >> 8) & 0xff, code & 0xff);
  return text;
}

// The bytes of the value, width of them, big-endian, as hex pairs joined
// by blanks ("06 02 02").
std::string HexBytes(uint32_t value, int width) {
  std::string text;
  for (int i = width - 1; i >= 0; i--)
    text += (text.empty() ? "" : " ") + Hex((value >> (8 * i)) & 0xff, 2);
  return text;
}

}  // namespace

std::vector<std::string> SimPrinter::SimOptions() const {
  std::vector<std::string> options = {"--power",     Hex(power, 2),
                                      "--memory",    Hex(memory, 2),
                                      "--mech",      Hex(mech, 4),
                                      "--error",     Hex(error, 6),
                                      "--sheet",     Hex(sheet, 4),
                                      "--total",     std::to_string(total),
                                      "--remaining", std::to_string(remaining),
                                      "--fill",      Hex(fill, 2),
                                      "--size",      std::to_string(size)};
  if (!split.empty()) {
    std::string pieces;
    for (size_t piece : split)
      pieces += (pieces.empty() ? "" : ",") + std::to_string(piece);
    options.insert(options.end(), {"--split", pieces});
  }
  if (wake_after != 0)
    options.insert(options.end(),
                   {"--wake-after", wake_after == kNeverWakes
                                        ? std::string("never")
                                        : std::to_string(wake_after)});
  for (int query : asleep_at)
    options.insert(options.end(),
                   {"--reply", std::to_string(query) + ":power=01"});
  if (fail_at != 0)
    options.insert(options.end(), {"--fail-at", std::to_string(fail_at)});
  if (close_back_at == kAtStart) options.push_back("--close-backchannel");
  if (close_back_at > 0)
    options.push_back("--close-backchannel=" + std::to_string(close_back_at));
  return options;
}

std::string SimPrinter::DeviceUri(const std::string& queue) const {
  std::string uri = "quillarothsim://" + queue +
                    "?total=" + std::to_string(total) +
                    "&remaining=" + std::to_string(remaining) +
                    "&error=" + Hex(error, 6) + "&sheet=" + Hex(sheet, 4);
  if (wake_after != 0)
    uri += "&wake=" + (wake_after == kNeverWakes ? std::string("never")
                                                 : std::to_string(wake_after));
  return uri;
}

bool SimPrinter::IsAsleepAt(int query) const {
  return wake_after == kNeverWakes || query <= wake_after ||
         std::find(asleep_at.begin(), asleep_at.end(), query) !=
             asleep_at.end();
}

bool SimPrinter::Answers(int query) const {
  return size >= 192 && query != fail_at && close_back_at != kAtStart &&
         (close_back_at == 0 || query < close_back_at);
}

long SimPrinter::ReadFailure(int query) const {
  bool closed = close_back_at == kAtStart ||
                (close_back_at != 0 && query >= close_back_at);
  return closed ? 0 : -1;
}

std::string SimPrinter::SimAnswerLines(int query) const {
  if (close_back_at == kAtStart ||
      (close_back_at != 0 && query > close_back_at))
    return "sim: no reply to printer information (back channel closed)\n";
  if (query == close_back_at)
    return "sim: no reply to printer information\nsim: back channel closed\n";
  if (query == fail_at) return "sim: no reply to printer information\n";
  return SimReplyLine(IsAsleepAt(query));
}

std::string SimPrinter::Reply(bool asleep) const {
  std::string bytes(std::max<size_t>(size, 192), static_cast<char>(fill));
  auto put = [&bytes](size_t offset, uint32_t value, int width) {
    for (int i = 0; i < width; i++)
      bytes[offset + i] =
          static_cast<char>((value >> (8 * (width - 1 - i))) & 0xff);
  };
  put(4, memory, 1);
  put(5, asleep ? 0x01 : power, 1);
  put(128, mech, 2);
  put(131, error, 3);
  put(145, sheet, 2);
  put(148, total, 2);
  put(150, remaining, 2);
  bytes.resize(size);
  return bytes;
}

std::string SimPrinter::InfoLine(bool asleep) const {
  std::string error_info = remaining == 0 ? "0xfe,0xed,0x01"
                           : error == 0   ? "GOOD"
                                          : CodeText(error);
  return "DEBUG: printer_info=[power_state=0x" + Hex(asleep ? 0x01 : power, 2) +
         " mech_state=[0x" + Hex(mech >> 8, 2) + ",0x" + Hex(mech & 0xff, 2) +
         "] memory_state=0x" + Hex(memory, 2) + " error_info=[" + error_info +
         "] levels=[ink ribbon " + std::to_string(remaining) + " / " +
         std::to_string(total) + " ink_sheet_type=0x" + Hex(sheet >> 8, 2) +
         ".0x" + Hex(sheet & 0xff, 2) + "]]\n";
}

std::string SimPrinter::SimReplyLine(bool asleep) const {
  std::string line = "sim: reply " + std::to_string(size) + " bytes";
  std::vector<size_t> pieces;
  size_t left = size;
  for (size_t piece : split) {
    if (left == 0) break;
    pieces.push_back(std::min(piece, left));
    left -= pieces.back();
  }
  if (left > 0) pieces.push_back(left);
  if (pieces.size() > 1) {
    line += " in pieces ";
    for (size_t i = 0; i < pieces.size(); i++)
      line += (i == 0 ? "" : ",") + std::to_string(pieces[i]);
  }
  auto field = [this](const char* name, size_t offset, int width,
                      uint32_t value) {
    return std::string(name) +
           (size < offset + width ? " cut off" : " " + HexBytes(value, width));
  };
  line += ": " + field("power", 5, 1, asleep ? 0x01 : power) + ", " +
          field("error", 131, 3, error) + ", " + field("sheet", 145, 2, sheet) +
          ", ";
  line += size < 152 ? "ribbon cut off"
                     : "ribbon " + std::to_string(remaining) + "/" +
                           std::to_string(total);
  return line + "\n";
}

std::string SimPrinter::LevelsLines(const std::string& level,
                                    const std::string& sheet_name) const {
  return ::LevelsLines("ink ribbon " + std::to_string(remaining) + " / " +
                           std::to_string(total) + " ink_sheet_type=0x" +
                           Hex(sheet >> 8, 2) + ".0x" + Hex(sheet & 0xff, 2),
                       level, level == "-1" ? " " : RibbonMessage(),
                       "InkSheetType: " + sheet_name);
}

std::string SimPrinter::RibbonMessage() const {
  return "Ink Ribbon = " + std::to_string(remaining) + " / " +
         std::to_string(total);
}
