// QueueStatus: what the scheduler knows of one queue's printer, as
// `quillaroth status` shows it.
//
// Read from the attributes of one CUPS-Get-Printers response (the queue's
// marker-*, printer-state* and device-uri values) and from the queue's PPD
// (whether it runs commandtoquillaroth, the texts of its reasons).  Every
// value the filter may not have given is optional: the levels were never
// read, the printer was not reachable (marker-levels -2) or did not say
// (-1), or the scheduler holds a value that does not parse.

#ifndef QUILLAROTH_ADMIN_QUEUE_STATUS_H_
#define QUILLAROTH_ADMIN_QUEUE_STATUS_H_

#include <ctime>
#include <optional>
#include <string>
#include <vector>

// One printer-state-reasons keyword and its text from the queue's PPD
// ("" when the PPD describes none).
struct Reason {
  std::string keyword;
  std::string text;

  bool operator==(const Reason& other) const {
    return keyword == other.keyword && text == other.text;
  }
};

struct QueueStatus {
  enum class State { Idle, Processing, Stopped };

  std::string queue;
  // The device URI's scheme: "usb", "socket", "ipp", ...
  std::string scheme;
  State state = State::Idle;
  // The queue's PPD runs commandtoquillaroth for command jobs.
  bool enabled = false;
  // The reasons the queue shows now, "none" left out, in the scheduler's
  // order.
  std::vector<Reason> reasons;
  std::optional<int> prints_remaining;
  std::optional<int> prints_total;
  std::optional<int> level_percent;
  // The ink-sheet type's name, without the "InkSheetType: " label.
  std::optional<std::string> ink_sheet;
  // marker-change-time: when the filter last reported the levels.
  std::optional<time_t> levels_read_at;
  // The marker level as the filter reported it (-2 unreachable, -1 not
  // said, 0..100 and above a level); empty when never read.
  std::optional<int> marker_level;
};

// "idle", "processing" or "stopped".
const char* StateName(QueueStatus::State state);

#endif  // QUILLAROTH_ADMIN_QUEUE_STATUS_H_
