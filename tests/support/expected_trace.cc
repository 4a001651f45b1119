#include "tests/support/expected_trace.h"

#include <strings.h>

#include <cstdio>
#include <sstream>
#include <vector>

#include "report/printer_state_reasons.h"
#include "report/report_printer_levels.h"
#include "tests/support/stderr_capture.h"

const std::string kWakeUpCommand("\x1b\x45\x57\x55", 4);
const std::string kPrinterInfoCommand("\x1b\x56\x32\x31", 4);

const char kWakeUpPause[] = "usleep 500000\n";
const char kRetryPause[] = "sleep 1\n";

const char kRetryStartLine[] = "DEBUG: get_printer_info_retry() START\n";
const char kRetryEndLine[] = "DEBUG: get_printer_info_retry() END\n";
const char kRetryOverLine[] = "DEBUG: #retry over\n";
const char kUnavailableInfoLine[] = "DEBUG: printer_info=[UNAVAILABLE]\n";

const char* const kKnownReasons[19] = {
    "com.quillaroth-error0001", "com.quillaroth-error0002",
    "com.quillaroth-error0003", "com.quillaroth-error0004",
    "com.quillaroth-error0005", "com.quillaroth-error0006",
    "com.quillaroth-error0007", "com.quillaroth-error0008",
    "com.quillaroth-error0009", "com.quillaroth-error0010",
    "com.quillaroth-error0011", "com.quillaroth-error0012",
    "com.quillaroth-error0013", "com.quillaroth-error0014",
    "com.quillaroth-error0018", "com.quillaroth-error0020",
    "com.quillaroth-error0021", "com.quillaroth-error0022",
    "com.quillaroth-error0023",
};

const char kSheetPvR31a[] = "PV-R31A 13x18(5x7\xe2\x80\xb3)";
const char kSheetPvR31aGx[] = "PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)";
const char kSheetPvR32a[] = "PV-R32A 15x20(6x8\xe2\x80\xb3)";
const char kSheetPvR32aGx[] = "PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)";

namespace {

// The CUPS name of a side-channel status; "UNKNOWN" outside 0 to 7.
std::string StatusName(int status) {
  static const char* const kNames[] = {
      "CUPS_SC_STATUS_NONE",        "CUPS_SC_STATUS_OK",
      "CUPS_SC_STATUS_IO_ERROR",    "CUPS_SC_STATUS_TIMEOUT",
      "CUPS_SC_STATUS_NO_RESPONSE", "CUPS_SC_STATUS_BAD_MESSAGE",
      "CUPS_SC_STATUS_TOO_BIG",     "CUPS_SC_STATUS_NOT_IMPLEMENTED"};
  if (status < 0 || status > 7) return "UNKNOWN";
  return kNames[status];
}

// The line of a failed drain (nothing for CUPS_SC_STATUS_OK).
std::string DrainLine(int status) {
  if (status == CUPS_SC_STATUS_OK) return "";
  return "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=" + StatusName(status) + "(" +
         std::to_string(status) + ")\n";
}

}  // namespace

std::string HexDump(const std::string& label, const std::string& bytes) {
  std::string text =
      "DEBUG: " + label + " size=" + std::to_string(bytes.size());
  char piece[32];
  for (size_t i = 0; i < bytes.size(); i++) {
    if (i % 16 == 0) {
      snprintf(piece, sizeof(piece), " %04zx:", i);
      text += "\nDEBUG: " + label + piece;
    }
    snprintf(piece, sizeof(piece), " %02x",
             static_cast<unsigned char>(bytes[i]));
    text += piece;
  }
  if (bytes.empty()) text += "\nDEBUG: " + label + " 0000:";
  return text + "\n";
}

std::string ProbeFailureLine(int status) {
  return "DEBUG: Unable to retrieve supply status from printer - "
         "nobidirectional I/O available! " +
         StatusName(status) + "(" + std::to_string(status) + ")\n";
}

std::string WakeUpLines(int drain_status) {
  return WakeUpFailureLines(DrainLine(drain_status));
}

std::string WakeUpFailureLines(const std::string& failure_line) {
  return "DEBUG: wr_esc_wakeup() START\n" + HexDump("[CMD]", kWakeUpCommand) +
         failure_line + "DEBUG: wr_esc_wakeup() END\n";
}

std::string CommandLine(const std::string& word, int linenum) {
  return "DEBUG: ====> command=[" + word +
         "] linenum=" + std::to_string(linenum) + "\n";
}

std::string InfoSentLines(int drain_status) {
  return "DEBUG: get_printer_info() START\n" +
         HexDump("[CMD]", kPrinterInfoCommand) + DrainLine(drain_status);
}

std::string InfoReceivedLines(const std::string& bytes) {
  return HexDump("[STS]", bytes) + "DEBUG: get_printer_info() END\n";
}

std::string ReadFailureLine(long ret) {
  return "DEBUG: cupsBackChannelRead() failed. ret=" + std::to_string(ret) +
         "\n";
}

std::string InfoReadFailureLines(long ret) {
  return ReadFailureLine(ret) + "DEBUG: get_printer_info() END\n";
}

std::string InfoQueryLines(const std::string& reply) {
  return InfoSentLines() + InfoReceivedLines(reply);
}

std::string InfoFailureLines(const std::string& failure_line,
                             int drain_status) {
  return InfoSentLines(drain_status) + failure_line +
         "DEBUG: get_printer_info() END\n";
}

std::string InfoLine(const PrinterInfo& info) {
  return "DEBUG: printer_info=[" + info.to_string() + "]\n";
}

std::string RetryLine(const std::string& word, unsigned count) {
  return "DEBUG: #retry_status=[wake_up=" + word + "(" + std::to_string(count) +
         "/60)]\n";
}

std::string StateLines(const std::string& raised) {
  std::string keyword = raised.empty() ? "" : "com.quillaroth-error" + raised;
  std::string lines;
  if (!raised.empty()) lines += "STATE: +" + keyword + "\n";
  for (const char* reason : kKnownReasons)
    if (keyword != reason) lines += std::string("STATE: -") + reason + "\n";
  return lines;
}

std::string UndefinedErrorLine(const std::string& code) {
  return "DEBUG: encountered undefined error number (" + code + ")\n";
}

std::string LevelsLines(const std::string& debug, const std::string& level,
                        const std::string& message, const std::string& names) {
  return "DEBUG: [ReportLevels] " + debug + "\n" +
         "ATTR: marker-colors=#00FF00\n" + "ATTR: marker-levels=" + level +
         "\n" + "ATTR: marker-message=\"" + message + "\"\n" +
         "ATTR: marker-names=\"" + names + "\"\n" +
         "ATTR: marker-types=ink-ribbon\n";
}

std::string UnavailableLevelsLines() {
  return LevelsLines("UNAVAILABLE", "-2", " ", "InkSheetType: 00");
}

std::string ReportedState(const PrinterInfo& info) {
  StderrCapture capture;
  update_printer_state(info.GetPrinterState());
  return capture.Text();
}

std::string ReportedLevels(const PrinterInfo& info) {
  StderrCapture capture;
  report_printer_levels(info.GetPrinterLevels());
  update_printer_state(info.GetPrinterState());
  return capture.Text();
}

namespace {

// Splits text into lines without their line ends.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

// True when line begins with prefix.
bool Starts(const std::string& line, const std::string& prefix) {
  return line.compare(0, prefix.size(), prefix) == 0;
}

// True when line ends with suffix.
bool Ends(const std::string& line, const std::string& suffix) {
  return line.size() >= suffix.size() &&
         line.compare(line.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Checks the report that follows one command line: lines [first, last).
std::string CheckReport(const std::vector<std::string>& lines, size_t first,
                        size_t last, const std::string& command) {
  int state_lines = 0, raised = 0, attr_lines = 0;
  for (size_t i = first; i < last; i++) {
    if (Starts(lines[i], "STATE: +")) raised++;
    if (Starts(lines[i], "STATE: ")) state_lines++;
    if (Starts(lines[i], "ATTR: marker-")) attr_lines++;
  }
  bool levels = strcasecmp(command.c_str(), "ReportLevels") == 0;
  bool status = strcasecmp(command.c_str(), "ReportStatus") == 0;
  std::string where =
      " after line " + std::to_string(first) + " [" + command + "]";
  if (status && (state_lines != 19 || raised > 1))
    return "incomplete state report" + where;
  if (levels && (attr_lines != 5 || (state_lines != 0 && state_lines != 19)))
    return "incomplete levels report" + where;
  if (!levels && !status && (state_lines != 0 || attr_lines != 0))
    return "report for an unknown command" + where;
  return "";
}

}  // namespace

std::string CheckTrace(const std::string& err) {
  std::vector<std::string> lines = LinesOf(err);
  std::vector<std::string> open;
  const std::string kCommand = "DEBUG: ====> command=[";
  size_t command_at = 0;
  std::string command;
  for (size_t i = 0; i < lines.size(); i++) {
    const std::string& line = lines[i];
    if (Starts(line, "DEBUG: ") && Ends(line, "() START")) {
      open.push_back(line.substr(7, line.size() - 7 - 8));
    } else if (Starts(line, "DEBUG: ") && Ends(line, "() END")) {
      std::string name = line.substr(7, line.size() - 7 - 6);
      if (open.empty() || open.back() != name)
        return "END without START at line " + std::to_string(i) + ": " + line;
      open.pop_back();
    } else if (Starts(line, kCommand)) {
      if (!open.empty())
        return "command read inside " + open.back() + "() at line " +
               std::to_string(i);
      if (!command.empty()) {
        std::string problem = CheckReport(lines, command_at, i, command);
        if (!problem.empty()) return problem;
      }
      command = line.substr(kCommand.size(),
                            line.find("] linenum=") - kCommand.size());
      command_at = i;
    }
  }
  if (!open.empty()) return "START without END: " + open.back() + "()";
  if (!command.empty())
    return CheckReport(lines, command_at, lines.size(), command);
  return "";
}
