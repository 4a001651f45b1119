// ReadQueueStatus: a queue's QueueStatus from its attributes and what its
// PPD says.
//
// The levels are those of commandtoquillaroth's marker report:
//   marker-levels   the percentage; -2 the printer could not be asked,
//                   -1 it did not say
//   marker-message  "Ink Ribbon = REMAINING / TOTAL", or " "
//   marker-names    "InkSheetType: NAME", or " "
// A value that is not of that form is left unknown, with a note.

#ifndef QUILLAROTH_ADMIN_QUEUE_READER_H_
#define QUILLAROTH_ADMIN_QUEUE_READER_H_

#include <map>
#include <string>
#include <vector>

#include "admin/queue_status.h"
#include "admin/scheduler.h"

// What quillaroth needs of a queue's PPD.
struct PpdFacts {
  bool has_ppd = false;
  // The PPD runs commandtoquillaroth for command jobs.
  bool runs_filter = false;
  // *cupsIPPReason texts by keyword.
  std::map<std::string, std::string> reason_texts;

  bool operator==(const PpdFacts& other) const {
    return has_ppd == other.has_ppd && runs_filter == other.runs_filter &&
           reason_texts == other.reason_texts;
  }
};

// The facts of PPD_TEXT.
PpdFacts ReadPpdFacts(const std::string& ppd_text);

// The queue's status; each value that does not parse is left unknown and
// adds a line "QUEUE: ..." to *notes.
QueueStatus ReadQueueStatus(const PrinterAttributes& printer,
                            const PpdFacts& ppd,
                            std::vector<std::string>* notes);

#endif  // QUILLAROTH_ADMIN_QUEUE_READER_H_
