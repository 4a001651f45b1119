// PRINTER_STATE_REASONS and update_printer_state: the table and the complete
// "STATE:" report written for every printer state.

#include "report/printer_state_reasons.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "status/printer_state.h"
#include "tests/support/expected_trace.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// One expected row of the table: a code and the keyword it raises.
struct ExpectedEntry {
  unsigned char code[3];
  const char* reason;  // nullptr: the entry raises nothing
};

const ExpectedEntry kTable[38] = {
    {{0x00, 0x00, 0x00}, nullptr},
    {{0x06, 0x02, 0x02}, "com.quillaroth-error0001"},
    {{0x09, 0x02, 0x02}, "com.quillaroth-error0002"},
    {{0x03, 0x01, 0x01}, "com.quillaroth-error0003"},
    {{0x08, 0x01, 0x01}, "com.quillaroth-error0004"},
    {{0x05, 0x02, 0x02}, "com.quillaroth-error0005"},
    {{0x02, 0x02, 0x02}, "com.quillaroth-error0006"},
    {{0x04, 0x03, 0x04}, "com.quillaroth-error0007"},
    {{0x07, 0x03, 0x03}, "com.quillaroth-error0008"},
    {{0x20, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x21, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x23, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x26, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x27, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x28, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x29, 0x07, 0x07}, "com.quillaroth-error0009"},
    {{0x0a, 0x05, 0x05}, "com.quillaroth-error0010"},
    {{0x0b, 0x05, 0x07}, "com.quillaroth-error0011"},
    {{0x30, 0x09, 0x07}, "com.quillaroth-error0012"},
    {{0x37, 0x09, 0x0f}, "com.quillaroth-error0013"},
    {{0x31, 0x09, 0x07}, "com.quillaroth-error0013"},
    {{0x32, 0x09, 0x0f}, "com.quillaroth-error0013"},
    {{0x33, 0x09, 0x0f}, "com.quillaroth-error0013"},
    {{0x34, 0x09, 0x07}, "com.quillaroth-error0013"},
    {{0x36, 0x09, 0x0f}, "com.quillaroth-error0013"},
    {{0x3a, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x3b, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x3c, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x3d, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x3e, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x3f, 0x0a, 0x0f}, "com.quillaroth-error0014"},
    {{0x40, 0x0e, 0x0f}, "com.quillaroth-error0014"},
    {{0x0c, 0x0f, 0x00}, "com.quillaroth-error0018"},
    {{0x01, 0x06, 0x06}, "com.quillaroth-error0020"},
    {{0x0d, 0x08, 0x07}, "com.quillaroth-error0021"},
    {{0x0e, 0x08, 0x07}, "com.quillaroth-error0021"},
    {{0x10, 0x08, 0x08}, "com.quillaroth-error0022"},
    {{0xfe, 0xed, 0x01}, "com.quillaroth-error0005"},
};

const char kUndefined[] = "com.quillaroth-error0023";

// The report for a state that raises `reason` (or nothing when null).
std::string ExpectedReport(const char* reason) {
  return StateLines(reason == nullptr ? "" : std::string(reason).substr(20));
}

// The report for a code that no entry holds, logged with its state text.
std::string ExpectedUndefinedReport(const std::string& state_text) {
  return UndefinedErrorLine(state_text) + StateLines("0023");
}

// Runs update_printer_state and returns all it wrote to stderr.
std::string Report(const PrinterState& state) {
  StderrCapture capture;
  update_printer_state(state);
  return capture.Text();
}

// The report for an Available state with the given code bytes.
std::string ReportCode(unsigned char b0, unsigned char b1, unsigned char b2) {
  const unsigned char code[3] = {b0, b1, b2};
  return Report(PrinterState::Error(&code));
}

TEST(PrinterStateReasonsTest, TableHasThirtyEightEntries) {
  EXPECT_EQ(38u, PRINTER_STATE_REASONS_COUNT);
  EXPECT_EQ(38u,
            sizeof(PRINTER_STATE_REASONS) / sizeof(PRINTER_STATE_REASONS[0]));
}

TEST(PrinterStateReasonsTest, EveryEntryInOrder) {
  for (size_t i = 0; i < 38; ++i) {
    const PrinterStateReasonEntry& entry = PRINTER_STATE_REASONS[i];
    const ExpectedEntry& expected = kTable[i];
    EXPECT_EQ(expected.code[0], entry.error_code[0]) << "entry " << i;
    EXPECT_EQ(expected.code[1], entry.error_code[1]) << "entry " << i;
    EXPECT_EQ(expected.code[2], entry.error_code[2]) << "entry " << i;
    if (expected.reason == nullptr) {
      EXPECT_EQ(nullptr, entry.reasons[0]) << "entry " << i;
    } else {
      ASSERT_NE(nullptr, entry.reasons[0]) << "entry " << i;
      EXPECT_EQ(std::string(expected.reason), entry.reasons[0])
          << "entry " << i;
    }
    EXPECT_EQ(nullptr, entry.reasons[1]) << "entry " << i;
    EXPECT_EQ(nullptr, entry.reasons[2]) << "entry " << i;
    EXPECT_EQ(nullptr, entry.reasons[3]) << "entry " << i;
  }
}

TEST(PrinterStateReasonsTest, CodesAreAllDifferent) {
  std::set<std::string> codes;
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS)
    codes.insert(
        std::string(reinterpret_cast<const char*>(entry.error_code), 3));
  EXPECT_EQ(38u, codes.size());
}

TEST(PrinterStateReasonsTest, KeywordsAreVendorKeywords) {
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    for (const char* reason : entry.reasons) {
      if (reason == nullptr) break;
      const std::string text = reason;
      ASSERT_EQ(24u, text.size()) << text;
      EXPECT_EQ("com.quillaroth-error", text.substr(0, 20)) << text;
      for (char digit : text.substr(20))
        EXPECT_TRUE(digit >= '0' && digit <= '9') << text;
    }
  }
}

TEST(PrinterStateReasonsTest, KnownReasonsAreTheTableAndTheConstants) {
  std::set<std::string> known;
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS)
    for (const char* reason : entry.reasons) {
      if (reason == nullptr) break;
      known.insert(reason);
    }
  known.insert(UNAVAILABLE_REASON);
  known.insert(UNDEFINED_ERROR_REASON);
  const std::vector<std::string> expected(std::begin(kKnownReasons),
                                          std::end(kKnownReasons));
  EXPECT_EQ(expected, std::vector<std::string>(known.begin(), known.end()));
}

TEST(PrinterStateReasonsTest, TwoSeparateConstantsWithTheSameText) {
  EXPECT_EQ(std::string("com.quillaroth-error0023"), UNAVAILABLE_REASON);
  EXPECT_EQ(std::string("com.quillaroth-error0023"), UNDEFINED_ERROR_REASON);
  EXPECT_NE(static_cast<const void*>(&UNAVAILABLE_REASON),
            static_cast<const void*>(&UNDEFINED_ERROR_REASON));
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    for (const char* reason : entry.reasons) {
      if (reason != nullptr) {
        EXPECT_NE(std::string(kUndefined), reason);
      }
    }
  }
}

TEST(PrinterStateReasonsTest, EveryTableCodeGivesItsCompleteReport) {
  for (size_t i = 0; i < 38; ++i) {
    const ExpectedEntry& entry = kTable[i];
    EXPECT_EQ(ExpectedReport(entry.reason),
              ReportCode(entry.code[0], entry.code[1], entry.code[2]))
        << "entry " << i;
  }
}

TEST(PrinterStateReasonsTest, EveryReportHasNineteenLines) {
  for (size_t i = 0; i < 38; ++i) {
    const std::string text =
        ReportCode(kTable[i].code[0], kTable[i].code[1], kTable[i].code[2]);
    size_t lines = 0;
    for (char c : text)
      if (c == '\n') ++lines;
    EXPECT_EQ(19u, lines) << "entry " << i;
  }
}

// The whole trace, written out: the readable example of this file.  The
// good state raises nothing and withdraws all 19 known reasons, in order.
TEST(PrinterStateReasonsTest, GoodWithdrawsAllNineteenGoldenTrace) {
  const std::string expected =
      "STATE: -com.quillaroth-error0001\n"
      "STATE: -com.quillaroth-error0002\n"
      "STATE: -com.quillaroth-error0003\n"
      "STATE: -com.quillaroth-error0004\n"
      "STATE: -com.quillaroth-error0005\n"
      "STATE: -com.quillaroth-error0006\n"
      "STATE: -com.quillaroth-error0007\n"
      "STATE: -com.quillaroth-error0008\n"
      "STATE: -com.quillaroth-error0009\n"
      "STATE: -com.quillaroth-error0010\n"
      "STATE: -com.quillaroth-error0011\n"
      "STATE: -com.quillaroth-error0012\n"
      "STATE: -com.quillaroth-error0013\n"
      "STATE: -com.quillaroth-error0014\n"
      "STATE: -com.quillaroth-error0018\n"
      "STATE: -com.quillaroth-error0020\n"
      "STATE: -com.quillaroth-error0021\n"
      "STATE: -com.quillaroth-error0022\n"
      "STATE: -com.quillaroth-error0023\n";
  EXPECT_EQ(expected, Report(PrinterState::Good()));
  const unsigned char zero[3] = {0x00, 0x00, 0x00};
  EXPECT_EQ(expected, Report(PrinterState::Error(&zero)));
}

TEST(PrinterStateReasonsTest, FirstCodeRaisesError0001) {
  EXPECT_EQ(StateLines("0001"), ReportCode(0x06, 0x02, 0x02));
}

TEST(PrinterStateReasonsTest, OneOfSevenCodesOfError0009) {
  EXPECT_EQ(StateLines("0009"), ReportCode(0x23, 0x07, 0x07));
}

TEST(PrinterStateReasonsTest, InternalSupplyLowRaisesError0005) {
  EXPECT_EQ(StateLines("0005"), Report(PrinterState::InternalSupplyLow()));
  EXPECT_EQ(StateLines("0005"), ReportCode(0x05, 0x02, 0x02));
}

TEST(PrinterStateReasonsTest, UnavailableRaisesError0023WithoutDebugLine) {
  EXPECT_EQ(StateLines("0023"), Report(PrinterState::Unavailable()));
}

TEST(PrinterStateReasonsTest, UnavailableIgnoresItsCodeBytes) {
  const unsigned char code[3] = {0x06, 0x02, 0x02};
  EXPECT_EQ(StateLines("0023"),
            Report(PrinterState(PrinterState::Type::Unavailable, &code)));
}

TEST(PrinterStateReasonsTest, UnknownCodeIsLoggedAndRaisesError0023) {
  EXPECT_EQ(ExpectedUndefinedReport("0x11,0x22,0x33"),
            ReportCode(0x11, 0x22, 0x33));
}

TEST(PrinterStateReasonsTest, TypeTwoIsLoggedAsUnknown) {
  EXPECT_EQ(ExpectedUndefinedReport("UNKNOWN"),
            Report(PrinterState(static_cast<PrinterState::Type>(2))));
}

TEST(PrinterStateReasonsTest, TypeTwoWithAKnownCodeIsStillUndefined) {
  const unsigned char zero[3] = {0x00, 0x00, 0x00};
  const unsigned char first[3] = {0x06, 0x02, 0x02};
  EXPECT_EQ(ExpectedUndefinedReport("UNKNOWN"),
            Report(PrinterState(static_cast<PrinterState::Type>(2), &zero)));
  EXPECT_EQ(ExpectedUndefinedReport("UNKNOWN"),
            Report(PrinterState(static_cast<PrinterState::Type>(2), &first)));
}

TEST(PrinterStateReasonsTest, CodesThatDifferInTheLastByteAreDistinct) {
  EXPECT_EQ(StateLines("0011"), ReportCode(0x0b, 0x05, 0x07));
  EXPECT_EQ(ExpectedUndefinedReport("0x0b,0x05,0x05"),
            ReportCode(0x0b, 0x05, 0x05));
}

TEST(PrinterStateReasonsTest, CodesThatDifferInOneByteAreUndefined) {
  EXPECT_EQ(ExpectedUndefinedReport("0x22,0x07,0x07"),
            ReportCode(0x22, 0x07, 0x07));
  EXPECT_EQ(ExpectedUndefinedReport("0x06,0x03,0x02"),
            ReportCode(0x06, 0x03, 0x02));
  EXPECT_EQ(ExpectedUndefinedReport("0xfe,0xed,0x02"),
            ReportCode(0xfe, 0xed, 0x02));
  EXPECT_EQ(ExpectedUndefinedReport("0x00,0x00,0x01"),
            ReportCode(0x00, 0x00, 0x01));
  EXPECT_EQ(ExpectedUndefinedReport("0xff,0xff,0xff"),
            ReportCode(0xff, 0xff, 0xff));
}

TEST(PrinterStateReasonsTest, TwoCallsInARowWriteTheSameLinesTwice) {
  const unsigned char code[3] = {0x0a, 0x05, 0x05};
  const PrinterState state = PrinterState::Error(&code);
  StderrCapture capture;
  update_printer_state(state);
  update_printer_state(state);
  const std::string once = StateLines("0010");
  EXPECT_EQ(once + once, capture.Text());
}

TEST(PrinterStateReasonsTest, EarlierCallsLeaveNoTrace) {
  StderrCapture capture;
  update_printer_state(PrinterState::Unavailable());
  update_printer_state(PrinterState::Good());
  update_printer_state(PrinterState::InternalSupplyLow());
  EXPECT_EQ(StateLines("0023") + StateLines("") + StateLines("0005"),
            capture.Text());
}

TEST(PrinterStateReasonsTest, EachLineIsOneWrite) {
  StderrWrites writes;
  update_printer_state(PrinterState::Good());
  update_printer_state(PrinterState::InternalSupplyLow());
  update_printer_state(PrinterState::Unavailable());
  const unsigned char unknown[3] = {0x11, 0x22, 0x33};
  update_printer_state(PrinterState::Error(&unknown));
  EXPECT_EQ(
      SplitLines(StateLines("") + StateLines("0005") + StateLines("0023") +
                 ExpectedUndefinedReport("0x11,0x22,0x33")),
      writes.Writes());
}

}  // namespace
