#include "link/retry_counter.h"

#include <cstdio>

RetryCounter::RetryCounter(unsigned int limit)
    : count_(0), limit_(limit), fulfilled_(false) {}

void RetryCounter::Test(bool ok) {
  if (isExpired()) return;
  if (ok) {
    fulfilled_ = true;
  } else {
    fulfilled_ = false;
    count_++;
  }
}

bool RetryCounter::isExpired() const { return count_ > limit_; }

bool RetryCounter::isFulfilled() const { return fulfilled_; }

std::string RetryCounter::to_string() const {
  const char* word = isFulfilled() ? "fulfilled"
                     : isExpired() ? "expired"
                                   : "retrying";
  char text[40];
  snprintf(text, sizeof(text), "%s(%u/%u)", word, count_, limit_);
  return text;
}
