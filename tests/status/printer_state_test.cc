// PrinterState: layout, named constructors, comparisons and log text.

#include "status/printer_state.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>

namespace {

// The record is a 32-bit type tag followed by the three code bytes.
static_assert(
    std::is_same_v<std::underlying_type_t<PrinterState::Type>, int32_t>);
static_assert(static_cast<int32_t>(PrinterState::Type::Unavailable) == 0);
static_assert(static_cast<int32_t>(PrinterState::Type::Available) == 1);
static_assert(std::is_same_v<decltype(PrinterState::type), PrinterState::Type>);
static_assert(
    std::is_same_v<decltype(PrinterState::error_code), unsigned char[3]>);
static_assert(std::is_standard_layout_v<PrinterState>);
static_assert(std::is_trivially_copyable_v<PrinterState>);
static_assert(offsetof(PrinterState, type) == 0);
static_assert(offsetof(PrinterState, error_code) == 4);
static_assert(sizeof(PrinterState) == 8);

const unsigned char kZero[3] = {0x00, 0x00, 0x00};
const unsigned char kCode060202[3] = {0x06, 0x02, 0x02};
const unsigned char kCode0a0505[3] = {0x0a, 0x05, 0x05};
const unsigned char kCode0a0507[3] = {0x0a, 0x05, 0x07};
const unsigned char kCodeFeed01[3] = {0xfe, 0xed, 0x01};

// The record's fields in order, to compare whole records.
std::tuple<PrinterState::Type, int, int, int> Fields(
    const PrinterState& state) {
  return {state.type, state.error_code[0], state.error_code[1],
          state.error_code[2]};
}

// A state whose tag is neither Unavailable nor Available.
PrinterState TypeTwo() {
  return PrinterState(static_cast<PrinterState::Type>(2));
}

// Checks both comparison overloads against their negations.
void ExpectStateEquality(const PrinterState& a, const PrinterState& b,
                         bool equal) {
  EXPECT_EQ(equal, a == b);
  EXPECT_EQ(!equal, a != b);
}

// Checks the code comparison and its negation.
void ExpectCodeEquality(const PrinterState& a, const unsigned char (*code)[3],
                        bool equal) {
  EXPECT_EQ(equal, a == code);
  EXPECT_EQ(!equal, a != code);
}

// The whole trace, written out: the readable example of this file.
// The log text of each kind of state, one a line: unavailable, good, a
// printer's error code, the system's own supply-low code, and a state whose
// tag is neither 0 nor 1.
TEST(PrinterStateTest, EveryKindOfStateGoldenText) {
  const PrinterState states[] = {
      PrinterState::Unavailable(), PrinterState::Good(),
      PrinterState::Error(&kCode060202), PrinterState::InternalSupplyLow(),
      TypeTwo()};
  std::string text;
  for (const PrinterState& state : states) text += state.to_string() + "\n";
  EXPECT_EQ(
      "UNAVAILABLE\n"
      "GOOD\n"
      "0x06,0x02,0x02\n"
      "0xfe,0xed,0x01\n"
      "UNKNOWN\n",
      text);
}

TEST(PrinterStateTest, UnavailableHasTypeZero) {
  EXPECT_EQ(PrinterState::Type::Unavailable, PrinterState::Unavailable().type);
}

TEST(PrinterStateTest, GoodIsAvailableWithZeroCode) {
  const PrinterState good = PrinterState::Good();
  EXPECT_EQ(std::make_tuple(PrinterState::Type::Available, 0x00, 0x00, 0x00),
            Fields(good));
}

TEST(PrinterStateTest, ErrorCopiesTheCodeBytesInOrder) {
  unsigned char code[3] = {0xab, 0xcd, 0xef};
  const PrinterState state = PrinterState::Error(&code);
  code[0] = code[1] = code[2] = 0;
  EXPECT_EQ(std::make_tuple(PrinterState::Type::Available, 0xab, 0xcd, 0xef),
            Fields(state));
}

TEST(PrinterStateTest, InternalSupplyLowIsFeEd01) {
  const PrinterState state = PrinterState::InternalSupplyLow();
  EXPECT_EQ(std::make_tuple(PrinterState::Type::Available, 0xfe, 0xed, 0x01),
            Fields(state));
}

TEST(PrinterStateTest, PlainConstructorsSetTypeAndCode) {
  EXPECT_EQ(PrinterState::Type::Available,
            PrinterState(PrinterState::Type::Available).type);
  const PrinterState state(PrinterState::Type::Available, &kCode0a0507);
  EXPECT_EQ(std::make_tuple(PrinterState::Type::Available, 0x0a, 0x05, 0x07),
            Fields(state));
  EXPECT_EQ(2, static_cast<int32_t>(TypeTwo().type));
}

TEST(PrinterStateTest, ErrorRendersAsHexBytes) {
  EXPECT_EQ("0x06,0x02,0x02", PrinterState::Error(&kCode060202).to_string());
}

TEST(PrinterStateTest, InternalSupplyLowRendersAsHexBytes) {
  EXPECT_EQ("0xfe,0xed,0x01", PrinterState::InternalSupplyLow().to_string());
}

TEST(PrinterStateTest, HexTextIsLowerCaseAndFourteenCharacters) {
  const unsigned char code[3] = {0xab, 0xcd, 0xef};
  EXPECT_EQ("0xab,0xcd,0xef", PrinterState::Error(&code).to_string());
  const unsigned char low[3] = {0x00, 0x00, 0x01};
  EXPECT_EQ("0x00,0x00,0x01", PrinterState::Error(&low).to_string());
  const unsigned char high[3] = {0xff, 0x80, 0x00};
  EXPECT_EQ("0xff,0x80,0x00", PrinterState::Error(&high).to_string());
}

TEST(PrinterStateTest, ErrorOfZeroCodeRendersAsGoodAndEqualsGood) {
  const PrinterState state = PrinterState::Error(&kZero);
  EXPECT_EQ("GOOD", state.to_string());
  ExpectStateEquality(state, PrinterState::Good(), true);
  ExpectStateEquality(PrinterState::Good(), state, true);
}

TEST(PrinterStateTest, GoodRendersAsGood) {
  EXPECT_EQ("GOOD", PrinterState::Good().to_string());
}

TEST(PrinterStateTest, UnavailableRendersAsUnavailable) {
  EXPECT_EQ("UNAVAILABLE", PrinterState::Unavailable().to_string());
}

TEST(PrinterStateTest, UnavailableEqualsUnavailableOnly) {
  ExpectStateEquality(PrinterState::Unavailable(), PrinterState::Unavailable(),
                      true);
  ExpectStateEquality(PrinterState::Unavailable(), PrinterState::Good(), false);
  ExpectStateEquality(PrinterState::Good(), PrinterState::Unavailable(), false);
  ExpectCodeEquality(PrinterState::Unavailable(), &kZero, false);
}

TEST(PrinterStateTest, UnavailableStatesAreEqualWhateverTheirCodeBytes) {
  const PrinterState a(PrinterState::Type::Unavailable, &kCode060202);
  const PrinterState b(PrinterState::Type::Unavailable, &kCodeFeed01);
  ExpectStateEquality(a, b, true);
  ExpectStateEquality(a, PrinterState::Unavailable(), true);
  ExpectCodeEquality(a, &kCode060202, false);
  EXPECT_EQ("UNAVAILABLE", a.to_string());
}

TEST(PrinterStateTest, GoodEqualsTheZeroCode) {
  ExpectCodeEquality(PrinterState::Good(), &kZero, true);
  ExpectCodeEquality(PrinterState::Good(), &kCode060202, false);
}

TEST(PrinterStateTest, EveryCodeByteCounts) {
  const PrinterState state = PrinterState::Error(&kCode0a0505);
  ExpectCodeEquality(state, &kCode0a0505, true);
  ExpectCodeEquality(state, &kCode0a0507, false);
  const unsigned char first[3] = {0x0b, 0x05, 0x05};
  const unsigned char second[3] = {0x0a, 0x04, 0x05};
  ExpectCodeEquality(state, &first, false);
  ExpectCodeEquality(state, &second, false);
  ExpectStateEquality(state, PrinterState::Error(&kCode0a0507), false);
  ExpectStateEquality(state, PrinterState::Error(&first), false);
  ExpectStateEquality(state, PrinterState::Error(&second), false);
  ExpectStateEquality(state, PrinterState::Error(&kCode0a0505), true);
}

TEST(PrinterStateTest, CodeBytesCompareAsUnsigned) {
  const PrinterState state = PrinterState::InternalSupplyLow();
  ExpectCodeEquality(state, &kCodeFeed01, true);
  const unsigned char other[3] = {0xfe, 0xed, 0x81};
  ExpectCodeEquality(state, &other, false);
}

TEST(PrinterStateTest, CopiesCompareEqual) {
  const PrinterState state = PrinterState::Error(&kCode060202);
  const PrinterState copy = state;
  ExpectStateEquality(copy, state, true);
  EXPECT_EQ("0x06,0x02,0x02", copy.to_string());
}

TEST(PrinterStateTest, TypeTwoRendersAsUnknown) {
  EXPECT_EQ("UNKNOWN", TypeTwo().to_string());
  const PrinterState with_code(static_cast<PrinterState::Type>(2), &kZero);
  EXPECT_EQ("UNKNOWN", with_code.to_string());
}

TEST(PrinterStateTest, TypeTwoEqualsNothingNotEvenItself) {
  const PrinterState state(static_cast<PrinterState::Type>(2), &kZero);
  ExpectStateEquality(state, state, false);
  const PrinterState copy = state;
  ExpectStateEquality(state, copy, false);
  ExpectStateEquality(state, PrinterState::Unavailable(), false);
  ExpectStateEquality(PrinterState::Unavailable(), state, false);
  ExpectStateEquality(state, PrinterState::Good(), false);
  ExpectStateEquality(PrinterState::Good(), state, false);
  ExpectStateEquality(TypeTwo(), TypeTwo(), false);
}

TEST(PrinterStateTest, TypeTwoEqualsNoCode) {
  const PrinterState state(static_cast<PrinterState::Type>(2), &kCode060202);
  ExpectCodeEquality(state, &kCode060202, false);
  ExpectCodeEquality(state, &kZero, false);
  const PrinterState zero(static_cast<PrinterState::Type>(2), &kZero);
  ExpectCodeEquality(zero, &kZero, false);
}

TEST(PrinterStateTest, NotEqualIsTheNegationForEveryPair) {
  const PrinterState states[] = {
      PrinterState::Unavailable(),
      PrinterState::Good(),
      PrinterState::Error(&kCode060202),
      PrinterState::Error(&kCode0a0505),
      PrinterState::InternalSupplyLow(),
      PrinterState(static_cast<PrinterState::Type>(2), &kZero),
      PrinterState(static_cast<PrinterState::Type>(-1), &kCode060202),
  };
  const unsigned char(*codes[])[3] = {&kZero, &kCode060202, &kCode0a0505,
                                      &kCode0a0507, &kCodeFeed01};
  for (const PrinterState& a : states) {
    for (const PrinterState& b : states) EXPECT_NE(a == b, a != b);
    for (const unsigned char(*code)[3] : codes) EXPECT_NE(a == code, a != code);
  }
}

TEST(PrinterStateTest, AnyOtherTypeValueBehavesLikeTypeTwo) {
  const PrinterState state(static_cast<PrinterState::Type>(-1), &kCode060202);
  EXPECT_EQ("UNKNOWN", state.to_string());
  ExpectStateEquality(state, state, false);
  ExpectCodeEquality(state, &kCode060202, false);
}

}  // namespace
