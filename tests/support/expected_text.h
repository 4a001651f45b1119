// Expected filter output, written out from the printer's and the
// scheduler's formats, for the integration tests.
//
// These helpers spell out the lines that the filter must write, so that a
// test reads as the story of one run: the wake-up, each query with its hex
// dumps, the retry status, the state and supply report.

#ifndef QUILLAROTH_TESTS_SUPPORT_EXPECTED_TEXT_H_
#define QUILLAROTH_TESTS_SUPPORT_EXPECTED_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>

// The escape commands, byte for byte.
extern const std::string WAKE_UP_COMMAND;      // 1b 45 57 55
extern const std::string PRINTER_INFO_COMMAND; // 1b 56 32 31
extern const std::string JOB_STATUS_COMMAND;   // 1b 56 31 30 00 00

// A printer information reply.  The defaults are those of the simulated
// printer when nothing else is asked for: awake, no error, a PV-R31A(GX)
// ink sheet (84 10) with 123 of 350 prints left, every other byte 00.
struct InfoReply {
  uint8_t memory = 0x00;                  // offset 4
  uint8_t power = 0x00;                   // offset 5
  uint8_t mech[2] = {0x00, 0x00};         // offsets 128, 129
  uint8_t error[3] = {0x00, 0x00, 0x00};  // offsets 131-133
  uint8_t sheet[2] = {0x84, 0x10};        // offsets 145, 146
  uint16_t total = 350;                   // offsets 148-149, big-endian
  uint16_t remaining = 123;               // offsets 150-151, big-endian
  uint8_t fill = 0x00;                    // every other byte
  size_t size = 192;
};

// The bytes of the reply.
std::string info_reply_bytes(const InfoReply& reply);

// The hex dump of data under the label: "DEBUG: L size=N", then lines of
// sixteen bytes "DEBUG: L 0000: 1b 56 ...".
std::string hex_dump(const std::string& label, const std::string& data);

// The wake-up transaction when it goes well: START, [CMD] dump, END.
std::string wake_up_lines();

// One printer-information transaction that receives the reply whole.
std::string info_query_lines(const std::string& reply);

// The state report raising "com.quillaroth-error<raised>" (empty: raise
// nothing), then withdrawing every other one of the 19 known keywords in
// ascending order.
std::string state_lines(const std::string& raised);

// "DEBUG: ====> command=[<word>] linenum=<n>\n".
std::string command_line(const std::string& word, int linenum);

// The probe failure line naming the side-channel status.
std::string no_bidi_line(const std::string& status_name, int status);

// The supply report of an unavailable record.
std::string unavailable_levels_lines();

// The simulated printer's default reply as the filter logs it.
extern const std::string DEFAULT_INFO_LINE;
// The supply report of that reply: 12300 / 350 = 35.
extern const std::string DEFAULT_LEVELS_LINES;

// A ReportStatus line with the default printer, awake at the first query:
// the wait, the query, the good state's report.
std::string default_status_lines();
// The same for a ReportLevels line: the supply report before the state's.
std::string default_levels_lines();

#endif  // QUILLAROTH_TESTS_SUPPORT_EXPECTED_TEXT_H_
