#include "report/clean_printer_state.h"

#include <cups/cups.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// Withdraws every reason that the default destination lists.
void clean_printer_state() {
  fprintf(stderr, "clean_printer_state() START\n");

  cups_dest_t* dests = nullptr;
  int num_dests = cupsGetDests(&dests);
  cups_dest_t* dest = cupsGetDest(nullptr, nullptr, num_dests, dests);
  if (dest == nullptr) {
    fprintf(stderr, "DEBUG: Not found default(destination) printer.\n");
  } else {
    const char* value = cupsGetOption("printer-state-reasons",
                                      dest->num_options, dest->options);
    // A destination without reasons, or with an empty list, has nothing to
    // withdraw.
    if (value != nullptr && value[0] != '\0') {
      char* copy = strdup(value);
      if (copy != nullptr) {
        for (char* reason = strtok(copy, ","); reason != nullptr;
             reason = strtok(nullptr, ","))
          fprintf(stderr, "STATE: -%s\n", reason);
        free(copy);
      }
    }
  }
  cupsFreeDests(num_dests, dests);

  fprintf(stderr, "clean_printer_state() END\n");
}
