#include "report/clean_printer_state.h"

#include <cups/cups.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

void withdraw_reasons(const char* value) {
  // A destination without reasons, or with an empty list, has nothing to
  // withdraw.
  if (value == nullptr || value[0] == '\0') return;
  char* copy = strdup(value);
  if (copy == nullptr) return;
  for (const char* reason = strtok(copy, ","); reason != nullptr;
       reason = strtok(nullptr, ","))
    fprintf(stderr, "STATE: -%s\n", reason);
  free(copy);
}

void clean_printer_state() {
  fprintf(stderr, "clean_printer_state() START\n");

  cups_dest_t* dests = nullptr;
  int num_dests = cupsGetDests(&dests);
  cups_dest_t* dest = cupsGetDest(nullptr, nullptr, num_dests, dests);
  if (dest == nullptr)
    fprintf(stderr, "DEBUG: Not found default(destination) printer.\n");
  else
    withdraw_reasons(cupsGetOption("printer-state-reasons", dest->num_options,
                                   dest->options));
  cupsFreeDests(num_dests, dests);

  fprintf(stderr, "clean_printer_state() END\n");
}
