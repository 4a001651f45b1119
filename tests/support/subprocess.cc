#include "tests/support/subprocess.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/support/files.h"

extern char** environ;

namespace {

// Writes a whole text to a descriptor, as far as it goes (child side).
void WriteAll(int fd, const std::string& text) {
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

// The name part of a "NAME=value" entry.
std::string EnvName(const std::string& entry) {
  return entry.substr(0, entry.find('='));
}

// Our environment (unless clean) with the setup's entries laid over it.
std::vector<std::string> ChildEnvironment(const ProcessSetup& setup) {
  std::vector<std::string> env;
  if (!setup.clean_env) {
    for (char** e = environ; *e != nullptr; e++) {
      std::string entry = *e;
      bool replaced = std::any_of(setup.env.begin(), setup.env.end(),
                                  [&](const std::string& mine) {
                                    return EnvName(mine) == EnvName(entry);
                                  });
      if (!replaced) env.push_back(entry);
    }
  }
  env.insert(env.end(), setup.env.begin(), setup.env.end());
  return env;
}

// Pointers to the strings, ended by a null pointer, for exec.
std::vector<char*> CStrings(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& s : strings) pointers.push_back(&s[0]);
  pointers.push_back(nullptr);
  return pointers;
}

// Reads what is there on a descriptor; false at its end.
bool Drain(int fd, std::string* sink) {
  char buffer[4096];
  ssize_t n = read(fd, buffer, sizeof(buffer));
  if (n > 0) {
    sink->append(buffer, static_cast<size_t>(n));
    return true;
  }
  return n < 0 && errno == EINTR;
}

}  // namespace

int ExitStatus::ShellStatus() const {
  if (signal != 0) return 128 + signal;
  return code;
}

std::string ExitStatus::Describe() const {
  char text[64];
  if (killed)
    snprintf(text, sizeof(text), "killed after %.1f s", seconds);
  else if (signal != 0)
    snprintf(text, sizeof(text), "signal %d", signal);
  else
    snprintf(text, sizeof(text), "exit status %d", code);
  return text;
}

std::string FindProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) return name;
  const char* path = getenv("PATH");
  std::string dirs = path != nullptr ? path : "/usr/bin:/bin";
  size_t start = 0;
  for (;;) {
    size_t colon = dirs.find(':', start);
    std::string dir = dirs.substr(
        start, colon == std::string::npos ? std::string::npos : colon - start);
    std::string candidate = (dir.empty() ? "." : dir) + "/" + name;
    if (access(candidate.c_str(), X_OK) == 0) return candidate;
    if (colon == std::string::npos) return "";
    start = colon + 1;
  }
}

Subprocess::Subprocess(const ProcessSetup& setup) {
  // Everything the child needs is made before fork(): the child only moves
  // descriptors, changes user and execs.
  std::vector<std::string> args = setup.argv;
  std::string program = args.empty() ? "" : FindProgram(args[0]);
  if (program.empty() && !args.empty()) program = args[0];
  std::vector<char*> argv = CStrings(args);
  std::vector<std::string> env = ChildEnvironment(setup);
  std::vector<char*> envp = CStrings(env);
  std::string failure = "subprocess: cannot run " + program + ": ";
  gid_t gid = 0;
  if (setup.uid >= 0) {
    struct passwd* user = getpwuid(static_cast<uid_t>(setup.uid));
    gid = user != nullptr ? user->pw_gid : static_cast<gid_t>(setup.uid);
  }
  int highest = 2;
  for (const FdWiring& w : setup.fds) highest = std::max(highest, w.target);
  pid_t parent = getpid();

  start_ = Now();
  pid_ = fork();
  if (pid_ < 0) {
    perror("fork");
    abort();
  }
  if (pid_ == 0) {
    if (setup.end_with_parent) {
      prctl(PR_SET_PDEATHSIG, SIGTERM);
      if (getppid() != parent) _exit(1);
    }
    // Lift every source out of the way before any target is overwritten.
    std::vector<int> lifted;
    for (const FdWiring& w : setup.fds)
      lifted.push_back(fcntl(w.source, F_DUPFD, highest + 1));
    for (size_t i = 0; i < setup.fds.size(); i++)
      if (lifted[i] < 0 || dup2(lifted[i], setup.fds[i].target) < 0) _exit(126);
    for (int fd = 0; fd <= highest; fd++) {
      bool wired =
          std::any_of(setup.fds.begin(), setup.fds.end(),
                      [fd](const FdWiring& w) { return w.target == fd; });
      if (!wired) close(fd);
    }
    syscall(SYS_close_range, static_cast<unsigned>(highest) + 1, ~0U, 0U);
    if (setup.uid >= 0 && (setgroups(0, nullptr) != 0 || setgid(gid) != 0 ||
                           setuid(static_cast<uid_t>(setup.uid)) != 0)) {
      WriteAll(2, failure + "cannot switch to user " +
                      std::to_string(setup.uid) + ": " + strerror(errno) +
                      "\n");
      _exit(126);
    }
    execve(program.c_str(), argv.data(), envp.data());
    WriteAll(2, failure + strerror(errno) + "\n");
    _exit(127);
  }
  pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
}

Subprocess::~Subprocess() {
  if (!reaped_) {
    kill(pid_, SIGKILL);
    Reap(true);
  }
  if (pidfd_ >= 0) close(pidfd_);
}

double Subprocess::Elapsed() const { return Now() - start_; }

ExitStatus Subprocess::Reap(bool killed) {
  if (reaped_) return status_;
  int raw = 0;
  while (waitpid(pid_, &raw, 0) < 0 && errno == EINTR) {
  }
  reaped_ = true;
  status_.seconds = Elapsed();
  status_.killed = killed;
  status_.exited = WIFEXITED(raw) && !killed;
  if (WIFEXITED(raw)) status_.code = WEXITSTATUS(raw);
  if (WIFSIGNALED(raw)) status_.signal = WTERMSIG(raw);
  return status_;
}

bool Subprocess::HasEnded(ExitStatus* status) {
  if (!reaped_) {
    siginfo_t info;
    memset(&info, 0, sizeof(info));
    if (waitid(P_PID, static_cast<id_t>(pid_), &info,
               WEXITED | WNOHANG | WNOWAIT) != 0 ||
        info.si_pid == 0)
      return false;
    Reap(false);
  }
  *status = status_;
  return true;
}

ExitStatus Subprocess::Wait(double timeout) {
  if (reaped_) return status_;
  double until = Now() + timeout;
  ExitStatus status;
  while (!HasEnded(&status)) {
    double left = until - Now();
    if (left <= 0) {
      kill(pid_, SIGKILL);
      return Reap(true);
    }
    if (pidfd_ >= 0) {
      struct pollfd p = {pidfd_, POLLIN, 0};
      poll(&p, 1, static_cast<int>(left * 1000) + 1);
    } else {
      struct timespec pause = {0, 2000000};
      nanosleep(&pause, nullptr);
    }
  }
  return status;
}

ExitStatus Subprocess::Stop(double grace) {
  if (reaped_) return status_;
  kill(pid_, SIGTERM);
  return Wait(grace);
}

std::string ProgramResult::Describe() const {
  return "status=" + std::to_string(status) + " stdout=[" + out + "] stderr=[" +
         err + "]";
}

ProgramResult RunProgram(const std::vector<std::string>& argv,
                         const std::string& stdin_text,
                         const std::vector<std::string>& env, double timeout) {
  ProgramResult result;
  int in = stdin_text.empty() ? open("/dev/null", O_RDONLY | O_CLOEXEC)
                              : OpenTempFile(stdin_text);
  int out[2], err[2];
  if (in < 0 || pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) {
    perror("RunProgram");
    abort();
  }
  ProcessSetup setup;
  setup.argv = argv;
  setup.fds = {{0, in}, {1, out[1]}, {2, err[1]}};
  setup.env = env;
  Subprocess child(setup);
  close(in);
  close(out[1]);
  close(err[1]);

  struct pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
  std::string* sinks[2] = {&result.out, &result.err};
  double until = Now() + timeout;
  while ((fds[0].fd >= 0 || fds[1].fd >= 0) && Now() < until) {
    if (poll(fds, 2, 100) <= 0) continue;
    for (int i = 0; i < 2; i++) {
      if (fds[i].fd < 0 || fds[i].revents == 0) continue;
      if (!Drain(fds[i].fd, sinks[i])) {
        close(fds[i].fd);
        fds[i].fd = -1;
      }
    }
  }
  for (struct pollfd& p : fds)
    if (p.fd >= 0) close(p.fd);
  ExitStatus status = child.Wait(std::max(0.0, until - Now()));
  result.status = status.killed ? -1 : status.ShellStatus();
  if (status.killed)
    result.err += "\n(killed after " + std::to_string(timeout) + " s)";
  return result;
}
