/*
 * bench_measure: runs one program and appends what it cost to a file.
 *
 *   bench_measure OUTPUT PROGRAM [ARGS...]
 *
 * The program inherits every descriptor (the backend's side and back
 * channels included), so it can stand between the simulated printer and the
 * filter.  Appended to OUTPUT, one line per run:
 *
 *   wall_us user_us sys_us maxrss_kib exit_status
 *
 * Wall time is taken around fork and wait with the monotonic clock; the CPU
 * times and the peak resident set come from the child's rusage.  The exit
 * status of the program is passed on as ours.
 */

#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

/* Microseconds in a timeval. */
static long long timeval_us(struct timeval tv) {
  return (long long)tv.tv_sec * 1000000LL + tv.tv_usec;
}

/* Microseconds on the monotonic clock. */
static long long now_us(void) {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return (long long)ts.tv_sec * 1000000LL + ts.tv_nsec / 1000;
}

/* Runs the program, waits for it and appends its costs to the file. */
int main(int argc, char *argv[]) {
  FILE *output;
  long long start;
  long long wall;
  pid_t child;
  int status = 0;
  int code;
  struct rusage usage;

  if (argc < 3) {
    fprintf(stderr, "usage: %s OUTPUT PROGRAM [ARGS...]\n", argv[0]);
    return 2;
  }
  start = now_us();
  child = fork();
  if (child < 0) {
    perror("fork");
    return 2;
  }
  if (child == 0) {
    execvp(argv[2], argv + 2);
    perror(argv[2]);
    _exit(127);
  }
  if (wait4(child, &status, 0, &usage) < 0) {
    perror("wait4");
    return 2;
  }
  wall = now_us() - start;
  code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);

  output = fopen(argv[1], "a");
  if (output == NULL) {
    perror(argv[1]);
    return 2;
  }
  fprintf(output, "%lld %lld %lld %ld %d\n", wall, timeval_us(usage.ru_utime),
          timeval_us(usage.ru_stime), usage.ru_maxrss, code);
  fclose(output);
  return code;
}
