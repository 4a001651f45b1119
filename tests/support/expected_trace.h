// The filter's log, written out from the formats of its lines: the one
// vocabulary in which the tests spell out a whole expected stderr.
//
// The link's lines (START/END, hex dumps, drain and read failures, the
// probe's "nobidirectional" line, the wake-up wait) and the scheduler
// report ("STATE:" and "ATTR: marker-" lines) are built here, independently
// of the filter's code, so that a test reads as the story of one run.  Only
// ReportedState() and ReportedLevels() take the report from the library's
// own reporting functions, for tests that feed random bytes and check that
// the filter reports exactly what the bytes that arrived say.

#ifndef QUILLAROTH_TESTS_SUPPORT_EXPECTED_TRACE_H_
#define QUILLAROTH_TESTS_SUPPORT_EXPECTED_TRACE_H_

#include <cups/sidechannel.h>

#include <string>

#include "status/printer_info.h"

// The escape commands, byte for byte.
extern const std::string kWakeUpCommand;       // 1b 45 57 55
extern const std::string kPrinterInfoCommand;  // 1b 56 32 31

// The sleep interposer's lines: the pause after the wake-up command, and
// the pause before each retry of a printer that is still waking up.
extern const char kWakeUpPause[];  // "usleep 500000\n"
extern const char kRetryPause[];   // "sleep 1\n"

// The lines that open and close the wake-up wait of one command line, and
// the line of a wait that gave up.
extern const char kRetryStartLine[];
extern const char kRetryEndLine[];
extern const char kRetryOverLine[];

// Every vendor keyword that the filter knows, in ascending order.
extern const char* const kKnownReasons[19];

// The names of the ink sheets that the printer knows, as the marker report
// names them (the inch mark is U+2033 DOUBLE PRIME).
extern const char kSheetPvR31a[];    // 84 00: "PV-R31A 13x18(5x7″)"
extern const char kSheetPvR31aGx[];  // 84 10: "PV-R31A(GX) 13x18(5x7″)"
extern const char kSheetPvR32a[];    // 8f 00: "PV-R32A 15x20(6x8″)"
extern const char kSheetPvR32aGx[];  // 8f 10: "PV-R32A(GX) 15x20(6x8″)"

// "DEBUG: <label> size=<n>", then the bytes sixteen a line:
// "DEBUG: <label> 0000: 1b 56 ...".
std::string HexDump(const std::string& label, const std::string& bytes);

// The "nobidirectional" line of a failed probe with the side-channel
// status (its CUPS name; "UNKNOWN" outside 0 to 7).
std::string ProbeFailureLine(int status);

// A whole wake-up transaction whose drain got the status (a failed drain
// is logged with the status's name).
std::string WakeUpLines(int drain_status = CUPS_SC_STATUS_OK);
// A wake-up transaction that ends with the failure line (the command could
// not be written or flushed).
std::string WakeUpFailureLines(const std::string& failure_line);

// "DEBUG: ====> command=[<word>] linenum=<n>".
std::string CommandLine(const std::string& word, int linenum);

// The printer-information transaction up to its drain.
std::string InfoSentLines(int drain_status = CUPS_SC_STATUS_OK);
// Its end when it received these bytes.
std::string InfoReceivedLines(const std::string& bytes);
// The line of a back-channel read that returned ret.
std::string ReadFailureLine(long ret);
// The end of the transaction when the read returned ret.
std::string InfoReadFailureLines(long ret);
// A whole transaction that received the reply after a good drain.
std::string InfoQueryLines(const std::string& reply);
// A whole transaction that ends with the failure line instead of a reply.
std::string InfoFailureLines(const std::string& failure_line,
                             int drain_status = CUPS_SC_STATUS_OK);
// The "printer_info" line of a query that got no record.
extern const char kUnavailableInfoLine[];
// "DEBUG: printer_info=[...]" for a record, from its own text.
std::string InfoLine(const PrinterInfo& info);
// "DEBUG: #retry_status=[wake_up=<word>(<count>/60)]".
std::string RetryLine(const std::string& word, unsigned count);

// The state report raising "com.quillaroth-error<raised>" (empty: raise
// nothing), then withdrawing every other known keyword in order.
std::string StateLines(const std::string& raised);
// The line of an error code that no table entry holds ("0x0b,0x05,0x05").
std::string UndefinedErrorLine(const std::string& code);

// The supply report: its debug line after "[ReportLevels] ", then the five
// marker attributes.
std::string LevelsLines(const std::string& debug, const std::string& level,
                        const std::string& message, const std::string& names);
// The supply report of an unavailable record.
std::string UnavailableLevelsLines();

// What the library's reporting writes for a "ReportStatus" line answered
// by the record.
std::string ReportedState(const PrinterInfo& info);
// What it writes for a "ReportLevels" line on a bidirectional link.
std::string ReportedLevels(const PrinterInfo& info);

// Checks that every START has its END (properly nested) and that every
// known command line is followed by its complete report.  Returns "" when
// the trace is consistent, else what is wrong.
std::string CheckTrace(const std::string& err);

#endif  // QUILLAROTH_TESTS_SUPPORT_EXPECTED_TRACE_H_
