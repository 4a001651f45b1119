#include "tests/admin/sample_queues.h"

std::vector<QueueStatus> SampleQueues() {
  QueueStatus photo;
  photo.queue = "photo";
  photo.scheme = "usb";
  photo.enabled = true;
  photo.prints_remaining = 120;
  photo.prints_total = 350;
  photo.level_percent = 34;
  photo.ink_sheet = "PC";
  photo.levels_read_at = kSampleNow - 90;
  photo.marker_level = 34;

  QueueStatus booth;
  booth.queue = "booth";
  booth.scheme = "socket";
  booth.state = QueueStatus::State::Stopped;
  booth.enabled = true;
  booth.reasons = {{"com.quillaroth-error0001",
                    "Printer error 0001 - see the printer's panel"}};
  booth.prints_remaining = 48;
  booth.prints_total = 350;
  booth.level_percent = 13;
  booth.ink_sheet = "PC";
  booth.levels_read_at = kSampleNow - 30;
  booth.marker_level = 13;

  QueueStatus spare;
  spare.queue = "spare";
  spare.scheme = "usb";
  spare.enabled = true;

  QueueStatus kiosk;
  kiosk.queue = "kiosk";
  kiosk.scheme = "socket";
  kiosk.enabled = true;
  kiosk.reasons = {{"com.quillaroth-error0023",
                    "Printer not reachable or unknown printer error"},
                   {"offline-report", ""}};
  kiosk.levels_read_at = kSampleNow - 600;
  kiosk.marker_level = -2;

  return {photo, booth, spare, kiosk};
}

QueueStatus OddlyNamedQueue() {
  QueueStatus odd;
  odd.queue = "Fot\xC3\xB3-\"A\"\\1\n\xE9";
  odd.prints_remaining = 7;
  odd.reasons = {{"media-empty-error", ""}};
  return odd;
}
