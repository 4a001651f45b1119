#include "tests/support/sim_printer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "sim/option_table.h"
#include "sim/reply_plan.h"
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

// What the simulator plans for the printer's first query, awake or
// asleep: its reply, as every query's keys make it (the per-query and
// run-wide faults, which SimAnswerLines() words, left aside).
ReplyPlan FirstReply(const SimPrinter& printer, bool asleep) {
  SimPrinter reply = printer;
  reply.wake_after = asleep ? SimPrinter::kNeverWakes : 0;
  reply.asleep_at.clear();
  reply.fail_at = 0;
  reply.close_back_at = 0;
  Scenario scenario;
  std::string keys;
  for (const SimKey& key : reply.Keys())
    keys += key.first + "=" + key.second + "&";
  std::string why;
  if (!apply_keys(keys, '&', kScenarioKey, scenario_target(&scenario), &why))
    ADD_FAILURE() << "the simulator refuses " << keys << ": " << why;
  return plan_info_reply(scenario, 1);
}

}  // namespace

std::vector<SimKey> SimPrinter::Keys() const {
  std::vector<SimKey> keys = {{"power", Hex(power, 2)},
                              {"memory", Hex(memory, 2)},
                              {"mech", Hex(mech, 4)},
                              {"error", Hex(error, 6)},
                              {"sheet", Hex(sheet, 4)},
                              {"total", std::to_string(total)},
                              {"remaining", std::to_string(remaining)},
                              {"fill", Hex(fill, 2)},
                              {"size", std::to_string(size)}};
  if (!split.empty()) {
    std::string pieces;
    for (size_t piece : split)
      pieces += (pieces.empty() ? "" : "+") + std::to_string(piece);
    keys.push_back({"split", pieces});
  }
  if (wake_after != 0)
    keys.push_back({"wake-after", wake_after == kNeverWakes
                                      ? std::string("never")
                                      : std::to_string(wake_after)});
  for (int query : asleep_at)
    keys.push_back({"reply", std::to_string(query) + ":power=01"});
  if (fail_at != 0) keys.push_back({"fail-at", std::to_string(fail_at)});
  if (close_back_at == kAtStart) keys.push_back({"close-backchannel", "0"});
  if (close_back_at > 0)
    keys.push_back({"close-backchannel", std::to_string(close_back_at)});
  return keys;
}

std::vector<std::string> SimPrinter::SimOptions() const {
  std::vector<std::string> options;
  for (const SimKey& key : Keys())
    options.push_back("--" + key.first + "=" + key.second);
  return options;
}

std::string SimPrinter::DeviceUri(const std::string& queue) const {
  std::string uri = "quillarothsim://" + queue;
  for (const SimKey& key : Keys()) {
    if (find_option(key.first, kScenarioKey) == nullptr)
      ADD_FAILURE() << "a device URI cannot carry the key \"" << key.first
                    << "\" (" << key.first << "=" << key.second << ")";
    uri += (uri.find('?') == std::string::npos ? "?" : "&") + key.first +
           "=" + key.second;
  }
  return uri;
}

std::string SimPrinter::UsbScript() const {
  std::string script;
  for (const SimKey& key : Keys())
    script += key.first + "=" + key.second + "\n";
  return script;
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
  Bytes bytes = FirstReply(*this, asleep).bytes;
  return std::string(bytes.begin(), bytes.end());
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
  return "sim: " + describe_reply(FirstReply(*this, asleep)) + "\n";
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
