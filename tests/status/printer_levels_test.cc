// PrinterLevels: layout, named constructors, ink-sheet names and log text.

#include "status/printer_levels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>

#include "tests/support/records.h"

namespace {

// A 32-bit type tag, the two 16-bit counts, then the two type bytes.
static_assert(
    std::is_same_v<std::underlying_type_t<PrinterLevels::Type>, int32_t>);
static_assert(static_cast<int32_t>(PrinterLevels::Type::Unavailable) == 0);
static_assert(static_cast<int32_t>(PrinterLevels::Type::Available) == 1);
static_assert(
    std::is_same_v<decltype(PrinterLevels::type), PrinterLevels::Type>);
static_assert(std::is_same_v<decltype(PrinterLevels::ribbon_total), uint16_t>);
static_assert(
    std::is_same_v<decltype(PrinterLevels::ribbon_remaining), uint16_t>);
static_assert(
    std::is_same_v<decltype(PrinterLevels::ink_sheet_type), unsigned char[2]>);
static_assert(std::is_standard_layout_v<PrinterLevels>);
static_assert(std::is_trivially_copyable_v<PrinterLevels>);
static_assert(offsetof(PrinterLevels, type) == 0);
static_assert(offsetof(PrinterLevels, ribbon_total) == 4);
static_assert(offsetof(PrinterLevels, ribbon_remaining) == 6);
static_assert(offsetof(PrinterLevels, ink_sheet_type) == 8);
static_assert(sizeof(PrinterLevels) == 12);

// The record's fields in order, to compare whole records.
std::tuple<PrinterLevels::Type, int, int, int, int> Fields(
    const PrinterLevels& levels) {
  return {levels.type, levels.ribbon_total, levels.ribbon_remaining,
          levels.ink_sheet_type[0], levels.ink_sheet_type[1]};
}

// The same from the expected values.
std::tuple<PrinterLevels::Type, int, int, int, int> Fields(
    PrinterLevels::Type type, int total, int remaining, int sheet_0,
    int sheet_1) {
  return {type, total, remaining, sheet_0, sheet_1};
}

// The inch mark of the media names: U+2033 DOUBLE PRIME in UTF-8.
#define DOUBLE_PRIME "\xE2\x80\xB3"

// The media name of a record filled with the two type bytes.
std::string NameOf(unsigned char byte_0, unsigned char byte_1) {
  return PrinterLevels::Fill(350, 123, byte_0, byte_1).InkSheetTypeName();
}

TEST(PrinterLevelsTest, UnavailableHasEveryFieldZero) {
  const PrinterLevels levels = PrinterLevels::Unavailable();
  EXPECT_EQ(Fields(PrinterLevels::Type::Unavailable, 0, 0, 0, 0),
            Fields(levels));
}

TEST(PrinterLevelsTest, UnavailableIsNotAvailable) {
  const PrinterLevels levels = PrinterLevels::Unavailable();
  EXPECT_FALSE(levels.isAvailable());
  EXPECT_EQ("UNAVAILABLE", levels.to_string());
  EXPECT_EQ("00", levels.InkSheetTypeName());
}

TEST(PrinterLevelsTest, PlainConstructorZeroesTheFields) {
  const PrinterLevels levels(PrinterLevels::Type::Available);
  EXPECT_EQ(Fields(PrinterLevels::Type::Available, 0, 0, 0, 0), Fields(levels));
  EXPECT_TRUE(levels.isAvailable());
  EXPECT_EQ("ink ribbon 0 / 0 ink_sheet_type=0x00.0x00", levels.to_string());
}

TEST(PrinterLevelsTest, FillTakesTheTotalFirst) {
  const PrinterLevels levels = PrinterLevels::Fill(350, 123, 0x84, 0x10);
  EXPECT_EQ(Fields(PrinterLevels::Type::Available, 350, 123, 0x84, 0x10),
            Fields(levels));
}

// The whole trace, written out: the readable example of this file.
TEST(PrinterLevelsTest, FilledRecordGoldenText) {
  const PrinterLevels levels = PrinterLevels::Fill(350, 123, 0x84, 0x10);
  EXPECT_TRUE(levels.isAvailable());
  EXPECT_EQ("ink ribbon 123 / 350 ink_sheet_type=0x84.0x10",
            levels.to_string());
  EXPECT_EQ("PV-R31A(GX) 13x18(5x7" DOUBLE_PRIME ")",
            levels.InkSheetTypeName());
}

TEST(PrinterLevelsTest, LargestCountsPrintUnsigned) {
  const PrinterLevels levels = PrinterLevels::Fill(0xFFFF, 0xFFFF, 0xFF, 0xFF);
  EXPECT_EQ("ink ribbon 65535 / 65535 ink_sheet_type=0xff.0xff",
            levels.to_string());
  EXPECT_EQ("ff", levels.InkSheetTypeName());
}

TEST(PrinterLevelsTest, CountsWithTheHighBitPrintUnsigned) {
  EXPECT_EQ("ink ribbon 32768 / 40000 ink_sheet_type=0xab.0xcd",
            PrinterLevels::Fill(40000, 32768, 0xab, 0xcd).to_string());
}

TEST(PrinterLevelsTest, ZeroCountsAreKeptAsTheyCome) {
  const PrinterLevels levels = PrinterLevels::Fill(0, 0, 0x00, 0x00);
  EXPECT_TRUE(levels.isAvailable());
  EXPECT_EQ("ink ribbon 0 / 0 ink_sheet_type=0x00.0x00", levels.to_string());
}

TEST(PrinterLevelsTest, KnownInkSheetNames) {
  EXPECT_EQ("PV-R31A 13x18(5x7" DOUBLE_PRIME ")", NameOf(0x84, 0x00));
  EXPECT_EQ("PV-R31A(GX) 13x18(5x7" DOUBLE_PRIME ")", NameOf(0x84, 0x10));
  EXPECT_EQ("PV-R32A 15x20(6x8" DOUBLE_PRIME ")", NameOf(0x8F, 0x00));
  EXPECT_EQ("PV-R32A(GX) 15x20(6x8" DOUBLE_PRIME ")", NameOf(0x8F, 0x10));
}

TEST(PrinterLevelsTest, InchMarkIsTheUtf8DoublePrime) {
  const std::string name = NameOf(0x84, 0x00);
  ASSERT_EQ(21u, name.size());
  EXPECT_EQ(0xE2, static_cast<unsigned char>(name[17]));
  EXPECT_EQ(0x80, static_cast<unsigned char>(name[18]));
  EXPECT_EQ(0xB3, static_cast<unsigned char>(name[19]));
  EXPECT_EQ(')', name[20]);
  for (unsigned char byte_0 : {0x84, 0x8F}) {
    for (unsigned char byte_1 : {0x00, 0x10}) {
      const std::string text = NameOf(byte_0, byte_1);
      size_t non_ascii = 0;
      for (char c : text)
        if (static_cast<unsigned char>(c) >= 0x80) ++non_ascii;
      EXPECT_EQ(3u, non_ascii) << text;
      EXPECT_EQ(std::string("\xE2\x80\xB3)"), text.substr(text.size() - 4));
    }
  }
}

TEST(PrinterLevelsTest, UnknownTypeGivesTheFirstByteOnly) {
  EXPECT_EQ("85", NameOf(0x85, 0x10));
  EXPECT_EQ("84", NameOf(0x84, 0x01));
  EXPECT_EQ("8f", NameOf(0x8F, 0x01));
  EXPECT_EQ("10", NameOf(0x10, 0x84));
  EXPECT_EQ("00", NameOf(0x00, 0x00));
  EXPECT_EQ("0a", NameOf(0x0A, 0x00));
  EXPECT_EQ("ff", NameOf(0xFF, 0x10));
  EXPECT_EQ("84", NameOf(0x84, 0x11));
}

TEST(PrinterLevelsTest, InkSheetNameDoesNotLookAtTheType) {
  const PrinterLevels levels =
      LevelsWith(PrinterLevels::Type::Unavailable, 0, 0, 0x8F, 0x10);
  EXPECT_EQ("PV-R32A(GX) 15x20(6x8" DOUBLE_PRIME ")",
            levels.InkSheetTypeName());
  EXPECT_EQ("UNAVAILABLE", levels.to_string());
}

TEST(PrinterLevelsTest, TypeTwoIsUnknown) {
  PrinterLevels levels =
      LevelsWith(static_cast<PrinterLevels::Type>(2), 350, 123, 0x84, 0x00);
  EXPECT_FALSE(levels.isAvailable());
  EXPECT_EQ("UNKNOWN", levels.to_string());
  EXPECT_EQ("PV-R31A 13x18(5x7" DOUBLE_PRIME ")", levels.InkSheetTypeName());
  levels.ink_sheet_type[0] = 0x12;
  EXPECT_EQ("12", levels.InkSheetTypeName());
}

TEST(PrinterLevelsTest, QueriesLeaveTheRecordAlone) {
  const PrinterLevels levels = PrinterLevels::Fill(350, 123, 0x84, 0x10);
  PrinterLevels copy = levels;
  (void)copy.isAvailable();
  (void)copy.InkSheetTypeName();
  (void)copy.to_string();
  EXPECT_EQ(Fields(levels), Fields(copy));
}

}  // namespace
