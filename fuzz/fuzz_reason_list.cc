// Fuzz target: a destination's "printer-state-reasons" value, split and
// withdrawn as clean_printer_state() does with the default destination's.
//
// The input is the value itself, copied to a heap block of exactly its
// length plus the terminating NUL, so that any read past the value is
// caught.  A NUL byte inside the input ends the value there, as it would in
// the option string that libcups hands over.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "fuzz/quiet_stderr.h"
#include "report/clean_printer_state.h"

// libFuzzer's entry: one value, one withdrawal.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet_stderr();
  std::unique_ptr<char[]> value(new char[size + 1]);
  if (size > 0) memcpy(value.get(), data, size);
  value[size] = '\0';
  withdraw_reasons(value.get());
  return 0;
}
