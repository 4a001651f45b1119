// report_printer_levels: the debug line and the five marker attributes.

#include "report/report_printer_levels.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "status/printer_levels.h"
#include "tests/support/expected_trace.h"
#include "tests/support/records.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// Runs report_printer_levels and returns all it wrote to stderr.
std::string Report(const PrinterLevels& levels) {
  StderrCapture capture;
  report_printer_levels(levels);
  return capture.Text();
}

// The marker-names value of an ink sheet.
std::string Names(const char* sheet) {
  return std::string("InkSheetType: ") + sheet;
}

// The record filled with the counts and the ink-sheet type.
PrinterLevels Filled(int total, int remaining, int sheet_0, int sheet_1) {
  return PrinterLevels::Fill(
      static_cast<uint16_t>(total), static_cast<uint16_t>(remaining),
      static_cast<unsigned char>(sheet_0), static_cast<unsigned char>(sheet_1));
}

// The debug line of that record.
std::string DebugLine(int total, int remaining, int sheet_0, int sheet_1) {
  char debug[96];
  snprintf(debug, sizeof(debug),
           "ink ribbon %d / %d ink_sheet_type=0x%02x.0x%02x", remaining, total,
           sheet_0, sheet_1);
  return debug;
}

// Expects the report of a record filled with the counts and the ink-sheet
// type: its debug line and message follow from them; the level and the
// names are the test's.
void ExpectFilled(int total, int remaining, int sheet_0, int sheet_1,
                  const std::string& level, const std::string& names) {
  EXPECT_EQ(LevelsLines(DebugLine(total, remaining, sheet_0, sheet_1), level,
                        "Ink Ribbon = " + std::to_string(remaining) + " / " +
                            std::to_string(total),
                        names),
            Report(Filled(total, remaining, sheet_0, sheet_1)));
}

// The same for counts that give no usable level: level -1, a blank message.
void ExpectUnusable(int total, int remaining, int sheet_0, int sheet_1,
                    const std::string& names) {
  EXPECT_EQ(LevelsLines(DebugLine(total, remaining, sheet_0, sheet_1), "-1",
                        " ", names),
            Report(Filled(total, remaining, sheet_0, sheet_1)));
}

TEST(ReportPrinterLevelsTest, UnavailableLevels) {
  EXPECT_EQ(LevelsLines("UNAVAILABLE", "-2", " ", "InkSheetType: 00"),
            Report(PrinterLevels::Unavailable()));
}

// The whole trace, written out: the readable example of this file.
TEST(ReportPrinterLevelsTest, AvailableLevelsGoldenTrace) {
  EXPECT_EQ(
      "DEBUG: [ReportLevels] ink ribbon 123 / 500 ink_sheet_type=0x84.0x00\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=24\n"
      "ATTR: marker-message=\"Ink Ribbon = 123 / 500\"\n"
      "ATTR: marker-names=\"InkSheetType: PV-R31A 13x18(5x7\xE2\x80\xB3)\"\n"
      "ATTR: marker-types=ink-ribbon\n",
      Report(PrinterLevels::Fill(500, 123, 0x84, 0x00)));
}

TEST(ReportPrinterLevelsTest, EveryKnownInkSheetName) {
  ExpectFilled(350, 350, 0x84, 0x10, "100", Names(kSheetPvR31aGx));
  ExpectFilled(3, 1, 0x8F, 0x00, "33", Names(kSheetPvR32a));
  ExpectFilled(3, 2, 0x8F, 0x10, "66", Names(kSheetPvR32aGx));
}

TEST(ReportPrinterLevelsTest, UnknownInkSheetTypeShowsItsFirstByte) {
  ExpectFilled(100, 50, 0x85, 0x10, "50", "InkSheetType: 85");
}

TEST(ReportPrinterLevelsTest, NothingLeftIsLevelZero) {
  ExpectFilled(1000, 0, 0x8F, 0x00, "0", Names(kSheetPvR32a));
}

TEST(ReportPrinterLevelsTest, TotalZeroIsUnusable) {
  ExpectUnusable(0, 5, 0x84, 0x00, Names(kSheetPvR31a));
  ExpectUnusable(0, 0, 0x00, 0x00, "InkSheetType: 00");
}

TEST(ReportPrinterLevelsTest, RemainingFfffIsUnusable) {
  ExpectUnusable(100, 65535, 0x84, 0x10, Names(kSheetPvR31aGx));
}

TEST(ReportPrinterLevelsTest, TotalFfffIsUnusable) {
  ExpectUnusable(65535, 100, 0x84, 0x10, Names(kSheetPvR31aGx));
  ExpectUnusable(65535, 65535, 0x8F, 0x10, Names(kSheetPvR32aGx));
}

TEST(ReportPrinterLevelsTest, LevelIsTruncatedNotRounded) {
  ExpectFilled(1000, 999, 0x84, 0x10, "99", Names(kSheetPvR31aGx));
  ExpectFilled(1000, 1, 0x84, 0x10, "0", Names(kSheetPvR31aGx));
}

TEST(ReportPrinterLevelsTest, LevelAboveHundredIsNotClamped) {
  ExpectFilled(500, 600, 0x84, 0x10, "120", Names(kSheetPvR31aGx));
}

TEST(ReportPrinterLevelsTest, LargestUsableCountsFitInThirtyTwoBits) {
  ExpectFilled(65534, 65534, 0x84, 0x10, "100", Names(kSheetPvR31aGx));
  ExpectFilled(1, 65534, 0x84, 0x10, "6553400", Names(kSheetPvR31aGx));
}

TEST(ReportPrinterLevelsTest, InkSheetTypeFfHasNoName) {
  ExpectFilled(350, 123, 0xFF, 0x00, "35", " ");
  ExpectFilled(350, 123, 0xFF, 0xFF, "35", " ");
  ExpectFilled(350, 123, 0xFF, 0x10, "35", " ");
}

TEST(ReportPrinterLevelsTest, InkSheetTypeFfHasNoNameWhenUnavailable) {
  EXPECT_EQ(
      LevelsLines("UNAVAILABLE", "-2", " ", " "),
      Report(LevelsWith(PrinterLevels::Type::Unavailable, 0, 0, 0xFF, 0x10)));
}

TEST(ReportPrinterLevelsTest, UnavailableWithCountsStillReportsMinusTwo) {
  EXPECT_EQ(LevelsLines("UNAVAILABLE", "-2", " ", Names(kSheetPvR31a)),
            Report(LevelsWith(PrinterLevels::Type::Unavailable, 500, 123, 0x84,
                              0x00)));
}

TEST(ReportPrinterLevelsTest, TypeTwoIsNotAvailable) {
  EXPECT_EQ(LevelsLines("UNKNOWN", "-2", " ", Names(kSheetPvR32aGx)),
            Report(LevelsWith(static_cast<PrinterLevels::Type>(2), 500, 123,
                              0x8F, 0x10)));
}

TEST(ReportPrinterLevelsTest, TwoReportsInARowAreIndependent) {
  StderrCapture capture;
  report_printer_levels(PrinterLevels::Fill(1000, 999, 0x84, 0x10));
  report_printer_levels(PrinterLevels::Unavailable());
  EXPECT_EQ(LevelsLines("ink ribbon 999 / 1000 ink_sheet_type=0x84.0x10", "99",
                        "Ink Ribbon = 999 / 1000", Names(kSheetPvR31aGx)) +
                LevelsLines("UNAVAILABLE", "-2", " ", "InkSheetType: 00"),
            capture.Text());
}

TEST(ReportPrinterLevelsTest, EachLineIsOneWrite) {
  StderrWrites writes;
  report_printer_levels(PrinterLevels::Fill(500, 123, 0x84, 0x00));
  report_printer_levels(PrinterLevels::Unavailable());
  report_printer_levels(PrinterLevels::Fill(0, 5, 0xFF, 0x00));
  EXPECT_EQ(
      SplitLines(LevelsLines("ink ribbon 123 / 500 ink_sheet_type=0x84.0x00",
                             "24", "Ink Ribbon = 123 / 500",
                             Names(kSheetPvR31a)) +
                 LevelsLines("UNAVAILABLE", "-2", " ", "InkSheetType: 00") +
                 LevelsLines("ink ribbon 5 / 0 ink_sheet_type=0xff.0x00", "-1",
                             " ", " ")),
      writes.Writes());
}

}  // namespace
