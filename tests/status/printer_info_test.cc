// PrinterInfo: parsing of the printer information reply and its queries.

#include "status/printer_info.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "status/printer_levels.h"
#include "status/printer_state.h"
#include "tests/support/sim_printer.h"

namespace {

// The record's own field order: tag, power, mechanism, memory, error code,
// counts, ink-sheet type.
static_assert(
    std::is_same_v<std::underlying_type_t<PrinterInfo::Type>, int32_t>);
static_assert(static_cast<int32_t>(PrinterInfo::Type::Unavailable) == 0);
static_assert(static_cast<int32_t>(PrinterInfo::Type::Available) == 1);
static_assert(std::is_same_v<decltype(PrinterInfo::type), PrinterInfo::Type>);
static_assert(std::is_same_v<decltype(PrinterInfo::power_state), uint8_t>);
static_assert(std::is_same_v<decltype(PrinterInfo::mech_state), uint8_t[2]>);
static_assert(std::is_same_v<decltype(PrinterInfo::memory_state), uint8_t>);
static_assert(
    std::is_same_v<decltype(PrinterInfo::error_info), unsigned char[3]>);
static_assert(std::is_same_v<decltype(PrinterInfo::ribbon_total), uint16_t>);
static_assert(
    std::is_same_v<decltype(PrinterInfo::ribbon_remaining), uint16_t>);
static_assert(
    std::is_same_v<decltype(PrinterInfo::ink_sheet_type), unsigned char[2]>);
static_assert(std::is_standard_layout_v<PrinterInfo>);
static_assert(std::is_trivially_copyable_v<PrinterInfo>);
static_assert(offsetof(PrinterInfo, type) == 0);
static_assert(offsetof(PrinterInfo, power_state) == 4);
static_assert(offsetof(PrinterInfo, mech_state) == 5);
static_assert(offsetof(PrinterInfo, memory_state) == 7);
static_assert(offsetof(PrinterInfo, error_info) == 8);
static_assert(offsetof(PrinterInfo, ribbon_total) == 12);
static_assert(offsetof(PrinterInfo, ribbon_remaining) == 14);
static_assert(offsetof(PrinterInfo, ink_sheet_type) == 16);
static_assert(sizeof(PrinterInfo) == 20);

// The bytes of the reply that the record reads.
const size_t kReadOffsets[] = {4,   5,   128, 129, 131, 132, 133,
                               145, 146, 148, 149, 150, 151};

// A reply of the minimal length, every byte zero.
std::vector<char> ZeroReply(size_t size = 192) {
  return std::vector<char>(size, '\0');
}

// A reply of the minimal length, zero but for the given bytes.
std::vector<char> ReplyWith(
    std::initializer_list<std::pair<size_t, unsigned char>> bytes) {
  std::vector<char> reply = ZeroReply();
  for (const auto& [offset, value] : bytes)
    reply[offset] = static_cast<char>(value);
  return reply;
}

// The ribbon counts (total, remaining) parsed from their four bytes.
std::pair<int, int> CountsOf(unsigned char total_0, unsigned char total_1,
                             unsigned char remaining_0,
                             unsigned char remaining_1) {
  std::vector<char> reply = ReplyWith(
      {{148, total_0}, {149, total_1}, {150, remaining_0}, {151, remaining_1}});
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  return {info.ribbon_total, info.ribbon_remaining};
}

// A record of the type holding the fields of the printer's reply.
PrinterInfo Record(PrinterInfo::Type type, const SimPrinter& printer) {
  const std::string reply = printer.Reply(false);
  PrinterInfo info = PrinterInfo::Parse(reply.data());
  info.type = type;
  return info;
}

// Sets one reply byte from its unsigned value.
void Set(std::vector<char>& reply, size_t offset, unsigned char value) {
  reply[offset] = static_cast<char>(value);
}

// True when the offset is one that the record reads.
bool IsReadOffset(size_t offset) {
  for (size_t read : kReadOffsets)
    if (read == offset) return true;
  return false;
}

// Compares every field of two records.
void ExpectSameFields(const PrinterInfo& a, const PrinterInfo& b) {
  EXPECT_EQ(a.type, b.type);
  EXPECT_EQ(a.power_state, b.power_state);
  EXPECT_EQ(a.mech_state[0], b.mech_state[0]);
  EXPECT_EQ(a.mech_state[1], b.mech_state[1]);
  EXPECT_EQ(a.memory_state, b.memory_state);
  EXPECT_EQ(a.error_info[0], b.error_info[0]);
  EXPECT_EQ(a.error_info[1], b.error_info[1]);
  EXPECT_EQ(a.error_info[2], b.error_info[2]);
  EXPECT_EQ(a.ribbon_total, b.ribbon_total);
  EXPECT_EQ(a.ribbon_remaining, b.ribbon_remaining);
  EXPECT_EQ(a.ink_sheet_type[0], b.ink_sheet_type[0]);
  EXPECT_EQ(a.ink_sheet_type[1], b.ink_sheet_type[1]);
}

// Compares every field of a levels record with the expected values.
void ExpectLevels(const PrinterLevels& levels, PrinterLevels::Type type,
                  uint16_t total, uint16_t remaining, unsigned char sheet_0,
                  unsigned char sheet_1) {
  EXPECT_EQ(type, levels.type);
  EXPECT_EQ(total, levels.ribbon_total);
  EXPECT_EQ(remaining, levels.ribbon_remaining);
  EXPECT_EQ(sheet_0, levels.ink_sheet_type[0]);
  EXPECT_EQ(sheet_1, levels.ink_sheet_type[1]);
}

TEST(PrinterInfoTest, ParseTakesEachFieldFromItsOffset) {
  const std::vector<char> reply = ReplyWith(
      {{4, 0x44}, {5, 0x55}, {128, 0x80}, {129, 0x81}, {131, 0x83},
       {132, 0x84}, {133, 0x85}, {145, 0x91}, {146, 0x92}, {148, 0x12},
       {149, 0x34}, {150, 0x56}, {151, 0x78}});
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  EXPECT_EQ(PrinterInfo::Type::Available, info.type);
  EXPECT_EQ(0x55, info.power_state);
  EXPECT_EQ(0x80, info.mech_state[0]);
  EXPECT_EQ(0x81, info.mech_state[1]);
  EXPECT_EQ(0x44, info.memory_state);
  EXPECT_EQ(0x83, info.error_info[0]);
  EXPECT_EQ(0x84, info.error_info[1]);
  EXPECT_EQ(0x85, info.error_info[2]);
  EXPECT_EQ(0x1234, info.ribbon_total);
  EXPECT_EQ(0x5678, info.ribbon_remaining);
  EXPECT_EQ(0x91, info.ink_sheet_type[0]);
  EXPECT_EQ(0x92, info.ink_sheet_type[1]);
}

TEST(PrinterInfoTest, AllZeroReply) {
  const std::vector<char> reply = ZeroReply();
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  EXPECT_TRUE(info.isAvailable());
  EXPECT_TRUE(info.isWakeUp());
  EXPECT_TRUE(info.isMechGood());
  EXPECT_TRUE(info.isMemoryFree());
  const PrinterState state = info.GetPrinterState();
  EXPECT_TRUE(state == PrinterState::InternalSupplyLow());
  EXPECT_EQ("0xfe,0xed,0x01", state.to_string());
  ExpectLevels(info.GetPrinterLevels(), PrinterLevels::Type::Available, 0, 0,
               0x00, 0x00);
  EXPECT_EQ(
      "power_state=0x00 mech_state=[0x00,0x00] memory_state=0x00 "
      "error_info=[0xfe,0xed,0x01] levels=[ink ribbon 0 / 0 "
      "ink_sheet_type=0x00.0x00]",
      info.to_string());
}

TEST(PrinterInfoTest, RemainingOneAndZeroCodeIsGood) {
  std::vector<char> reply = ReplyWith({{150, 0x00}, {151, 0x01}});
  const PrinterState state = PrinterInfo::Parse(reply.data()).GetPrinterState();
  EXPECT_TRUE(state == PrinterState::Good());
  EXPECT_EQ("GOOD", state.to_string());
}

TEST(PrinterInfoTest, RemainingOneAndErrorCodeIsThatError) {
  std::vector<char> reply =
      ReplyWith({{151, 0x01}, {131, 0x06}, {132, 0x02}, {133, 0x02}});
  const unsigned char code[3] = {0x06, 0x02, 0x02};
  const PrinterState state = PrinterInfo::Parse(reply.data()).GetPrinterState();
  EXPECT_TRUE(state == PrinterState::Error(&code));
  EXPECT_TRUE(state == &code);
  EXPECT_EQ("0x06,0x02,0x02", state.to_string());
}

TEST(PrinterInfoTest, EmptyRibbonOutranksTheErrorCode) {
  std::vector<char> reply = ReplyWith(
      {{131, 0x06}, {132, 0x02}, {133, 0x02}, {148, 0x01}, {149, 0x5E}});
  const PrinterState state = PrinterInfo::Parse(reply.data()).GetPrinterState();
  EXPECT_TRUE(state == PrinterState::InternalSupplyLow());
}

TEST(PrinterInfoTest, RemainingCountUsesBothBytes) {
  std::vector<char> reply = ReplyWith({{150, 0x01}, {151, 0x00}});
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  EXPECT_EQ(256, info.ribbon_remaining);
  EXPECT_TRUE(info.GetPrinterState() == PrinterState::Good());
}

TEST(PrinterInfoTest, CountsAreBigEndian) {
  EXPECT_EQ(std::make_pair(350, 123), CountsOf(0x01, 0x5E, 0x00, 0x7B));
  EXPECT_EQ(std::make_pair(350, 65535), CountsOf(0x01, 0x5E, 0xFF, 0xFF));
}

TEST(PrinterInfoTest, HighBytesGiveLargeUnsignedCounts) {
  EXPECT_EQ(std::make_pair(32768, 33023), CountsOf(0x80, 0x00, 0x80, 0xFF));
  EXPECT_EQ(std::make_pair(65534, 33023), CountsOf(0xFF, 0xFE, 0x80, 0xFF));
}

TEST(PrinterInfoTest, PowerStateOneIsNotAwakeButAvailable) {
  std::vector<char> reply = ReplyWith({{5, 0x01}});
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  EXPECT_FALSE(info.isWakeUp());
  EXPECT_TRUE(info.isAvailable());
  Set(reply, 5, 0x80);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isWakeUp());
}

TEST(PrinterInfoTest, MechanismStates) {
  std::vector<char> reply = ReplyWith({{128, 0x20}, {129, 0x00}});
  EXPECT_TRUE(PrinterInfo::Parse(reply.data()).isMechGood());
  Set(reply, 129, 0x01);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isMechGood());
  Set(reply, 128, 0x10);
  Set(reply, 129, 0x00);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isMechGood());
  Set(reply, 128, 0x00);
  Set(reply, 129, 0x20);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isMechGood());
  Set(reply, 128, 0xA0);
  Set(reply, 129, 0x00);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isMechGood());
}

TEST(PrinterInfoTest, MemoryStates) {
  std::vector<char> reply = ReplyWith({{4, 0xFE}});
  EXPECT_TRUE(PrinterInfo::Parse(reply.data()).isMemoryFree());
  Set(reply, 4, 0xFF);
  EXPECT_FALSE(PrinterInfo::Parse(reply.data()).isMemoryFree());
  Set(reply, 4, 0x7F);
  EXPECT_TRUE(PrinterInfo::Parse(reply.data()).isMemoryFree());
}

TEST(PrinterInfoTest, UnreadBytesChangeNothing) {
  const std::vector<char> zero = ZeroReply(200);
  std::vector<char> noisy = ZeroReply(200);
  for (size_t i = 0; i < noisy.size(); ++i)
    if (!IsReadOffset(i)) Set(noisy, i, 0xFF);
  const PrinterInfo a = PrinterInfo::Parse(zero.data());
  const PrinterInfo b = PrinterInfo::Parse(noisy.data());
  ExpectSameFields(a, b);
  EXPECT_EQ(a.to_string(), b.to_string());
}

TEST(PrinterInfoTest, RecordKeepsNoPointerIntoTheReply) {
  std::vector<char> reply = ReplyWith({{151, 0x7B}});
  const PrinterInfo info = PrinterInfo::Parse(reply.data());
  for (char& c : reply) c = static_cast<char>(0xFF);
  reply.clear();
  reply.shrink_to_fit();
  EXPECT_EQ(123, info.ribbon_remaining);
  EXPECT_EQ(0x00, info.power_state);
}

TEST(PrinterInfoTest, GetPrinterLevelsCopiesCountsAndType) {
  std::vector<char> reply = ReplyWith(
      {{145, 0x8F}, {146, 0x10}, {148, 0x01}, {149, 0x5E}, {151, 0x7B}});
  ExpectLevels(PrinterInfo::Parse(reply.data()).GetPrinterLevels(),
               PrinterLevels::Type::Available, 350, 123, 0x8F, 0x10);
}

// The whole trace, written out: the readable example of this file.
TEST(PrinterInfoTest, GoodReplyGoldenText) {
  std::vector<char> reply = ReplyWith({{145, 0x84},
                                       {146, 0x10},
                                       {148, 0x01},
                                       {149, 0x5E},
                                       {150, 0x00},
                                       {151, 0x7B}});
  EXPECT_EQ(
      "power_state=0x00 mech_state=[0x00,0x00] memory_state=0x00 "
      "error_info=[GOOD] levels=[ink ribbon 123 / 350 "
      "ink_sheet_type=0x84.0x10]",
      PrinterInfo::Parse(reply.data()).to_string());
}

TEST(PrinterInfoTest, ToStringOfAnEmptyRibbonShowsTheSupplyLowCode) {
  std::vector<char> reply =
      ReplyWith({{145, 0x84}, {146, 0x10}, {148, 0x01}, {149, 0x5E}});
  EXPECT_EQ(
      "power_state=0x00 mech_state=[0x00,0x00] memory_state=0x00 "
      "error_info=[0xfe,0xed,0x01] levels=[ink ribbon 0 / 350 "
      "ink_sheet_type=0x84.0x10]",
      PrinterInfo::Parse(reply.data()).to_string());
}

TEST(PrinterInfoTest, ToStringWithEveryFieldSet) {
  std::vector<char> reply = ReplyWith({{4, 0xFE},
                                       {5, 0x01},
                                       {128, 0x20},
                                       {129, 0xAB},
                                       {131, 0x0A},
                                       {132, 0x05},
                                       {133, 0x07},
                                       {145, 0x8F},
                                       {146, 0x00},
                                       {148, 0xFF},
                                       {149, 0xFF},
                                       {150, 0x80},
                                       {151, 0x01}});
  EXPECT_EQ(
      "power_state=0x01 mech_state=[0x20,0xab] memory_state=0xfe "
      "error_info=[0x0a,0x05,0x07] levels=[ink ribbon 32769 / 65535 "
      "ink_sheet_type=0x8f.0x00]",
      PrinterInfo::Parse(reply.data()).to_string());
}

TEST(PrinterInfoTest, UnavailableAnswersEveryQuestion) {
  const PrinterInfo info = PrinterInfo::Unavailable();
  EXPECT_EQ(PrinterInfo::Type::Unavailable, info.type);
  EXPECT_FALSE(info.isAvailable());
  EXPECT_FALSE(info.isWakeUp());
  EXPECT_FALSE(info.isMechGood());
  EXPECT_FALSE(info.isMemoryFree());
  EXPECT_EQ("UNAVAILABLE", info.to_string());
  const PrinterState state = info.GetPrinterState();
  EXPECT_EQ(PrinterState::Type::Unavailable, state.type);
  EXPECT_TRUE(state == PrinterState::Unavailable());
  ExpectLevels(info.GetPrinterLevels(), PrinterLevels::Type::Unavailable, 0, 0,
               0x00, 0x00);
}

TEST(PrinterInfoTest, TypeZeroIgnoresItsFields) {
  const PrinterInfo info = Record(PrinterInfo::Type::Unavailable, SimPrinter());
  EXPECT_FALSE(info.isAvailable());
  EXPECT_FALSE(info.isWakeUp());
  EXPECT_FALSE(info.isMechGood());
  EXPECT_FALSE(info.isMemoryFree());
  EXPECT_EQ(PrinterState::Type::Unavailable, info.GetPrinterState().type);
  ExpectLevels(info.GetPrinterLevels(), PrinterLevels::Type::Unavailable, 0, 0,
               0x00, 0x00);
  EXPECT_EQ("UNAVAILABLE", info.to_string());
}

TEST(PrinterInfoTest, PlainConstructorSetsTheType) {
  EXPECT_EQ(PrinterInfo::Type::Available,
            PrinterInfo(PrinterInfo::Type::Available).type);
  EXPECT_EQ(PrinterInfo::Type::Unavailable,
            PrinterInfo(PrinterInfo::Type::Unavailable).type);
}

TEST(PrinterInfoTest, TypeTwoAnswersFromTheFields) {
  SimPrinter printer = SimPrinter().Mech(0x2000).Error(0x060202);
  const PrinterInfo info = Record(static_cast<PrinterInfo::Type>(2), printer);
  EXPECT_FALSE(info.isAvailable());
  EXPECT_TRUE(info.isWakeUp());
  EXPECT_TRUE(info.isMechGood());
  EXPECT_TRUE(info.isMemoryFree());
  const unsigned char code[3] = {0x06, 0x02, 0x02};
  const PrinterState state = info.GetPrinterState();
  EXPECT_EQ(PrinterState::Type::Available, state.type);
  EXPECT_TRUE(state == PrinterState::Error(&code));
  ExpectLevels(info.GetPrinterLevels(), PrinterLevels::Type::Available, 350,
               123, 0x84, 0x10);
  EXPECT_EQ("UNKNOWN", info.to_string());
}

TEST(PrinterInfoTest, TypeTwoWithAnEmptyRibbonIsSupplyLow) {
  SimPrinter printer =
      SimPrinter().Power(0x01).Mech(0x1000).Memory(0xFF).Remaining(0).Sheet(
          0x0000);
  const PrinterInfo info = Record(static_cast<PrinterInfo::Type>(2), printer);
  EXPECT_FALSE(info.isWakeUp());
  EXPECT_FALSE(info.isMechGood());
  EXPECT_FALSE(info.isMemoryFree());
  EXPECT_TRUE(info.GetPrinterState() == PrinterState::InternalSupplyLow());
  EXPECT_EQ("UNKNOWN", info.to_string());
}

}  // namespace
