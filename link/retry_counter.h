// RetryCounter: a bounded count of failed attempts.
//
// Test(false) counts a failure, Test(true) marks the counter fulfilled.  Once
// the count passes the limit the counter is expired and never changes again:
// with limit 60 it expires at the 61st failure.

#ifndef QUILLAROTH_LINK_RETRY_COUNTER_H_
#define QUILLAROTH_LINK_RETRY_COUNTER_H_

#include <cstdint>
#include <string>

class RetryCounter {
 public:
  // Count 0, not fulfilled.
  explicit RetryCounter(unsigned int limit);

  // Records one attempt; does nothing once expired.
  void Test(bool ok);
  // The count is above the limit.
  bool isExpired() const;
  // The last attempt counted succeeded.
  bool isFulfilled() const;
  // "fulfilled(%u/%u)", "expired(%u/%u)" or "retrying(%u/%u)": the word,
  // the count, the limit.
  std::string to_string() const;

 private:
  uint32_t count_;
  uint32_t limit_;
  bool fulfilled_;
};

#endif  // QUILLAROTH_LINK_RETRY_COUNTER_H_
