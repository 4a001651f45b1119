// The printer-information query with the wait for a waking printer.
//
// A printer that has just been sent the wake-up command answers before it is
// awake.  get_printer_info_retry() repeats the query once a second until the
// printer's power state reads awake, for at most 61 queries (60 sleeps).

#ifndef QUILLAROTH_LINK_PRINTER_INFO_RETRY_H_
#define QUILLAROTH_LINK_PRINTER_INFO_RETRY_H_

#include "status/printer_info.h"

// The first reply in which the printer is awake; the unavailable record of a
// failed query at once; PrinterInfo::Unavailable() when the printer never
// wakes.
PrinterInfo get_printer_info_retry();

#endif  // QUILLAROTH_LINK_PRINTER_INFO_RETRY_H_
