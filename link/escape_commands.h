// The three printer transactions: escape command out, reply in.
//
//   wr_esc_wakeup     1b 45 57 55        (ESC "EWU")  no reply; 0.5 s pause
//   get_printer_info  1b 56 32 31        (ESC "V21")  at least 192 bytes
//   get_job_status    1b 56 31 30 00 00  (ESC "V10")  at least 20 bytes
//
// Each writes the command to stdout with one fwrite(), flushes it, asks the
// backend through the side channel to drain it to the printer (5 s; a failed
// drain is only logged), and gathers the reply from the back channel (1 s a
// read).  The log shows "DEBUG: <name>() START" / "END" around each, and hex
// dumps of the command ("[CMD]") and the reply ("[STS]").  Failures become a
// "DEBUG:" line and the record's unavailable form; nothing is retried here.

#ifndef QUILLAROTH_LINK_ESCAPE_COMMANDS_H_
#define QUILLAROTH_LINK_ESCAPE_COMMANDS_H_

#include "status/job_status.h"
#include "status/printer_info.h"

// Sends the wake-up command.  Returns 0, or -1 when it could not be written
// or flushed.
int wr_esc_wakeup();

// Asks for the printer information.  PrinterInfo::Unavailable() on failure.
PrinterInfo get_printer_info();

// Asks for the job status.  JobStatus::Unavailable() on failure.
JobStatus get_job_status();

#endif  // QUILLAROTH_LINK_ESCAPE_COMMANDS_H_
