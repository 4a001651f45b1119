/*
 * Sleep interposer for the integration tests (loaded with LD_PRELOAD).
 *
 * The filter pauses with sleep() and usleep() while it waits for a printer
 * to wake up; a test that lets the printer sleep through 61 queries must not
 * wait a minute for it.  This library replaces both calls: each returns at
 * once and, when FAKE_SLEEP_LOG names a file, appends "sleep N" or
 * "usleep N" to it, so that a test can check which waits the filter asked
 * for.  poll() and the time-outs inside libcups stay real.
 *
 * The line is written with open(), write() and close() alone: no stdio, no
 * allocation, nothing that a pause in an odd place could upset.
 */

#include <fcntl.h>
#include <stddef.h>
#include <stdlib.h>
#include <unistd.h>

/* Formats value in decimal into buffer (at least 11 bytes); returns the
 * length. */
static size_t format_unsigned(char* buffer, unsigned long value) {
  char digits[24];
  size_t count = 0;
  do {
    digits[count++] = (char)('0' + value % 10);
    value /= 10;
  } while (value != 0);
  for (size_t i = 0; i < count; i++) buffer[i] = digits[count - 1 - i];
  return count;
}

/* Appends "NAME VALUE\n" to the file named by FAKE_SLEEP_LOG, if set. */
static void log_sleep(const char* name, size_t name_length,
                      unsigned long value) {
  const char* path = getenv("FAKE_SLEEP_LOG");
  if (path == NULL || path[0] == '\0') return;
  char line[48];
  size_t length = 0;
  for (size_t i = 0; i < name_length; i++) line[length++] = name[i];
  line[length++] = ' ';
  length += format_unsigned(line + length, value);
  line[length++] = '\n';
  int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return;
  ssize_t written = write(fd, line, length);
  (void)written;
  close(fd);
}

/* Logs "sleep N" and returns at once, as if the whole time had passed. */
unsigned int sleep(unsigned int seconds) {
  log_sleep("sleep", 5, seconds);
  return 0;
}

/* Logs "usleep N" and returns at once. */
int usleep(useconds_t microseconds) {
  log_sleep("usleep", 6, microseconds);
  return 0;
}
