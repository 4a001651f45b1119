#include "admin/queue_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr char kSheet[] = "PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)";

class QueueReaderTest : public ::testing::Test {
 protected:
  QueueReaderTest() {
    printer_.name = "booth";
    printer_.device_uri = "usb://Quillaroth/Photo?serial=1";
    ppd_.has_ppd = true;
    ppd_.runs_filter = true;
    ppd_.reason_texts["com.quillaroth-error0001"] =
        "Printer error 0001 - see the printer's panel";
  }

  // The levels the filter reports, as the scheduler then holds them.
  void Reported(int level, const std::string& message,
                const std::string& names) {
    // Not "= {level}": GCC 14 under the sanitizers takes that one-element
    // list's copy for an out-of-bounds access (a false -Warray-bounds).
    printer_.marker_levels.assign(1, level);
    printer_.marker_message = message;
    printer_.marker_names = names;
    printer_.marker_change_time = 1790000000;
  }

  QueueStatus Read() {
    notes_.clear();
    return ReadQueueStatus(printer_, ppd_, &notes_);
  }

  PrinterAttributes printer_;
  PpdFacts ppd_;
  std::vector<std::string> notes_;
};

TEST_F(QueueReaderTest, GoodReading) {
  Reported(34, "Ink Ribbon = 120 / 350", std::string("InkSheetType: ") + kSheet);
  printer_.reasons = {"none"};
  QueueStatus s = Read();
  EXPECT_EQ("booth", s.queue);
  EXPECT_EQ("usb", s.scheme);
  EXPECT_EQ(QueueStatus::State::Idle, s.state);
  EXPECT_TRUE(s.enabled);
  EXPECT_TRUE(s.reasons.empty());
  EXPECT_EQ(120, s.prints_remaining.value_or(-9));
  EXPECT_EQ(350, s.prints_total.value_or(-9));
  EXPECT_EQ(34, s.level_percent.value_or(-9));
  EXPECT_EQ(kSheet, s.ink_sheet.value_or("?"));
  EXPECT_EQ(1790000000, s.levels_read_at.value_or(0));
  EXPECT_TRUE(notes_.empty());
}

TEST_F(QueueReaderTest, NeverRead) {
  QueueStatus s = Read();
  EXPECT_FALSE(s.prints_remaining || s.prints_total || s.level_percent ||
               s.ink_sheet || s.levels_read_at || s.marker_level);
  EXPECT_TRUE(notes_.empty());
}

TEST_F(QueueReaderTest, UnreachableLeavesEverythingUnknownButTheTime) {
  Reported(-2, " ", "InkSheetType: 00");
  printer_.reasons = {"com.quillaroth-error0023"};
  QueueStatus s = Read();
  EXPECT_FALSE(s.prints_remaining || s.prints_total || s.level_percent ||
               s.ink_sheet);
  EXPECT_EQ(-2, s.marker_level.value_or(0));
  EXPECT_EQ(1790000000, s.levels_read_at.value_or(0));
  EXPECT_EQ((std::vector<Reason>{{"com.quillaroth-error0023", ""}}),
            s.reasons);
  EXPECT_TRUE(notes_.empty());
}

TEST_F(QueueReaderTest, PrinterDidNotSayKeepsTheSheet) {
  Reported(-1, " ", std::string("InkSheetType: ") + kSheet);
  QueueStatus s = Read();
  EXPECT_FALSE(s.prints_remaining || s.level_percent);
  EXPECT_EQ(kSheet, s.ink_sheet.value_or("?"));
  EXPECT_TRUE(notes_.empty());
}

TEST_F(QueueReaderTest, ReasonsGetTheirTextsAndStates) {
  printer_.reasons = {"com.quillaroth-error0001", "paused"};
  printer_.state = IPP_PSTATE_STOPPED;
  QueueStatus s = Read();
  EXPECT_EQ(QueueStatus::State::Stopped, s.state);
  EXPECT_EQ((std::vector<Reason>{
                {"com.quillaroth-error0001",
                 "Printer error 0001 - see the printer's panel"},
                {"paused", ""}}),
            s.reasons);
}

TEST_F(QueueReaderTest, MalformedValuesAreUnknownWithNotes) {
  Reported(50, "Ink Ribbon = lots", "Sheet: glossy");
  QueueStatus s = Read();
  EXPECT_EQ(50, s.level_percent.value_or(-9));
  EXPECT_FALSE(s.prints_remaining || s.prints_total || s.ink_sheet);
  EXPECT_EQ((std::vector<std::string>{
                "booth: marker-names \"Sheet: glossy\" names no ink sheet; "
                "shown as unknown",
                "booth: marker-message \"Ink Ribbon = lots\" is not \"Ink "
                "Ribbon = REMAINING / TOTAL\"; prints shown as unknown"}),
            notes_);
}

TEST_F(QueueReaderTest, OddLevelAndTrailingTextAreMalformed) {
  Reported(-7, "Ink Ribbon = 1 / 2", "InkSheetType: 8f");
  EXPECT_FALSE(Read().level_percent);
  EXPECT_EQ((std::vector<std::string>{
                "booth: marker-levels -7 is no level; shown as unknown"}),
            notes_);
  Reported(1, "Ink Ribbon = 1 / 200 extra", " ");
  EXPECT_FALSE(Read().prints_remaining);
  EXPECT_EQ(1u, notes_.size());
  Reported(1, "Ink Ribbon = 1 / 0", " ");
  EXPECT_FALSE(Read().prints_total);
}

TEST_F(QueueReaderTest, SchemeOfAnEmptyOrOddUri) {
  printer_.device_uri = "";
  EXPECT_EQ("", Read().scheme);
  printer_.device_uri = "file:/dev/null";
  EXPECT_EQ("file", Read().scheme);
}

}  // namespace
