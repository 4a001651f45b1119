// quillaroth-sim: runs a CUPS filter beside a simulated printer.
//
// The filter is started as cupsd starts one in front of a backend: its
// stdout goes into a pipe that the simulator reads (the backend's stdin),
// descriptor 3 is the read end of the back channel, descriptor 4 its end of
// the side-channel socket pair; stdin and stderr are the simulator's own.
// The simulator keeps the other ends on its own descriptors 3 and 4, where
// libcups' backend calls expect them, and serves the filter until it exits.
// It exits with the filter's exit status (128 + the signal if it was
// killed).
//
// With --listen it runs no filter: it serves the printer on a TCP port
// instead (sim/network_printer.h).

#include <cups/cups.h>
#include <cups/sidechannel.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "sim/network_printer.h"
#include "sim/option_help.h"
#include "sim/option_table.h"
#include "sim/serve.h"
#include "sim/sim_log.h"
#include "sim/sim_options.h"

namespace {

// The descriptors that the filter gets, as the simulator holds them.
struct FilterEnds {
  int stdout_fd;  // write end of the stdout pipe, or /dev/full
  int back_fd;    // read end of the back channel
  int side_fd;    // the filter's end of the side channel
};

// Makes sure descriptors 0 to 4 are taken, so that every descriptor opened
// from here on is 5 or above and dup2() onto 3 and 4 clobbers nothing of
// ours.
void reserve_low_fds() {
  for (;;) {
    int fd = open("/dev/null", O_RDWR);
    if (fd < 0) return;
    if (fd > CUPS_SC_FD) {
      close(fd);
      return;
    }
  }
}

// Writes a complaint about a failed system call to stderr and exits 2.
[[noreturn]] void die(const char* what) {
  fprintf(stderr, "quillaroth-sim: %s: %s\n", what, strerror(errno));
  exit(2);
}

// In the child: puts the filter's descriptors in place and runs it.
[[noreturn]] void exec_filter(const FilterEnds& ends,
                              const std::vector<std::string>& command) {
  signal(SIGPIPE, SIG_DFL);
  if (dup2(ends.stdout_fd, STDOUT_FILENO) < 0 ||
      dup2(ends.back_fd, CUPS_BC_FD) < 0 || dup2(ends.side_fd, CUPS_SC_FD) < 0) {
    perror("quillaroth-sim: dup2");
    _exit(127);
  }
  // Nothing of the simulator's leaks into the filter.
  close_range(CUPS_SC_FD + 1, ~0U, 0);
  std::vector<char*> argv;
  for (const std::string& word : command)
    argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  execv(argv[0], argv.data());
  fprintf(stderr, "quillaroth-sim: cannot run %s: %s\n", argv[0],
          strerror(errno));
  _exit(127);
}

// Opens the log file, or gives no file when no log was asked for.
FILE* open_log(const std::string& path) {
  if (path.empty()) return nullptr;
  FILE* file = fopen(path.c_str(), "w");
  if (file == nullptr) die(path.c_str());
  return file;
}

// The exit status that stands for the child's end; logs it.
int child_status(int status, SimLog& log) {
  if (WIFEXITED(status)) {
    log.Line("filter exited with status %d", WEXITSTATUS(status));
    return WEXITSTATUS(status);
  }
  if (WIFSIGNALED(status)) {
    log.Line("filter killed by signal %d (%s)", WTERMSIG(status),
             strsignal(WTERMSIG(status)));
    return 128 + WTERMSIG(status);
  }
  log.Line("filter ended with wait status %d", status);
  return 127;
}

}  // namespace

// Parses the options, starts the filter with its channels, serves it and
// hands back its exit status.
int main(int argc, char** argv) {
  reserve_low_fds();
  SimSettings settings;
  if (!parse_sim_options(argc, argv, &settings)) return 2;
  if (settings.help) {
    fputs(usage_text().c_str(), stdout);
    return 0;
  }
  if (!settings.print_table.empty()) {
    fputs(printed_table(settings.print_table).c_str(), stdout);
    return 0;
  }

  FILE* log_file = open_log(settings.log_path);
  SimLog log(log_file, "sim: ");
  if (settings.listen) {
    int code = serve_network_printer(settings, log);
    if (log_file != nullptr) fclose(log_file);
    return code;
  }
  int save_fd = -1;
  if (!settings.stdout_path.empty()) {
    save_fd = open(settings.stdout_path.c_str(),
                   O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (save_fd < 0) die(settings.stdout_path.c_str());
  }

  int out_pipe[2] = {-1, -1};
  int back_pipe[2];
  int side_pair[2];
  if (settings.stdout_devfull) {
    out_pipe[1] = open("/dev/full", O_WRONLY);
    if (out_pipe[1] < 0) die("/dev/full");
  } else if (pipe(out_pipe) != 0) {
    die("pipe");
  }
  if (pipe(back_pipe) != 0) die("pipe");
  if (socketpair(AF_LOCAL, SOCK_STREAM, 0, side_pair) != 0) die("socketpair");

  // A filter that goes away must not take the simulator with it.
  signal(SIGPIPE, SIG_IGN);
  pid_t child = fork();
  if (child < 0) die("fork");
  if (child == 0)
    exec_filter(FilterEnds{out_pipe[1], back_pipe[0], side_pair[1]},
                settings.command);

  // The backend's ends on the descriptors where libcups looks for them.
  if (dup2(back_pipe[1], CUPS_BC_FD) < 0 || dup2(side_pair[0], CUPS_SC_FD) < 0)
    die("dup2");
  close(back_pipe[1]);
  close(side_pair[0]);
  close(side_pair[1]);
  close(out_pipe[1]);

  ServeChannels channels;
  channels.input_fd = out_pipe[0];
  channels.save_fd = save_fd;
  channels.backchannel_peek_fd = back_pipe[0];
  channels.until_sidechannel_eof = true;
  serve_printer(scenario_for_connection(settings, 1), channels, log);

  close(CUPS_BC_FD);
  close(CUPS_SC_FD);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) die("waitpid");
  }
  int code = child_status(status, log);
  if (log_file != nullptr) fclose(log_file);
  if (save_fd >= 0) close(save_fd);
  return code;
}
