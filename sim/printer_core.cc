#include "sim/printer_core.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "sim/sim_log.h"

namespace {

constexpr uint8_t kEscape = 0x1b;
// Unknown bytes are shown up to this many in their log line.
constexpr size_t kShownUnknownBytes = 16;

// The escape commands that the printer understands.
struct PrinterCommand {
  const char* bytes;
  size_t size;
};
const PrinterCommand kWakeUp = {"\x1b" "EWU", 4};
const PrinterCommand kPrinterInfo = {"\x1b" "V21", 4};
const PrinterCommand kJobStatus = {"\x1b" "V10\0\0", 6};
const PrinterCommand* const kCommands[] = {&kWakeUp, &kPrinterInfo,
                                           &kJobStatus};

// "cmd 1b 56 32 31".
std::string command_line(const PrinterCommand& command) {
  return "cmd " + hex_text(reinterpret_cast<const uint8_t*>(command.bytes),
                           command.size);
}

// An event that is only a log line.
PrinterEvent line_event(const std::string& line) {
  PrinterEvent event;
  event.log_line = line;
  return event;
}

}  // namespace

PrinterCore::PrinterCore(Scenario scenario)
    : scenario_(std::move(scenario)), hung_(scenario_.hang) {}

std::vector<PrinterEvent> PrinterCore::Start() const {
  std::vector<PrinterEvent> events;
  if (hung_)
    events.push_back(line_event("printer hangs: it reads and answers nothing"));
  return events;
}

std::vector<PrinterEvent> PrinterCore::Take(const uint8_t* data, size_t size) {
  std::vector<PrinterEvent> events;
  if (hung_) return events;
  input_.insert(input_.end(), data, data + size);
  HandleInput(false, &events);
  return events;
}

std::vector<PrinterEvent> PrinterCore::Finish() {
  std::vector<PrinterEvent> events;
  if (hung_) return events;
  HandleInput(true, &events);
  return events;
}

void PrinterCore::HandleInput(bool at_end, std::vector<PrinterEvent>* events) {
  while (!input_.empty() && !hung_) {
    const PrinterCommand* match = nullptr;
    bool partial = false;
    for (const PrinterCommand* command : kCommands) {
      size_t n = std::min(input_.size(), command->size);
      if (memcmp(input_.data(), command->bytes, n) != 0) continue;
      if (n == command->size) {
        match = command;
        break;
      }
      partial = true;
    }
    if (match == nullptr && partial && !at_end) return;

    PrinterEvent event;
    if (match != nullptr) {
      input_.erase(input_.begin(), input_.begin() + static_cast<long>(match->size));
      event.log_line = command_line(*match);
      if (match == &kPrinterInfo) {
        event.is_query = true;
        event.reply = plan_info_reply(scenario_, ++info_queries_);
      } else if (match == &kJobStatus) {
        event.is_query = true;
        event.reply = plan_job_status_reply(scenario_, ++job_status_queries_);
      }
      if (event.is_query && event.reply.kind == ReplyPlan::Kind::kSend &&
          event.reply.end == ReplyPlan::End::kStall)
        hung_ = true;
      if (hung_) {
        std::string hangs = "printer hangs after " +
                            std::to_string(event.reply.SentSize()) + " of " +
                            std::to_string(event.reply.bytes.size()) +
                            " bytes";
        events->push_back(std::move(event));
        events->push_back(line_event(hangs));
        break;
      }
    } else {
      // Unknown bytes, up to the next escape.
      size_t end = 1;
      while (end < input_.size() && input_[end] != kEscape) end++;
      size_t shown = std::min(end, kShownUnknownBytes);
      event.log_line = "unknown bytes (" + std::to_string(end) +
                       "): " + hex_text(input_.data(), shown) +
                       (end > shown ? " ..." : "");
      input_.erase(input_.begin(), input_.begin() + static_cast<long>(end));
    }
    events->push_back(std::move(event));
  }
  if (hung_) input_.clear();
}
