// The filter's log lines for the printer link, written out independently of
// the filter's own code, and a consistency check for whole traces.
//
// The link's lines (START/END, hex dumps, drain and read failures, the
// probe's "nobidirectional" line, the wake-up wait) are built here from
// their formats.  The scheduler report that follows a command is taken from
// the library's reporting functions for the record that the bytes received
// make (those functions have unit tests of their own): the hostile tests
// check that whatever the transport does, the filter reports exactly what
// the bytes that really arrived say.

#ifndef QUILLAROTH_TESTS_SUPPORT_HOSTILE_EXPECT_H_
#define QUILLAROTH_TESTS_SUPPORT_HOSTILE_EXPECT_H_

#include <string>

#include "status/printer_info.h"

// The command codes and statuses of the CUPS side channel.
constexpr int kScDrainOutput = 2;
constexpr int kScGetBidi = 3;
constexpr int kScStatusOk = 1;
constexpr int kScStatusTimeout = 3;

// The wire bytes of the escape commands.
extern const char kWakeUpBytes[];      // 1b 45 57 55
extern const char kPrinterInfoBytes[]; // 1b 56 32 31

// "DEBUG: <label> size=<n>" and the offset lines, 16 bytes a line.
std::string ExpectDump(const std::string& label, const std::string& bytes);
// The CUPS name of a side-channel status; "UNKNOWN" outside 0 to 7.
std::string StatusName(int status);
// The "nobidirectional" line of a failed probe.
std::string ExpectProbeFailure(int status);
// The drain line for a drain status (nothing for OK).
std::string ExpectDrain(int status);
// A whole wake-up transaction whose drain got the status.
std::string ExpectWakeUp(int drain_status);
// The printer-information transaction up to its drain.
std::string ExpectInfoSent(int drain_status);
// The end of a printer-information transaction whose read returned ret.
std::string ExpectInfoReadFailure(long ret);
// The end of a printer-information transaction that got these bytes.
std::string ExpectInfoReceived(const std::string& bytes);
// "DEBUG: printer_info=[...]" for a record.
std::string ExpectInfoLine(const PrinterInfo& info);
// "DEBUG: #retry_status=[wake_up=<word>(<count>/60)]".
std::string ExpectRetryLine(const std::string& word, unsigned count);
// The command line of the command loop.
std::string ExpectCommandLine(const std::string& command, int linenum);

// What the library's reporting writes for a "ReportStatus" answered by the
// record (the unavailable record for a one-way link).
std::string ReportStatusText(const PrinterInfo& info);
// What a "ReportLevels" line writes on a bidirectional link for the record.
std::string ReportLevelsText(const PrinterInfo& info);
// What a "ReportLevels" line writes on a one-way link.
std::string ReportLevelsOneWayText();

// Checks that every START has its END (properly nested) and that every
// known command line is followed by its complete report.  Returns "" when
// the trace is consistent, else what is wrong.
std::string CheckTrace(const std::string& err);

#endif  // QUILLAROTH_TESTS_SUPPORT_HOSTILE_EXPECT_H_
