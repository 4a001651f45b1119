// The README's table of which printer error code raises which reason is
// made here from the filter's own table and the PPD lines' texts.

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "admin/ppd_edit.h"
#include "report/printer_state_reasons.h"
#include "status/printer_state.h"
#include "tests/support/files.h"

namespace {

const char kTableStart[] = "<!-- reasons table: from PRINTER_STATE_REASONS -->\n";
const char kTableEnd[] = "<!-- end of the reasons table -->\n";

std::string Hex(const uint8_t (&code)[3]) {
  char text[16];
  snprintf(text, sizeof(text), "`%02x %02x %02x`", code[0], code[1], code[2]);
  return text;
}

// The markdown table: one row per reason, with the codes that raise it.
std::string ReasonTable() {
  std::map<std::string, std::string> texts =
      ReasonTexts(ReadFile(COMMAND_FILTER_LINES));
  std::map<std::string, std::vector<std::string>> codes;
  const PrinterState own = PrinterState::InternalSupplyLow();
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    for (const char* reason : entry.reasons) {
      if (reason == nullptr) break;
      std::string code = Hex(entry.error_code);
      if (own == &entry.error_code)
        code += " (the filter's own code for a ribbon with no prints left)";
      codes[reason].push_back(code);
    }
  }
  codes[UNAVAILABLE_REASON].push_back(
      "none: the printer could not be asked (no answer, a one-way link)");
  codes[UNDEFINED_ERROR_REASON].push_back("any code not listed above");
  std::string table =
      "| Reason | Printer error codes | Its text in the queue |\n"
      "|---|---|---|\n";
  for (const auto& [reason, list] : codes) {
    std::string joined;
    for (const std::string& code : list)
      joined += (joined.empty() ? "" : ", ") + code;
    table += "| `" + reason + "` | " + joined + " | " + texts[reason] + " |\n";
  }
  return table;
}

TEST(ReasonTableTest, ReadmeHasTheTable) {
  std::string readme = ReadFile(README_PATH);
  size_t start = readme.find(kTableStart);
  size_t end = readme.find(kTableEnd);
  ASSERT_NE(std::string::npos, start) << "no reasons table in " << README_PATH;
  ASSERT_NE(std::string::npos, end);
  start += sizeof kTableStart - 1;
  EXPECT_EQ(ReasonTable(), readme.substr(start, end - start))
      << "the README's reasons table, as it should be:\n"
      << ReasonTable();
}

}  // namespace
