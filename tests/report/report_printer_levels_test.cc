// report_printer_levels: the debug line and the five marker attributes.

#include "report/report_printer_levels.h"

#include <gtest/gtest.h>

#include <string>

#include "status/printer_levels.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// Runs report_printer_levels and returns all it wrote to stderr.
std::string Report(const PrinterLevels& levels) {
  StderrCapture capture;
  report_printer_levels(levels);
  return capture.Text();
}

// The six lines of one report, built from their parts.
std::string Expected(const std::string& debug, const std::string& level,
                     const std::string& message, const std::string& names) {
  return "DEBUG: [ReportLevels] " + debug + "\n" +
         "ATTR: marker-colors=#00FF00\n" +
         "ATTR: marker-levels=" + level + "\n" +
         "ATTR: marker-message=\"" + message + "\"\n" +
         "ATTR: marker-names=\"" + names + "\"\n" +
         "ATTR: marker-types=ink-ribbon\n";
}

TEST(ReportPrinterLevelsTest, UnavailableLevels) {
  EXPECT_EQ(
      "DEBUG: [ReportLevels] UNAVAILABLE\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=-2\n"
      "ATTR: marker-message=\" \"\n"
      "ATTR: marker-names=\"InkSheetType: 00\"\n"
      "ATTR: marker-types=ink-ribbon\n",
      Report(PrinterLevels::Unavailable()));
}

TEST(ReportPrinterLevelsTest, AvailableLevels) {
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
  EXPECT_EQ(Expected("ink ribbon 350 / 350 ink_sheet_type=0x84.0x10", "100",
                     "Ink Ribbon = 350 / 350",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(350, 350, 0x84, 0x10)));
  EXPECT_EQ(Expected("ink ribbon 1 / 3 ink_sheet_type=0x8f.0x00", "33",
                     "Ink Ribbon = 1 / 3",
                     "InkSheetType: PV-R32A 15x20(6x8\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(3, 1, 0x8F, 0x00)));
  EXPECT_EQ(Expected("ink ribbon 2 / 3 ink_sheet_type=0x8f.0x10", "66",
                     "Ink Ribbon = 2 / 3",
                     "InkSheetType: PV-R32A(GX) 15x20(6x8\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(3, 2, 0x8F, 0x10)));
}

TEST(ReportPrinterLevelsTest, UnknownInkSheetTypeShowsItsFirstByte) {
  EXPECT_EQ(Expected("ink ribbon 50 / 100 ink_sheet_type=0x85.0x10", "50",
                     "Ink Ribbon = 50 / 100", "InkSheetType: 85"),
            Report(PrinterLevels::Fill(100, 50, 0x85, 0x10)));
}

TEST(ReportPrinterLevelsTest, TotalZeroIsUnusable) {
  EXPECT_EQ(
      "DEBUG: [ReportLevels] ink ribbon 5 / 0 ink_sheet_type=0x84.0x00\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=-1\n"
      "ATTR: marker-message=\" \"\n"
      "ATTR: marker-names=\"InkSheetType: PV-R31A 13x18(5x7\xE2\x80\xB3)\"\n"
      "ATTR: marker-types=ink-ribbon\n",
      Report(PrinterLevels::Fill(0, 5, 0x84, 0x00)));
  EXPECT_EQ(Expected("ink ribbon 0 / 0 ink_sheet_type=0x00.0x00", "-1", " ",
                     "InkSheetType: 00"),
            Report(PrinterLevels::Fill(0, 0, 0x00, 0x00)));
}

TEST(ReportPrinterLevelsTest, RemainingFfffIsUnusable) {
  EXPECT_EQ(Expected("ink ribbon 65535 / 100 ink_sheet_type=0x84.0x10", "-1",
                     " ", "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(100, 65535, 0x84, 0x10)));
}

TEST(ReportPrinterLevelsTest, TotalFfffIsUnusable) {
  EXPECT_EQ(Expected("ink ribbon 100 / 65535 ink_sheet_type=0x84.0x10", "-1",
                     " ", "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(65535, 100, 0x84, 0x10)));
  EXPECT_EQ(Expected("ink ribbon 65535 / 65535 ink_sheet_type=0x8f.0x10", "-1",
                     " ", "InkSheetType: PV-R32A(GX) 15x20(6x8\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(65535, 65535, 0x8F, 0x10)));
}

TEST(ReportPrinterLevelsTest, NothingLeftIsLevelZero) {
  EXPECT_EQ(
      "DEBUG: [ReportLevels] ink ribbon 0 / 1000 ink_sheet_type=0x8f.0x00\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=0\n"
      "ATTR: marker-message=\"Ink Ribbon = 0 / 1000\"\n"
      "ATTR: marker-names=\"InkSheetType: PV-R32A 15x20(6x8\xE2\x80\xB3)\"\n"
      "ATTR: marker-types=ink-ribbon\n",
      Report(PrinterLevels::Fill(1000, 0, 0x8F, 0x00)));
}

TEST(ReportPrinterLevelsTest, LevelIsTruncatedNotRounded) {
  EXPECT_EQ(Expected("ink ribbon 999 / 1000 ink_sheet_type=0x84.0x10", "99",
                     "Ink Ribbon = 999 / 1000",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(1000, 999, 0x84, 0x10)));
  EXPECT_EQ(Expected("ink ribbon 1 / 1000 ink_sheet_type=0x84.0x10", "0",
                     "Ink Ribbon = 1 / 1000",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(1000, 1, 0x84, 0x10)));
}

TEST(ReportPrinterLevelsTest, LevelAboveHundredIsNotClamped) {
  EXPECT_EQ(Expected("ink ribbon 600 / 500 ink_sheet_type=0x84.0x10", "120",
                     "Ink Ribbon = 600 / 500",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(500, 600, 0x84, 0x10)));
}

TEST(ReportPrinterLevelsTest, LargestUsableCountsFitInThirtyTwoBits) {
  EXPECT_EQ(Expected("ink ribbon 65534 / 65534 ink_sheet_type=0x84.0x10",
                     "100", "Ink Ribbon = 65534 / 65534",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(65534, 65534, 0x84, 0x10)));
  EXPECT_EQ(Expected("ink ribbon 65534 / 1 ink_sheet_type=0x84.0x10",
                     "6553400", "Ink Ribbon = 65534 / 1",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)"),
            Report(PrinterLevels::Fill(1, 65534, 0x84, 0x10)));
}

TEST(ReportPrinterLevelsTest, InkSheetTypeFfHasNoName) {
  EXPECT_EQ(
      "DEBUG: [ReportLevels] ink ribbon 123 / 350 ink_sheet_type=0xff.0x00\n"
      "ATTR: marker-colors=#00FF00\n"
      "ATTR: marker-levels=35\n"
      "ATTR: marker-message=\"Ink Ribbon = 123 / 350\"\n"
      "ATTR: marker-names=\" \"\n"
      "ATTR: marker-types=ink-ribbon\n",
      Report(PrinterLevels::Fill(350, 123, 0xFF, 0x00)));
  EXPECT_EQ(Expected("ink ribbon 123 / 350 ink_sheet_type=0xff.0xff", "35",
                     "Ink Ribbon = 123 / 350", " "),
            Report(PrinterLevels::Fill(350, 123, 0xFF, 0xFF)));
  EXPECT_EQ(Expected("ink ribbon 123 / 350 ink_sheet_type=0xff.0x10", "35",
                     "Ink Ribbon = 123 / 350", " "),
            Report(PrinterLevels::Fill(350, 123, 0xFF, 0x10)));
}

TEST(ReportPrinterLevelsTest, InkSheetTypeFfHasNoNameWhenUnavailable) {
  PrinterLevels levels = PrinterLevels::Unavailable();
  levels.ink_sheet_type[0] = 0xFF;
  levels.ink_sheet_type[1] = 0x10;
  EXPECT_EQ(Expected("UNAVAILABLE", "-2", " ", " "), Report(levels));
}

TEST(ReportPrinterLevelsTest, UnavailableWithCountsStillReportsMinusTwo) {
  PrinterLevels levels = PrinterLevels::Unavailable();
  levels.ribbon_total = 500;
  levels.ribbon_remaining = 123;
  levels.ink_sheet_type[0] = 0x84;
  levels.ink_sheet_type[1] = 0x00;
  EXPECT_EQ(Expected("UNAVAILABLE", "-2", " ",
                     "InkSheetType: PV-R31A 13x18(5x7\xE2\x80\xB3)"),
            Report(levels));
}

TEST(ReportPrinterLevelsTest, TypeTwoIsNotAvailable) {
  PrinterLevels levels(static_cast<PrinterLevels::Type>(2));
  levels.ribbon_total = 500;
  levels.ribbon_remaining = 123;
  levels.ink_sheet_type[0] = 0x8F;
  levels.ink_sheet_type[1] = 0x10;
  EXPECT_EQ(Expected("UNKNOWN", "-2", " ",
                     "InkSheetType: PV-R32A(GX) 15x20(6x8\xE2\x80\xB3)"),
            Report(levels));
}

TEST(ReportPrinterLevelsTest, TwoReportsInARowAreIndependent) {
  StderrCapture capture;
  report_printer_levels(PrinterLevels::Fill(1000, 999, 0x84, 0x10));
  report_printer_levels(PrinterLevels::Unavailable());
  EXPECT_EQ(Expected("ink ribbon 999 / 1000 ink_sheet_type=0x84.0x10", "99",
                     "Ink Ribbon = 999 / 1000",
                     "InkSheetType: PV-R31A(GX) 13x18(5x7\xE2\x80\xB3)") +
                Expected("UNAVAILABLE", "-2", " ", "InkSheetType: 00"),
            capture.Text());
}

TEST(ReportPrinterLevelsTest, EachLineIsOneWrite) {
  StderrWrites writes;
  report_printer_levels(PrinterLevels::Fill(500, 123, 0x84, 0x00));
  report_printer_levels(PrinterLevels::Unavailable());
  report_printer_levels(PrinterLevels::Fill(0, 5, 0xFF, 0x00));
  EXPECT_EQ(SplitLines(Expected("ink ribbon 123 / 500 ink_sheet_type=0x84.0x00",
                                "24", "Ink Ribbon = 123 / 500",
                                "InkSheetType: PV-R31A 13x18(5x7\xE2\x80\xB3)") +
                       Expected("UNAVAILABLE", "-2", " ", "InkSheetType: 00") +
                       Expected("ink ribbon 5 / 0 ink_sheet_type=0xff.0x00",
                                "-1", " ", " ")),
            writes.Writes());
}

}  // namespace
