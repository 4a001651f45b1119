#include "report/printer_state_reasons.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <type_traits>

// Entry 37 is the filter's own used-up-ribbon code; the printer never sends
// it.
const PrinterStateReasonEntry
    PRINTER_STATE_REASONS[PRINTER_STATE_REASONS_COUNT] = {
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

// The reason slots of one entry.
constexpr size_t kReasonSlots =
    std::extent<decltype(PrinterStateReasonEntry::reasons)>::value;

// Every keyword slot of the table, and the two constants.
constexpr size_t kMaxKnownReasons =
    kReasonSlots * PRINTER_STATE_REASONS_COUNT + 2;

// Every vendor keyword the filter knows, in byte-wise order, each once.
struct KnownReasons {
  const char* keywords[kMaxKnownReasons];
  size_t count;
};

// The reasons that hold now: used slots first, a null slot ends them.
using RaisedReasons = std::array<const char*, kReasonSlots>;

// Orders keywords byte by byte, as the scheduler's list is read.
bool keyword_less(const char* a, const char* b) { return strcmp(a, b) < 0; }

// Tells whether two keywords are the same text.
bool keyword_equal(const char* a, const char* b) { return strcmp(a, b) == 0; }

// Builds the known reasons afresh from the constant table: no state is kept.
KnownReasons known_reasons() {
  KnownReasons known;
  known.count = 0;
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    for (const char* reason : entry.reasons) {
      if (reason == nullptr) break;
      known.keywords[known.count++] = reason;
    }
  }
  known.keywords[known.count++] = UNAVAILABLE_REASON;
  known.keywords[known.count++] = UNDEFINED_ERROR_REASON;
  const char** begin = known.keywords;
  std::sort(begin, begin + known.count, keyword_less);
  known.count = static_cast<size_t>(
      std::unique(begin, begin + known.count, keyword_equal) - begin);
  return known;
}

// The reasons that the state raises: the first matching entry's, or one of
// the two constants; logs a code that no entry holds.
RaisedReasons reasons_to_raise(const PrinterState& state) {
  RaisedReasons raise{};  // every slot empty
  if (state == PrinterState::Unavailable()) {
    raise[0] = UNAVAILABLE_REASON;
    return raise;
  }
  for (const PrinterStateReasonEntry& entry : PRINTER_STATE_REASONS) {
    if (state == &entry.error_code) {
      std::copy(std::begin(entry.reasons), std::end(entry.reasons),
                raise.begin());
      return raise;
    }
  }
  fprintf(stderr, "DEBUG: encountered undefined error number (%s)\n",
          state.to_string().c_str());
  raise[0] = UNDEFINED_ERROR_REASON;
  return raise;
}

// Raises the reasons that hold, taking each off the known reasons, and then
// withdraws every known reason left, in order.
void write_reasons(const RaisedReasons& raise, KnownReasons known) {
  for (const char* reason : raise) {
    if (reason == nullptr) break;
    fprintf(stderr, "STATE: +%s\n", reason);
    const char** end = known.keywords + known.count;
    const char** found = std::find_if(
        known.keywords, end,
        [reason](const char* k) { return keyword_equal(k, reason); });
    if (found != end) {
      std::copy(found + 1, end, found);
      known.count--;
    }
  }
  for (size_t i = 0; i < known.count; i++)
    fprintf(stderr, "STATE: -%s\n", known.keywords[i]);
}

}  // namespace

void update_printer_state(const PrinterState& state) {
  // The undefined-code line, if any, comes before every "STATE:" line.
  RaisedReasons raise = reasons_to_raise(state);
  write_reasons(raise, known_reasons());
}
