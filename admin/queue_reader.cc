#include "admin/queue_reader.h"

#include <cstdio>

#include "admin/ppd_edit.h"

namespace {

constexpr char kSheetLabel[] = "InkSheetType: ";

// "Ink Ribbon = REMAINING / TOTAL" as the filter writes it; false for any
// other text.
bool ParseRibbonMessage(const std::string& text, int* remaining, int* total) {
  int used = 0;
  if (sscanf(text.c_str(), "Ink Ribbon = %d / %d%n", remaining, total,
             &used) != 2)
    return false;
  return static_cast<size_t>(used) == text.size() && *remaining >= 0 &&
         *total > 0;
}

QueueStatus::State StateOf(int ipp_state) {
  if (ipp_state == IPP_PSTATE_PROCESSING) return QueueStatus::State::Processing;
  if (ipp_state == IPP_PSTATE_STOPPED) return QueueStatus::State::Stopped;
  return QueueStatus::State::Idle;
}

}  // namespace

PpdFacts ReadPpdFacts(const std::string& ppd_text) {
  PpdFacts facts;
  facts.has_ppd = true;
  facts.runs_filter = RunsCommandFilter(ppd_text);
  facts.reason_texts = ReasonTexts(ppd_text);
  return facts;
}

QueueStatus ReadQueueStatus(const PrinterAttributes& printer,
                            const PpdFacts& ppd,
                            std::vector<std::string>* notes) {
  QueueStatus status;
  status.queue = printer.name;
  size_t colon = printer.device_uri.find(':');
  status.scheme = colon == std::string::npos ? printer.device_uri
                                             : printer.device_uri.substr(0, colon);
  status.state = StateOf(printer.state);
  status.enabled = ppd.runs_filter;
  for (const std::string& keyword : printer.reasons) {
    if (keyword == "none") continue;
    auto text = ppd.reason_texts.find(keyword);
    status.reasons.push_back(
        {keyword, text == ppd.reason_texts.end() ? "" : text->second});
  }
  if (printer.marker_levels.empty()) return status;  // never read

  int level = printer.marker_levels[0];
  status.marker_level = level;
  if (printer.marker_change_time > 0)
    status.levels_read_at = printer.marker_change_time;
  if (level == -2) return status;  // the printer could not be asked
  const std::string where = printer.name + ": ";

  std::string names = printer.marker_names.value_or("");
  if (names.compare(0, sizeof(kSheetLabel) - 1, kSheetLabel) == 0 &&
      names.size() > sizeof(kSheetLabel) - 1) {
    status.ink_sheet = names.substr(sizeof(kSheetLabel) - 1);
  } else if (names != " ") {
    notes->push_back(where + "marker-names \"" + names +
                     "\" names no ink sheet; shown as unknown");
  }
  if (level == -1) return status;  // the printer did not say
  if (level < 0) {
    notes->push_back(where + "marker-levels " + std::to_string(level) +
                     " is no level; shown as unknown");
    return status;
  }
  status.level_percent = level;
  int remaining = 0;
  int total = 0;
  std::string message = printer.marker_message.value_or("");
  if (ParseRibbonMessage(message, &remaining, &total)) {
    status.prints_remaining = remaining;
    status.prints_total = total;
  } else {
    notes->push_back(where + "marker-message \"" + message +
                     "\" is not \"Ink Ribbon = REMAINING / TOTAL\"; prints "
                     "shown as unknown");
  }
  return status;
}
