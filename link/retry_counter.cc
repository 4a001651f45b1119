#include "link/retry_counter.h"

#include <cstdio>

// A fresh counter: nothing counted, not fulfilled.
RetryCounter::RetryCounter(unsigned int limit)
    : count_(0), limit_(limit), fulfilled_(false) {}

// Records one attempt; an expired counter stays as it is.
void RetryCounter::Test(bool ok) {
  if (isExpired()) return;
  if (ok) {
    fulfilled_ = true;
  } else {
    fulfilled_ = false;
    count_++;
  }
}

// More failures than the limit allows.
bool RetryCounter::isExpired() const { return count_ > limit_; }

// The last attempt counted succeeded.
bool RetryCounter::isFulfilled() const { return fulfilled_; }

// Renders the counter for the log, for example "retrying(3/60)".
std::string RetryCounter::to_string() const {
  const char* word = isFulfilled() ? "fulfilled"
                     : isExpired() ? "expired"
                                   : "retrying";
  char text[40];
  snprintf(text, sizeof(text), "%s(%u/%u)", word, count_, limit_);
  return text;
}
