// quillaroth-usb-job: one command job, as cupsd runs it, through CUPS' own
// usb backend on the emulated USB printer, with every line timed.
//
//   quillaroth-usb-job FILTER BACKEND SCRIPT COMMANDS
//
// FILTER (commandtoquillaroth) reads the command file COMMANDS on its stdin;
// its stdout goes to the stdin of BACKEND (the wrapper backend "usb"), and
// the two share a back-channel pipe on descriptor 3 and a side-channel
// socket pair on descriptor 4, both non-blocking, as cupsd sets them up.
// The backend gets the device URI of the emulated printer and the script
// SCRIPT (QUILLAROTH_USB_PRINTER).  Each line that either writes to stderr
// is printed as it comes, behind the seconds since the start:
//
//      0.512 filter: DEBUG: wr_esc_wakeup() END
//      0.513 backend: DEBUG: sim: cmd 1b 56 32 31
//
// and at the end "filter exit S at T s; backend exit S at T s".  It is a
// tool for measuring the backend's timing (see docs/backends.md); the
// end-to-end tests run the same job under a real cupsd.

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "sim/clock.h"
#include "sim/usb/usb_script.h"

namespace {

const char kDeviceUri[] = "usb://Quillaroth/Simulated%20Printer?serial=SIM0001";

// Complains about a failed system call and exits 2.
[[noreturn]] void die(const char* what) {
  fprintf(stderr, "quillaroth-usb-job: %s: %s\n", what, strerror(errno));
  exit(2);
}

// A child's descriptors 0 to 4 (-1: /dev/null).
struct ChildFds {
  int fd[5];
};

// Starts argv with its descriptors in place and the environment env.
pid_t start(const std::vector<std::string>& argv, const ChildFds& fds,
            const std::vector<std::string>& env) {
  pid_t pid = fork();
  if (pid < 0) die("fork");
  if (pid > 0) return pid;
  // Move every descriptor above 4 first, so that no dup2() clobbers one.
  int moved[5];
  for (int i = 0; i < 5; i++) {
    int from = fds.fd[i] >= 0 ? fds.fd[i] : open("/dev/null", O_RDWR);
    moved[i] = fcntl(from, F_DUPFD, 10);
  }
  for (int i = 0; i < 5; i++) dup2(moved[i], i);
  close_range(5, ~0U, 0);
  std::vector<char*> args;
  for (const std::string& word : argv)
    args.push_back(const_cast<char*>(word.c_str()));
  args.push_back(nullptr);
  std::vector<char*> envp;
  for (const std::string& item : env)
    envp.push_back(const_cast<char*>(item.c_str()));
  envp.push_back(nullptr);
  execve(args[0], args.data(), envp.data());
  fprintf(stderr, "quillaroth-usb-job: cannot run %s: %s\n", args[0],
          strerror(errno));
  _exit(127);
}

// One child's stderr, read line by line.
struct Output {
  const char* name;
  int fd;
  std::string partial;
};

// Prints each complete line that has come, behind the time; false at the
// end of the output.
bool print_lines(Output* out, double start) {
  char buffer[4096];
  ssize_t n = read(out->fd, buffer, sizeof buffer);
  if (n < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (n > 0) out->partial.append(buffer, static_cast<size_t>(n));
  size_t end;
  while ((end = out->partial.find('\n')) != std::string::npos ||
         (n <= 0 && !out->partial.empty())) {
    if (end == std::string::npos) end = out->partial.size();
    printf("%8.3f %s: %s\n", monotonic_seconds() - start, out->name,
           out->partial.substr(0, end).c_str());
    out->partial.erase(0, std::min(end + 1, out->partial.size()));
  }
  fflush(stdout);
  return n > 0;
}

// Waits for a child; its exit status (128 + the signal if it was killed).
int wait_for(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

// Runs the job and prints its lines.
int main(int argc, char** argv) {
  if (argc != 5) {
    fprintf(stderr,
            "Usage: quillaroth-usb-job FILTER BACKEND SCRIPT COMMANDS\n");
    return 2;
  }
  int commands = open(argv[4], O_RDONLY | O_CLOEXEC);
  if (commands < 0) die(argv[4]);
  int side[2], back[2], data[2], filter_err[2], backend_err[2];
  if (socketpair(AF_LOCAL, SOCK_STREAM | SOCK_CLOEXEC, 0, side) != 0)
    die("socketpair");
  if (pipe2(back, O_CLOEXEC) != 0 || pipe2(data, O_CLOEXEC) != 0 ||
      pipe2(filter_err, O_CLOEXEC) != 0 || pipe2(backend_err, O_CLOEXEC) != 0)
    die("pipe");
  for (int fd : {side[0], side[1], back[0], back[1]})
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);

  std::vector<std::string> env = {
      "PATH=/usr/bin:/bin", "LANG=C", std::string("DEVICE_URI=") + kDeviceUri,
      std::string(kUsbScriptVariable) + "=" + argv[3]};
  double start_time = monotonic_seconds();
  pid_t filter =
      start({argv[1], "1", "user", "title", "1", ""},
            {{commands, data[1], filter_err[1], back[0], side[0]}}, env);
  pid_t backend = start({argv[2], "1", "user", "title", "1", ""},
                        {{data[0], -1, backend_err[1], back[1], side[1]}}, env);
  for (int fd : {commands, side[0], side[1], back[0], back[1], data[0], data[1],
                 filter_err[1], backend_err[1]})
    close(fd);

  Output outputs[2] = {{"filter", filter_err[0], ""},
                       {"backend", backend_err[0], ""}};
  // A process's stderr ends when the process does.
  double ended[2] = {0, 0};
  int open_outputs = 2;
  while (open_outputs > 0) {
    struct pollfd fds[2];
    for (int i = 0; i < 2; i++) fds[i] = {outputs[i].fd, POLLIN, 0};
    if (poll(fds, 2, -1) < 0 && errno != EINTR) die("poll");
    for (int i = 0; i < 2; i++) {
      if (outputs[i].fd < 0 || fds[i].revents == 0) continue;
      if (!print_lines(&outputs[i], start_time)) {
        ended[i] = monotonic_seconds() - start_time;
        close(outputs[i].fd);
        outputs[i].fd = -1;
        open_outputs--;
      }
    }
  }
  int filter_status = wait_for(filter);
  int backend_status = wait_for(backend);
  printf("filter exit %d at %.3f s; backend exit %d at %.3f s\n", filter_status,
         ended[0], backend_status, ended[1]);
  return 0;
}
