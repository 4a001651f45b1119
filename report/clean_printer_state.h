// Withdrawal of every reason that the default destination lists.
//
// clean_printer_state() reads the default destination's
// "printer-state-reasons" option from the CUPS destination list and writes a
// "STATE: -%s\n" line for each comma-separated reason in it, vendor or not.
// The command flow does not call it; it is there for callers that want the
// scheduler's list emptied before a fresh report.

#ifndef QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_
#define QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_

// Writes "clean_printer_state() START\n", the withdrawal lines (or
// "DEBUG: Not found default(destination) printer.\n") and
// "clean_printer_state() END\n" to stderr.
void clean_printer_state();

#endif  // QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_
