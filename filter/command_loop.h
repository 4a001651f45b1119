// The filter's work between start-up and exit.
//
// probe_bidirectional() asks the backend once whether the printer can talk
// back; run_command_loop() reads the command file line by line and answers
// each "ReportLevels" and "ReportStatus" line (any case; further words are
// ignored) with a fresh printer query and the scheduler's lines.

#ifndef QUILLAROTH_FILTER_COMMAND_LOOP_H_
#define QUILLAROTH_FILTER_COMMAND_LOOP_H_

#include <cups/file.h>

// True when the backend answers the GET_BIDI side-channel request with OK
// and the one byte CUPS_SC_BIDI_SUPPORTED; otherwise logs the
// "nobidirectional" debug line and returns false.
bool probe_bidirectional();

// Handles every line of the command file (a null file ends at once).
void run_command_loop(cups_file_t* file, bool bidirectional);

#endif  // QUILLAROTH_FILTER_COMMAND_LOOP_H_
