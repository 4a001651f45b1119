#include "link/printer_info_retry.h"

#include <unistd.h>

#include <cstdio>

#include "link/escape_commands.h"
#include "link/retry_counter.h"

// Queries the printer once a second until it reports itself awake.
PrinterInfo get_printer_info_retry() {
  fprintf(stderr, "DEBUG: get_printer_info_retry() START\n");
  // 60 failed queries are allowed: the 61st ends the wait.
  RetryCounter wake_up(60);
  for (;;) {
    PrinterInfo info = get_printer_info();
    fprintf(stderr, "DEBUG: printer_info=[%s]\n", info.to_string().c_str());
    if (!info.isAvailable()) {
      fprintf(stderr, "DEBUG: get_printer_info_retry() END\n");
      return info;
    }
    wake_up.Test(info.isWakeUp());
    fprintf(stderr, "DEBUG: #retry_status=[wake_up=%s]\n",
            wake_up.to_string().c_str());
    if (wake_up.isFulfilled()) {
      fprintf(stderr, "DEBUG: get_printer_info_retry() END\n");
      return info;
    }
    if (wake_up.isExpired()) {
      // A printer that never wakes is reported like one that cannot be
      // reached.
      fprintf(stderr, "DEBUG: #retry over\n");
      fprintf(stderr, "DEBUG: get_printer_info_retry() END\n");
      return PrinterInfo::Unavailable();
    }
    sleep(1);
  }
}
