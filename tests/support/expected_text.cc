// Expected filter output for the integration tests.

#include "tests/support/expected_text.h"

#include <cstdio>

const std::string WAKE_UP_COMMAND("\x1b\x45\x57\x55", 4);
const std::string PRINTER_INFO_COMMAND("\x1b\x56\x32\x31", 4);
const std::string JOB_STATUS_COMMAND("\x1b\x56\x31\x30\x00\x00", 6);

namespace {

// The known vendor keywords' numbers, in ascending order.
const char* const KNOWN_REASONS[] = {
    "0001", "0002", "0003", "0004", "0005", "0006", "0007",
    "0008", "0009", "0010", "0011", "0012", "0013", "0014",
    "0018", "0020", "0021", "0022", "0023"};

// Puts one byte into the reply.
void put(std::string* reply, size_t offset, uint8_t value) {
  if (offset < reply->size()) (*reply)[offset] = static_cast<char>(value);
}

}  // namespace

// Lays the fields at their offsets over a block of fill bytes.
std::string info_reply_bytes(const InfoReply& reply) {
  std::string bytes(reply.size, static_cast<char>(reply.fill));
  put(&bytes, 4, reply.memory);
  put(&bytes, 5, reply.power);
  put(&bytes, 128, reply.mech[0]);
  put(&bytes, 129, reply.mech[1]);
  put(&bytes, 131, reply.error[0]);
  put(&bytes, 132, reply.error[1]);
  put(&bytes, 133, reply.error[2]);
  put(&bytes, 145, reply.sheet[0]);
  put(&bytes, 146, reply.sheet[1]);
  put(&bytes, 148, static_cast<uint8_t>(reply.total >> 8));
  put(&bytes, 149, static_cast<uint8_t>(reply.total & 0xff));
  put(&bytes, 150, static_cast<uint8_t>(reply.remaining >> 8));
  put(&bytes, 151, static_cast<uint8_t>(reply.remaining & 0xff));
  return bytes;
}

// Head line, then sixteen bytes a line under the label and offset.
std::string hex_dump(const std::string& label, const std::string& data) {
  char text[64];
  snprintf(text, sizeof text, "DEBUG: %s size=%zu", label.c_str(),
           data.size());
  std::string dump = text;
  if (data.empty()) dump += "\nDEBUG: " + label + " 0000:";
  for (size_t i = 0; i < data.size(); i++) {
    if (i % 16 == 0) {
      snprintf(text, sizeof text, "\nDEBUG: %s %04zx:", label.c_str(), i);
      dump += text;
    }
    snprintf(text, sizeof text, " %02x", static_cast<uint8_t>(data[i]));
    dump += text;
  }
  return dump + "\n";
}

// START, the command's dump, END.
std::string wake_up_lines() {
  return "DEBUG: wr_esc_wakeup() START\n" + hex_dump("[CMD]", WAKE_UP_COMMAND) +
         "DEBUG: wr_esc_wakeup() END\n";
}

// START, the command's dump, the reply's dump, END.
std::string info_query_lines(const std::string& reply) {
  return "DEBUG: get_printer_info() START\n" +
         hex_dump("[CMD]", PRINTER_INFO_COMMAND) + hex_dump("[STS]", reply) +
         "DEBUG: get_printer_info() END\n";
}

// The raised keyword first, then every other known one.
std::string state_lines(const std::string& raised) {
  std::string lines;
  if (!raised.empty()) lines += "STATE: +com.quillaroth-error" + raised + "\n";
  for (const char* reason : KNOWN_REASONS) {
    if (raised != reason)
      lines += std::string("STATE: -com.quillaroth-error") + reason + "\n";
  }
  return lines;
}

// The debug line that opens the handling of each command line.
std::string command_line(const std::string& word, int linenum) {
  return "DEBUG: ====> command=[" + word +
         "] linenum=" + std::to_string(linenum) + "\n";
}

// "DEBUG: Unable to retrieve supply status ... nobidirectional ..." line.
std::string no_bidi_line(const std::string& status_name, int status) {
  return "DEBUG: Unable to retrieve supply status from printer - "
         "nobidirectional I/O available! " +
         status_name + "(" + std::to_string(status) + ")\n";
}

// Level -2, a blank message, and the name of ink-sheet type 00.
std::string unavailable_levels_lines() {
  return "DEBUG: [ReportLevels] UNAVAILABLE\n"
         "ATTR: marker-colors=#00FF00\n"
         "ATTR: marker-levels=-2\n"
         "ATTR: marker-message=\" \"\n"
         "ATTR: marker-names=\"InkSheetType: 00\"\n"
         "ATTR: marker-types=ink-ribbon\n";
}

const std::string DEFAULT_INFO_LINE =
    "DEBUG: printer_info=[power_state=0x00 mech_state=[0x00,0x00] "
    "memory_state=0x00 error_info=[GOOD] levels=[ink ribbon 123 / 350 "
    "ink_sheet_type=0x84.0x10]]\n";

const std::string DEFAULT_LEVELS_LINES =
    "DEBUG: [ReportLevels] ink ribbon 123 / 350 ink_sheet_type=0x84.0x10\n"
    "ATTR: marker-colors=#00FF00\n"
    "ATTR: marker-levels=35\n"
    "ATTR: marker-message=\"Ink Ribbon = 123 / 350\"\n"
    "ATTR: marker-names=\"InkSheetType: PV-R31A(GX) 13x18(5x7\xe2\x80\xb3)\"\n"
    "ATTR: marker-types=ink-ribbon\n";

// The wait with one query that finds the printer awake, then the report.
std::string default_status_lines() {
  return "DEBUG: get_printer_info_retry() START\n" +
         info_query_lines(info_reply_bytes(InfoReply())) + DEFAULT_INFO_LINE +
         "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
         "DEBUG: get_printer_info_retry() END\n" +
         state_lines("");
}

// The same wait, the supply report, then the state report.
std::string default_levels_lines() {
  return "DEBUG: get_printer_info_retry() START\n" +
         info_query_lines(info_reply_bytes(InfoReply())) + DEFAULT_INFO_LINE +
         "DEBUG: #retry_status=[wake_up=fulfilled(0/60)]\n"
         "DEBUG: get_printer_info_retry() END\n" +
         DEFAULT_LEVELS_LINES + state_lines("");
}
