#include "link/printer_info_retry.h"

#include <unistd.h>

#include <cstdio>

#include "link/escape_commands.h"
#include "link/retry_counter.h"

namespace {

// 60 failed queries are allowed: the 61st ends the wait.
const unsigned int kWakeUpRetries = 60;
// Seconds between two queries of a printer that is not yet awake.
const unsigned int kWakeUpRetryPause = 1;

// Queries the printer until it is awake, a query fails or the retries run
// out.
PrinterInfo wait_until_awake() {
  RetryCounter wake_up(kWakeUpRetries);
  for (;;) {
    PrinterInfo info = get_printer_info();
    fprintf(stderr, "DEBUG: printer_info=[%s]\n", info.to_string().c_str());
    if (!info.isAvailable()) return info;
    wake_up.Test(info.isWakeUp());
    fprintf(stderr, "DEBUG: #retry_status=[wake_up=%s]\n",
            wake_up.to_string().c_str());
    if (wake_up.isFulfilled()) return info;
    if (wake_up.isExpired()) {
      // A printer that never wakes is reported like one that cannot be
      // reached.
      fprintf(stderr, "DEBUG: #retry over\n");
      return PrinterInfo::Unavailable();
    }
    sleep(kWakeUpRetryPause);
  }
}

}  // namespace

PrinterInfo get_printer_info_retry() {
  fprintf(stderr, "DEBUG: get_printer_info_retry() START\n");
  PrinterInfo info = wait_until_awake();
  fprintf(stderr, "DEBUG: get_printer_info_retry() END\n");
  return info;
}
