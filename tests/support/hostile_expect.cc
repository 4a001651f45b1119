#include "tests/support/hostile_expect.h"

#include <strings.h>

#include <cstdio>
#include <sstream>
#include <vector>

#include "report/printer_state_reasons.h"
#include "report/report_printer_levels.h"
#include "status/printer_levels.h"
#include "tests/support/stderr_capture.h"

const char kWakeUpBytes[] = "\x1b\x45\x57\x55";
const char kPrinterInfoBytes[] = "\x1b\x56\x32\x31";

// Sixteen bytes a line, each line with the label and its offset.
std::string ExpectDump(const std::string& label, const std::string& bytes) {
  std::string text = "DEBUG: " + label + " size=" + std::to_string(bytes.size());
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

// The enumerator names of cups_sc_status_e.
std::string StatusName(int status) {
  static const char* const kNames[] = {
      "CUPS_SC_STATUS_NONE",        "CUPS_SC_STATUS_OK",
      "CUPS_SC_STATUS_IO_ERROR",    "CUPS_SC_STATUS_TIMEOUT",
      "CUPS_SC_STATUS_NO_RESPONSE", "CUPS_SC_STATUS_BAD_MESSAGE",
      "CUPS_SC_STATUS_TOO_BIG",     "CUPS_SC_STATUS_NOT_IMPLEMENTED"};
  if (status < 0 || status > 7) return "UNKNOWN";
  return kNames[status];
}

// The probe's failure line.
std::string ExpectProbeFailure(int status) {
  return "DEBUG: Unable to retrieve supply status from printer - "
         "nobidirectional I/O available! " +
         StatusName(status) + "(" + std::to_string(status) + ")\n";
}

// A failed drain is logged; a good one is not.
std::string ExpectDrain(int status) {
  if (status == kScStatusOk) return "";
  return "DEBUG: CUPS_SC_CMD_DRAIN_OUTPUT=" + StatusName(status) + "(" +
         std::to_string(status) + ")\n";
}

// START, the command's dump, the drain's line, END.
std::string ExpectWakeUp(int drain_status) {
  return "DEBUG: wr_esc_wakeup() START\n" +
         ExpectDump("[CMD]", std::string(kWakeUpBytes, 4)) +
         ExpectDrain(drain_status) + "DEBUG: wr_esc_wakeup() END\n";
}

// START, the command's dump, the drain's line.
std::string ExpectInfoSent(int drain_status) {
  return "DEBUG: get_printer_info() START\n" +
         ExpectDump("[CMD]", std::string(kPrinterInfoBytes, 4)) +
         ExpectDrain(drain_status);
}

// The read's failure line and END.
std::string ExpectInfoReadFailure(long ret) {
  return "DEBUG: cupsBackChannelRead() failed. ret=" + std::to_string(ret) +
         "\nDEBUG: get_printer_info() END\n";
}

// The reply's dump and END.
std::string ExpectInfoReceived(const std::string& bytes) {
  return ExpectDump("[STS]", bytes) + "DEBUG: get_printer_info() END\n";
}

// The retry loop's line after every query.
std::string ExpectInfoLine(const PrinterInfo& info) {
  return "DEBUG: printer_info=[" + info.to_string() + "]\n";
}

// The retry loop's status line.
std::string ExpectRetryLine(const std::string& word, unsigned count) {
  return "DEBUG: #retry_status=[wake_up=" + word + "(" +
         std::to_string(count) + "/60)]\n";
}

// The line the loop writes for every command it reads.
std::string ExpectCommandLine(const std::string& command, int linenum) {
  return "DEBUG: ====> command=[" + command +
         "] linenum=" + std::to_string(linenum) + "\n";
}

// The state report for the record.
std::string ReportStatusText(const PrinterInfo& info) {
  StderrCapture capture;
  update_printer_state(info.GetPrinterState());
  return capture.Text();
}

// The levels, then the state, from one record.
std::string ReportLevelsText(const PrinterInfo& info) {
  StderrCapture capture;
  report_printer_levels(info.GetPrinterLevels());
  update_printer_state(info.GetPrinterState());
  return capture.Text();
}

// The unavailable levels alone.
std::string ReportLevelsOneWayText() {
  StderrCapture capture;
  report_printer_levels(PrinterLevels::Unavailable());
  return capture.Text();
}

namespace {

// Splits text into lines without their line ends.
std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

// True when line begins with prefix.
bool starts(const std::string& line, const std::string& prefix) {
  return line.compare(0, prefix.size(), prefix) == 0;
}

// Checks the report that follows one command line: lines [first, last).
std::string check_report(const std::vector<std::string>& lines, size_t first,
                         size_t last, const std::string& command) {
  int state_lines = 0, raised = 0, attr_lines = 0;
  for (size_t i = first; i < last; i++) {
    if (starts(lines[i], "STATE: +")) raised++;
    if (starts(lines[i], "STATE: ")) state_lines++;
    if (starts(lines[i], "ATTR: marker-")) attr_lines++;
  }
  const char* word = command.c_str();
  bool levels = strcasecmp(word, "ReportLevels") == 0;
  bool status = strcasecmp(word, "ReportStatus") == 0;
  std::string where = " after line " + std::to_string(first) + " [" + command + "]";
  if (status && (state_lines != 19 || raised > 1))
    return "incomplete state report" + where;
  if (levels && (attr_lines != 5 || (state_lines != 0 && state_lines != 19)))
    return "incomplete levels report" + where;
  if (!levels && !status && (state_lines != 0 || attr_lines != 0))
    return "report for an unknown command" + where;
  return "";
}

}  // namespace

// Walks the trace once, pairing STARTs with ENDs and commands with reports.
std::string CheckTrace(const std::string& err) {
  std::vector<std::string> lines = lines_of(err);
  std::vector<std::string> open;
  const std::string kCommand = "DEBUG: ====> command=[";
  size_t command_at = 0;
  std::string command;
  for (size_t i = 0; i < lines.size(); i++) {
    const std::string& line = lines[i];
    size_t tail = line.size() >= 8 ? line.size() - 8 : 0;
    if (starts(line, "DEBUG: ") && line.compare(tail, 8, "() START") == 0) {
      open.push_back(line.substr(7, line.size() - 7 - 8));
    } else if (starts(line, "DEBUG: ") && line.size() >= 6 &&
               line.compare(line.size() - 6, 6, "() END") == 0) {
      std::string name = line.substr(7, line.size() - 7 - 6);
      if (open.empty() || open.back() != name)
        return "END without START at line " + std::to_string(i) + ": " + line;
      open.pop_back();
    } else if (starts(line, kCommand)) {
      if (!open.empty())
        return "command read inside " + open.back() + "() at line " +
               std::to_string(i);
      if (!command.empty()) {
        std::string problem = check_report(lines, command_at, i, command);
        if (!problem.empty()) return problem;
      }
      command = line.substr(kCommand.size(), line.find("] linenum=") -
                                                 kCommand.size());
      command_at = i;
    }
  }
  if (!open.empty()) return "START without END: " + open.back() + "()";
  if (!command.empty())
    return check_report(lines, command_at, lines.size(), command);
  return "";
}
