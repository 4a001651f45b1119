#include "report/printer_state_reasons.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

// The printer's error codes and the vendor keywords they raise.  The first
// matching entry wins; entry 37 is the filter's own used-up-ribbon code.
const PrinterStateReasonEntry PRINTER_STATE_REASONS[38] = {
    {{0x00, 0x00, 0x00}, {nullptr, nullptr, nullptr, nullptr}},
    {{0x06, 0x02, 0x02}, {"com.quillaroth-error0001", nullptr, nullptr, nullptr}},
    {{0x09, 0x02, 0x02}, {"com.quillaroth-error0002", nullptr, nullptr, nullptr}},
    {{0x03, 0x01, 0x01}, {"com.quillaroth-error0003", nullptr, nullptr, nullptr}},
    {{0x08, 0x01, 0x01}, {"com.quillaroth-error0004", nullptr, nullptr, nullptr}},
    {{0x05, 0x02, 0x02}, {"com.quillaroth-error0005", nullptr, nullptr, nullptr}},
    {{0x02, 0x02, 0x02}, {"com.quillaroth-error0006", nullptr, nullptr, nullptr}},
    {{0x04, 0x03, 0x04}, {"com.quillaroth-error0007", nullptr, nullptr, nullptr}},
    {{0x07, 0x03, 0x03}, {"com.quillaroth-error0008", nullptr, nullptr, nullptr}},
    {{0x20, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x21, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x23, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x26, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x27, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x28, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x29, 0x07, 0x07}, {"com.quillaroth-error0009", nullptr, nullptr, nullptr}},
    {{0x0a, 0x05, 0x05}, {"com.quillaroth-error0010", nullptr, nullptr, nullptr}},
    {{0x0b, 0x05, 0x07}, {"com.quillaroth-error0011", nullptr, nullptr, nullptr}},
    {{0x30, 0x09, 0x07}, {"com.quillaroth-error0012", nullptr, nullptr, nullptr}},
    {{0x37, 0x09, 0x0f}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x31, 0x09, 0x07}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x32, 0x09, 0x0f}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x33, 0x09, 0x0f}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x34, 0x09, 0x07}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x36, 0x09, 0x0f}, {"com.quillaroth-error0013", nullptr, nullptr, nullptr}},
    {{0x3a, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x3b, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x3c, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x3d, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x3e, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x3f, 0x0a, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x40, 0x0e, 0x0f}, {"com.quillaroth-error0014", nullptr, nullptr, nullptr}},
    {{0x0c, 0x0f, 0x00}, {"com.quillaroth-error0018", nullptr, nullptr, nullptr}},
    {{0x01, 0x06, 0x06}, {"com.quillaroth-error0020", nullptr, nullptr, nullptr}},
    {{0x0d, 0x08, 0x07}, {"com.quillaroth-error0021", nullptr, nullptr, nullptr}},
    {{0x0e, 0x08, 0x07}, {"com.quillaroth-error0021", nullptr, nullptr, nullptr}},
    {{0x10, 0x08, 0x08}, {"com.quillaroth-error0022", nullptr, nullptr, nullptr}},
    {{0xfe, 0xed, 0x01}, {"com.quillaroth-error0005", nullptr, nullptr, nullptr}},
};

// Two keywords with one text and two roles: no answer, and an unknown code.
const char* const UNAVAILABLE_REASON = "com.quillaroth-error0023";
const char* const UNDEFINED_ERROR_REASON = "com.quillaroth-error0023";

namespace {

// Every keyword slot of the table, and the two constants.
constexpr size_t kMaxKnownReasons = 4 * PRINTER_STATE_REASONS_COUNT + 2;

// Orders keywords byte by byte, as the scheduler's list is read.
bool keyword_less(const char* a, const char* b) { return strcmp(a, b) < 0; }

// Tells whether two keywords are the same text.
bool keyword_equal(const char* a, const char* b) { return strcmp(a, b) == 0; }

}  // namespace

// Writes the complete vendor state-reason report for the state.
void update_printer_state(const PrinterState& state) {
  // Every vendor keyword the filter knows, in byte-wise order, each once.
  // Built afresh on every call from the constant table: no state is kept.
  const char* known[kMaxKnownReasons];
  size_t known_count = 0;
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    for (const char* reason : entry.reasons) {
      if (reason == nullptr) break;
      known[known_count++] = reason;
    }
  }
  known[known_count++] = UNAVAILABLE_REASON;
  known[known_count++] = UNDEFINED_ERROR_REASON;
  std::sort(known, known + known_count, keyword_less);
  known_count = static_cast<size_t>(
      std::unique(known, known + known_count, keyword_equal) - known);

  const char* raise[4] = {nullptr, nullptr, nullptr, nullptr};
  if (state == PrinterState::Unavailable()) {
    raise[0] = UNAVAILABLE_REASON;
  } else {
    const PrinterStateReasonEntry* match = nullptr;
    for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
      if (state == &entry.error_code) {
        match = &entry;
        break;
      }
    }
    if (match != nullptr) {
      for (int i = 0; i < 4; i++) raise[i] = match->reasons[i];
    } else {
      raise[0] = UNDEFINED_ERROR_REASON;
      fprintf(stderr, "DEBUG: encountered undefined error number (%s)\n",
              state.to_string().c_str());
    }
  }

  // Raise what holds now, taking it off the list of known reasons...
  for (const char* reason : raise) {
    if (reason == nullptr) break;
    fprintf(stderr, "STATE: +%s\n", reason);
    const char** end = known + known_count;
    const char** found = std::find_if(
        known, end,
        [reason](const char* k) { return keyword_equal(k, reason); });
    if (found != end) {
      std::copy(found + 1, end, found);
      known_count--;
    }
  }
  // ...and withdraw every other one.
  for (size_t i = 0; i < known_count; i++)
    fprintf(stderr, "STATE: -%s\n", known[i]);
}
