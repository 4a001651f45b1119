/*
 * Short-write interposer for the integration tests (loaded with LD_PRELOAD
 * after the sleep interposer).
 *
 * A write of a few bytes into stdio's buffer does not fail on a real
 * system, so the filter's check for fwrite() putting down fewer bytes than
 * a command has cannot be reached from outside.  This library makes every
 * fwrite() to stdout put down only the first half of what it is given and
 * report that count, as a stream that ran out of room would.
 */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>

/* Writes half of the items (rounded down) when the stream is stdout. */
size_t fwrite(const void* data, size_t size, size_t count, FILE* stream) {
  size_t (*real_fwrite)(const void*, size_t, size_t, FILE*);
  /* The object-to-function pointer copy that POSIX prescribes for dlsym. */
  *(void**)&real_fwrite = dlsym(RTLD_NEXT, "fwrite");
  if (stream == stdout) count /= 2;
  return real_fwrite(data, size, count, stream);
}
