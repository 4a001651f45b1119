// StatusTable: `quillaroth status` for people.  One line per queue, its ink
// sheet and reasons on indented lines below it, in 80 columns for queue
// names of up to 28 characters:
//
//   QUEUE  LINK  STATE     LEFT  LEVEL  READ
//   photo  usb   idle   120/350    34%  4m ago
//     ink sheet: PV-R32A(GX) 15x20(6x8″)
//     com.quillaroth-error0001: Printer error 0001 - see the printer's panel
//
// READ is the age of the levels, "stale" past the --stale age, "never"
// when the filter never reported them, "unknown" when the scheduler holds
// levels but no marker-change-time.  Colours only where asked for.

#ifndef QUILLAROTH_ADMIN_STATUS_TABLE_H_
#define QUILLAROTH_ADMIN_STATUS_TABLE_H_

#include <ctime>
#include <string>
#include <vector>

#include "admin/queue_status.h"

struct TableStyle {
  long stale_seconds = 3600;
  // ANSI colours: reasons red, stale ages yellow.
  bool colour = false;
};

// The table of QUEUES, ages counted to NOW.
std::string StatusTable(const std::vector<QueueStatus>& queues, time_t now,
                        const TableStyle& style);

#endif  // QUILLAROTH_ADMIN_STATUS_TABLE_H_
