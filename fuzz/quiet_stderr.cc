#include "fuzz/quiet_stderr.h"

#include <cstdio>
#include <cstdlib>

// Replaces the stderr stream with one on /dev/null (glibc lets the stream
// variable be assigned).
void quiet_stderr() {
  static FILE* null_stream = nullptr;
  if (null_stream != nullptr) return;
  null_stream = fopen("/dev/null", "w");
  if (null_stream == nullptr) abort();
  stderr = null_stream;
}
