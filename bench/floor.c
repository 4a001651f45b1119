/*
 * bench_floor: the least a command job can cost.
 *
 * Takes the filter's arguments (job user title copies options [file]) and
 * talks to the backend exactly as commandtoquillaroth does for the same
 * command file: the GET_BIDI probe, the wake-up command and its half-second
 * pause, and for every "ReportLevels" or "ReportStatus" line the printer
 * information query, repeated once a second while the printer is still
 * waking (61 queries at most).  It writes nothing on stderr, parses nothing
 * beyond the power byte and reports nothing: what the filter costs beyond
 * this program is the price of its records, its reports and its log.
 *
 * Built with BENCH_FLOOR_LOG (target bench_floor_log) it also writes as many
 * log lines as the filter, each with one write() of a fixed text: after the
 * wake-up BENCH_LOG_AT_START lines, after every command line
 * BENCH_LOG_PER_COMMAND lines, each BENCH_LOG_BYTES long (environment
 * variables).  That is the least that a filter which logs each line with a
 * write of its own can cost.
 */

#include <cups/file.h>
#include <cups/sidechannel.h>
#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <unistd.h>
#ifdef BENCH_FLOOR_LOG
#include <stdlib.h>
#include <string.h>
#endif

/* libcups' case-insensitive comparison, the one the filter uses. */
extern int _cups_strcasecmp(const char *s, const char *t);

/* Room for a side-channel answer and for a reply. */
#define BUFFER_SIZE 512
/* The printer information reply holds at least this many bytes. */
#define INFO_SIZE 192
/* Offset of the power state in that reply; zero means awake. */
#define POWER_STATE 5
/* Queries made before a printer that stays asleep is given up. */
#define MAX_QUERIES 61

static const char WAKE_UP[] = {0x1b, 'E', 'W', 'U'};
static const char PRINTER_INFO[] = {0x1b, 'V', '2', '1'};

#ifdef BENCH_FLOOR_LOG
/* Log lines per place and their length, from the environment. */
static long log_at_start;
static long log_per_command;
static char log_line[1024];
static size_t log_bytes;

/* Reads a count from the environment (0 when unset). */
static long env_count(const char *name) {
  const char *text = getenv(name);
  return text == NULL ? 0 : strtol(text, NULL, 10);
}

/* Prepares the fixed log line: "DEBUG: " and padding up to the line end. */
static void log_setup(void) {
  long bytes = env_count("BENCH_LOG_BYTES");
  log_at_start = env_count("BENCH_LOG_AT_START");
  log_per_command = env_count("BENCH_LOG_PER_COMMAND");
  if (bytes < 8) bytes = 8;
  if (bytes > (long)sizeof(log_line)) bytes = (long)sizeof(log_line);
  log_bytes = (size_t)bytes;
  memset(log_line, 'x', log_bytes);
  memcpy(log_line, "DEBUG: ", 7);
  log_line[log_bytes - 1] = '\n';
}

/* Writes count log lines to stderr, one write each. */
static void log_lines(long count) {
  long i;
  for (i = 0; i < count; i++)
    if (write(2, log_line, log_bytes) < 0) return;
}
#endif

/* Writes a command, flushes it and has the backend drain it; 0 on success. */
static int send_command(const char *command, size_t length, char *buffer) {
  int datalen = BUFFER_SIZE;
  if (fwrite(command, 1, length, stdout) != length) return -1;
  if (fflush(stdout) != 0) return -1;
  /* A failed drain is ignored, as the filter only logs it. */
  cupsSideChannelDoRequest(CUPS_SC_CMD_DRAIN_OUTPUT, buffer, &datalen, 5.0);
  return 0;
}

/* Reads from the back channel once it is readable (-1 on time-out). */
static ssize_t read_back_channel(char *buffer, size_t size, double timeout) {
  struct pollfd channel = {3, POLLIN, 0};
  int result;
  do {
    result = poll(&channel, 1, (int)(timeout * 1000));
  } while (result < 0 && errno == EINTR);
  if (result <= 0 || (channel.revents & POLLNVAL) != 0) return -1;
  return cupsBackChannelRead(buffer, size, timeout);
}

/* One printer information query: 1 awake, 0 asleep, -1 no reply. */
static int query_printer_info(void) {
  char buffer[BUFFER_SIZE];
  ssize_t count = 0;
  if (send_command(PRINTER_INFO, sizeof(PRINTER_INFO), buffer) != 0)
    return -1;
  while (count < INFO_SIZE) {
    ssize_t result = read_back_channel(
        buffer + count, (size_t)(BUFFER_SIZE - count), 1.0);
    if (result < 1) return -1;
    count += result;
  }
  return buffer[POWER_STATE] == 0 ? 1 : 0;
}

/* Queries once a second until the printer is awake or the queries are spent. */
static void query_until_awake(void) {
  int query;
  for (query = 1; query <= MAX_QUERIES; query++) {
    if (query_printer_info() != 0) return;
    if (query == MAX_QUERIES) return;
    sleep(1);
  }
}

/* Probes the link, wakes the printer and queries it per command line. */
int main(int argc, char *argv[]) {
  cups_file_t *file;
  char data[BUFFER_SIZE];
  int datalen = BUFFER_SIZE;
  int bidirectional;
  char command[1024];
  char *value = NULL;
  int linenum = 0;

  if (argc < 6 || argc > 7) return 1;
#ifdef BENCH_FLOOR_LOG
  log_setup();
#endif
  file = argc == 7 ? cupsFileOpen(argv[6], "r") : cupsFileStdin();
  if (file == NULL) return 1;

  bidirectional = cupsSideChannelDoRequest(CUPS_SC_CMD_GET_BIDI, data,
                                           &datalen, 30.0) == CUPS_SC_STATUS_OK &&
                  datalen == 1 && (signed char)data[0] == CUPS_SC_BIDI_SUPPORTED;

  if (send_command(WAKE_UP, sizeof(WAKE_UP), data) != 0) {
    cupsFileClose(file);
    return 1;
  }
  usleep(500000);
#ifdef BENCH_FLOOR_LOG
  log_lines(log_at_start);
#endif

  while (cupsFileGetConf(file, command, sizeof(command), &value, &linenum) !=
         NULL) {
    if (!bidirectional) continue;
    if (_cups_strcasecmp(command, "ReportLevels") == 0 ||
        _cups_strcasecmp(command, "ReportStatus") == 0)
      query_until_awake();
#ifdef BENCH_FLOOR_LOG
    log_lines(log_per_command);
#endif
  }
  cupsFileClose(file);
  return 0;
}
