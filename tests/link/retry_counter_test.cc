// RetryCounter: counting failed wake-up tests up to the limit.

#include "link/retry_counter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <type_traits>

namespace {

// Two 32-bit counts and a flag, copied by value.
static_assert(std::is_trivially_copyable_v<RetryCounter>);
static_assert(sizeof(RetryCounter) == 12);

// The counter's fields as it lays them out: count, limit, fulfilled flag.
struct CounterFields {
  uint32_t count;
  uint32_t limit;
  bool fulfilled;
};
static_assert(sizeof(CounterFields) == sizeof(RetryCounter));

// Reads the fields of a counter through its bytes.
CounterFields FieldsOf(const RetryCounter& counter) {
  CounterFields fields;
  std::memcpy(&fields, static_cast<const void*>(&counter), sizeof(fields));
  return fields;
}

// A counter in a state that would take billions of tests to reach.
RetryCounter CounterWith(const CounterFields& fields) {
  RetryCounter counter(0);
  std::memcpy(static_cast<void*>(&counter), &fields, sizeof(fields));
  return counter;
}

TEST(RetryCounterTest, StartsRetryingAtZero) {
  const RetryCounter counter(60);
  EXPECT_FALSE(counter.isExpired());
  EXPECT_FALSE(counter.isFulfilled());
  EXPECT_EQ("retrying(0/60)", counter.to_string());
}

TEST(RetryCounterTest, FailuresCountUp) {
  RetryCounter counter(60);
  counter.Test(false);
  EXPECT_EQ("retrying(1/60)", counter.to_string());
  counter.Test(false);
  counter.Test(false);
  EXPECT_EQ("retrying(3/60)", counter.to_string());
  EXPECT_FALSE(counter.isExpired());
  EXPECT_FALSE(counter.isFulfilled());
}

// The whole trace, written out: the readable example of this file.
// The counter of a printer that wakes at the fourth query, read after each
// test: a success keeps the count.
TEST(RetryCounterTest, PrinterWakingAtTheFourthQueryGoldenText) {
  RetryCounter counter(60);
  std::string text;
  for (bool awake : {false, false, false, true}) {
    counter.Test(awake);
    text += counter.to_string() + "\n";
  }
  EXPECT_EQ(
      "retrying(1/60)\n"
      "retrying(2/60)\n"
      "retrying(3/60)\n"
      "fulfilled(3/60)\n",
      text);
  EXPECT_TRUE(counter.isFulfilled());
  EXPECT_FALSE(counter.isExpired());
}

TEST(RetryCounterTest, SuccessAtTheFirstTest) {
  RetryCounter counter(60);
  counter.Test(true);
  EXPECT_TRUE(counter.isFulfilled());
  EXPECT_EQ("fulfilled(0/60)", counter.to_string());
}

TEST(RetryCounterTest, ExpiresAtTheSixtyFirstFailureNotTheSixtieth) {
  RetryCounter counter(60);
  for (unsigned int i = 1; i <= 60; ++i) {
    counter.Test(false);
    EXPECT_FALSE(counter.isExpired()) << i;
    EXPECT_EQ("retrying(" + std::to_string(i) + "/60)", counter.to_string());
  }
  counter.Test(false);
  EXPECT_TRUE(counter.isExpired());
  EXPECT_FALSE(counter.isFulfilled());
  EXPECT_EQ("expired(61/60)", counter.to_string());
}

TEST(RetryCounterTest, ExpiredCounterNeverChanges) {
  RetryCounter counter(60);
  for (int i = 0; i < 61; ++i) counter.Test(false);
  counter.Test(false);
  EXPECT_EQ("expired(61/60)", counter.to_string());
  counter.Test(true);
  EXPECT_TRUE(counter.isExpired());
  EXPECT_FALSE(counter.isFulfilled());
  EXPECT_EQ("expired(61/60)", counter.to_string());
  counter.Test(false);
  EXPECT_EQ("expired(61/60)", counter.to_string());
}

TEST(RetryCounterTest, FailureAfterSuccessClearsTheFlagAndCounts) {
  RetryCounter counter(60);
  counter.Test(false);
  counter.Test(true);
  EXPECT_TRUE(counter.isFulfilled());
  counter.Test(false);
  EXPECT_FALSE(counter.isFulfilled());
  EXPECT_EQ("retrying(2/60)", counter.to_string());
}

TEST(RetryCounterTest, LimitZeroExpiresAtTheFirstFailure) {
  RetryCounter counter(0);
  EXPECT_FALSE(counter.isExpired());
  EXPECT_EQ("retrying(0/0)", counter.to_string());
  counter.Test(false);
  EXPECT_TRUE(counter.isExpired());
  EXPECT_EQ("expired(1/0)", counter.to_string());
  counter.Test(true);
  EXPECT_FALSE(counter.isFulfilled());
  EXPECT_EQ("expired(1/0)", counter.to_string());
}

TEST(RetryCounterTest, LimitZeroCanStillBeFulfilled) {
  RetryCounter counter(0);
  counter.Test(true);
  EXPECT_TRUE(counter.isFulfilled());
  EXPECT_FALSE(counter.isExpired());
  EXPECT_EQ("fulfilled(0/0)", counter.to_string());
}

TEST(RetryCounterTest, FulfilledWordComesFirst) {
  RetryCounter counter(1);
  counter.Test(false);
  counter.Test(true);
  EXPECT_EQ("fulfilled(1/1)", counter.to_string());
  counter.Test(false);
  EXPECT_TRUE(counter.isExpired());
  EXPECT_EQ("expired(2/1)", counter.to_string());
}

TEST(RetryCounterTest, LimitPrintsUnsigned) {
  RetryCounter counter(4294967295u);
  EXPECT_EQ("retrying(0/4294967295)", counter.to_string());
  counter.Test(false);
  EXPECT_FALSE(counter.isExpired());
  EXPECT_EQ("retrying(1/4294967295)", counter.to_string());
}

TEST(RetryCounterTest, FieldsAreCountLimitFulfilledInThisOrder) {
  RetryCounter counter(60);
  CounterFields fields = FieldsOf(counter);
  EXPECT_EQ(0u, fields.count);
  EXPECT_EQ(60u, fields.limit);
  EXPECT_FALSE(fields.fulfilled);
  counter.Test(false);
  counter.Test(false);
  counter.Test(true);
  fields = FieldsOf(counter);
  EXPECT_EQ(2u, fields.count);
  EXPECT_EQ(60u, fields.limit);
  EXPECT_TRUE(fields.fulfilled);
}

TEST(RetryCounterTest, LongestTextIsThirtyTwoCharacters) {
  const RetryCounter counter = CounterWith({4294967295u, 4294967295u, true});
  const std::string text = counter.to_string();
  EXPECT_EQ("fulfilled(4294967295/4294967295)", text);
  EXPECT_EQ(32u, text.size());
  EXPECT_EQ("expired(4294967295/4294967294)",
            CounterWith({4294967295u, 4294967294u, false}).to_string());
  EXPECT_EQ("retrying(4294967295/4294967295)",
            CounterWith({4294967295u, 4294967295u, false}).to_string());
}

TEST(RetryCounterTest, FulfilledIsReadBeforeExpired) {
  const RetryCounter counter = CounterWith({61u, 60u, true});
  EXPECT_TRUE(counter.isExpired());
  EXPECT_TRUE(counter.isFulfilled());
  EXPECT_EQ("fulfilled(61/60)", counter.to_string());
}

TEST(RetryCounterTest, ExpiryComparesUnsigned) {
  EXPECT_TRUE(CounterWith({2147483648u, 2147483647u, false}).isExpired());
  EXPECT_FALSE(CounterWith({2147483647u, 2147483648u, false}).isExpired());
  EXPECT_FALSE(CounterWith({4294967295u, 4294967295u, false}).isExpired());
}

TEST(RetryCounterTest, CopiesAreIndependent) {
  RetryCounter counter(2);
  counter.Test(false);
  RetryCounter copy = counter;
  copy.Test(false);
  copy.Test(false);
  EXPECT_EQ("retrying(1/2)", counter.to_string());
  EXPECT_EQ("expired(3/2)", copy.to_string());
}

}  // namespace
