#include "tests/e2e/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

// Renders the result for a failure message.
std::string ProgramResult::Describe() const {
  return "status=" + std::to_string(status) + " stdout=[" + out +
         "] stderr=[" + err + "]";
}

// Forks, execs argv with stdout and stderr on pipes, and reads both pipes
// until the child has closed them.
ProgramResult RunProgram(const std::vector<std::string>& argv) {
  ProgramResult result{-1, "", ""};
  int out_pipe[2];
  int err_pipe[2];
  if (pipe2(out_pipe, O_CLOEXEC) != 0) return result;
  if (pipe2(err_pipe, O_CLOEXEC) != 0) {
    close(out_pipe[0]);
    close(out_pipe[1]);
    return result;
  }

  std::vector<char*> args;
  for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
  args.push_back(nullptr);

  pid_t pid = fork();
  if (pid == 0) {
    int null_fd = open("/dev/null", O_RDONLY);
    dup2(null_fd, 0);
    dup2(out_pipe[1], 1);
    dup2(err_pipe[1], 2);
    execvp(args[0], args.data());
    fprintf(stderr, "exec %s: errno %d\n", args[0], errno);
    _exit(127);
  }
  close(out_pipe[1]);
  close(err_pipe[1]);
  if (pid < 0) {
    close(out_pipe[0]);
    close(err_pipe[0]);
    return result;
  }

  struct pollfd fds[2] = {{out_pipe[0], POLLIN, 0}, {err_pipe[0], POLLIN, 0}};
  std::string* sinks[2] = {&result.out, &result.err};
  int open_count = 2;
  while (open_count > 0) {
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      break;
    }
    for (int i = 0; i < 2; i++) {
      if (fds[i].fd < 0 || fds[i].revents == 0) continue;
      char buffer[4096];
      ssize_t n = read(fds[i].fd, buffer, sizeof(buffer));
      if (n > 0) {
        sinks[i]->append(buffer, static_cast<size_t>(n));
      } else if (n == 0 || errno != EINTR) {
        close(fds[i].fd);
        fds[i].fd = -1;
        open_count--;
      }
    }
  }
  for (struct pollfd& fd : fds)
    if (fd.fd >= 0) close(fd.fd);

  int wait_status = 0;
  while (waitpid(pid, &wait_status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(wait_status))
    result.status = WEXITSTATUS(wait_status);
  else if (WIFSIGNALED(wait_status))
    result.status = 128 + WTERMSIG(wait_status);
  return result;
}
