// Withdrawal of every reason that the default destination lists.
//
// clean_printer_state() reads the default destination's
// "printer-state-reasons" option from the CUPS destination list and writes a
// "STATE: -%s\n" line for each comma-separated reason in it, vendor or not;
// withdraw_reasons() writes those lines for one such value.  The command flow
// does not call them; they are there for callers that want the scheduler's
// list emptied before a fresh report.

#ifndef QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_
#define QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_

// Writes "STATE: -%s\n" for each reason of a "printer-state-reasons" value,
// in its order: the value is split at commas with strtok(), so empty fields
// are skipped and blanks stay part of a reason.  A null or empty value, or
// one of commas only, writes nothing.
void withdraw_reasons(const char* value);

// Writes "clean_printer_state() START\n", the withdrawal lines (or
// "DEBUG: Not found default(destination) printer.\n") and
// "clean_printer_state() END\n" to stderr.
void clean_printer_state();

#endif  // QUILLAROTH_REPORT_CLEAN_PRINTER_STATE_H_
