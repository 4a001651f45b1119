#include "tests/support/hostile_backend.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

extern char** environ;

namespace {

// Seconds on the monotonic clock.
double now() {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// Moves a descriptor above the five that the filter's side uses.
int lift(int fd) {
  if (fd < 0) return fd;
  int high = fcntl(fd, F_DUPFD_CLOEXEC, 10);
  close(fd);
  return high;
}

// A fresh, already unlinked temporary file holding text, at offset 0.
int temp_file(const std::string& text) {
  char path[] = "/tmp/hostile-XXXXXX";
  int fd = mkstemp(path);
  if (fd < 0) abort();
  unlink(path);
  if (!text.empty() &&
      write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    abort();
  lseek(fd, 0, SEEK_SET);
  return lift(fd);
}

// The words of $QUILLAROTH_FILTER_WRAPPER (split at blanks).
std::vector<std::string> wrapper_words() {
  std::vector<std::string> words;
  const char* wrapper = getenv("QUILLAROTH_FILTER_WRAPPER");
  if (wrapper == nullptr) return words;
  std::istringstream in(wrapper);
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

// Waits up to timeout seconds for fd to become readable; true if it did.
bool wait_readable(int fd, double timeout) {
  struct pollfd p = {fd, POLLIN, 0};
  int result;
  do {
    result = poll(&p, 1, static_cast<int>(timeout * 1000));
  } while (result < 0 && errno == EINTR);
  return result > 0;
}

}  // namespace

// Starts the filter with its channels wired to this process.
HostileBackend::HostileBackend(const std::string& filter_path,
                               const std::string& preload_path,
                               const std::string& text,
                               const HostileOptions& options) {
  signal(SIGPIPE, SIG_IGN);
  int in_fd = temp_file(text);
  err_fd_ = temp_file("");

  int out_pipe[2];
  if (pipe(out_pipe) != 0) abort();
  int out_w = lift(out_pipe[1]);
  stdout_ = lift(out_pipe[0]);

  int back_r = -1;
  if (options.back_channel) {
    int back_pipe[2];
    if (pipe(back_pipe) != 0) abort();
    back_r = lift(back_pipe[0]);
    back_ = lift(back_pipe[1]);
    back_peek_ = fcntl(back_r, F_DUPFD_CLOEXEC, 10);
  }
  int side_theirs = -1;
  if (options.side_channel) {
    int pair[2];
    if (socketpair(AF_LOCAL, SOCK_STREAM, 0, pair) != 0) abort();
    side_ = lift(pair[0]);
    side_theirs = lift(pair[1]);
  }

  // Everything the child needs is prepared before fork(): the child only
  // moves descriptors and execs.
  std::vector<std::string> args = wrapper_words();
  args.push_back(filter_path);
  for (const char* word : {"1", "user", "title", "1", ""}) args.push_back(word);
  if (!options.command_file.empty()) args.push_back(options.command_file);
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(&arg[0]);
  argv.push_back(nullptr);

  std::vector<std::string> env;
  for (char** e = environ; *e != nullptr; e++)
    if (strncmp(*e, "LD_PRELOAD=", 11) != 0) env.push_back(*e);
  env.push_back("LD_PRELOAD=" + preload_path);
  std::vector<char*> envp;
  for (std::string& e : env) envp.push_back(&e[0]);
  envp.push_back(nullptr);

  start_ = now();
  pid_ = fork();
  if (pid_ < 0) abort();
  if (pid_ == 0) {
    dup2(in_fd, 0);
    dup2(out_w, 1);
    dup2(err_fd_, 2);
    if (back_r >= 0) dup2(back_r, 3); else close(3);
    if (side_theirs >= 0) dup2(side_theirs, 4); else close(4);
    for (int fd = 5; fd < 1024; fd++) close(fd);
    if (options.uid >= 0 && (setgid(static_cast<gid_t>(options.uid)) != 0 ||
                             setuid(static_cast<uid_t>(options.uid)) != 0))
      _exit(126);
    execvpe(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  close(in_fd);
  close(out_w);
  if (back_r >= 0) close(back_r);
  if (side_theirs >= 0) close(side_theirs);
  pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  fcntl(stdout_, F_SETFL, O_NONBLOCK);
}

// Leaves nothing running and nothing open.
HostileBackend::~HostileBackend() {
  if (!waited_ && pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  for (int fd : {pidfd_, side_, back_, back_peek_, stdout_, err_fd_})
    if (fd >= 0) close(fd);
}

// Seconds since the start.
double HostileBackend::Elapsed() const { return now() - start_; }

// Reads one side-channel request, header and data.
int HostileBackend::ReadRequest(double timeout) {
  if (side_ < 0) return kRequestEof;
  struct pollfd p[2] = {{side_, POLLIN, 0}, {pidfd_, POLLIN, 0}};
  int result;
  do {
    result = poll(p, 2, static_cast<int>(timeout * Slowdown() * 1000));
  } while (result < 0 && errno == EINTR);
  if (result == 0) return kRequestTimeout;
  if ((p[0].revents & (POLLIN | POLLHUP)) == 0) return kRequestExited;
  unsigned char message[4 + 65536];
  ssize_t n = recv(side_, message, sizeof(message), 0);
  if (n <= 0) return kRequestEof;
  return message[0];
}

// One write of raw bytes to the side channel.
bool HostileBackend::SendSide(const std::string& bytes) {
  if (side_ < 0) return false;
  return send(side_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(bytes.size());
}

// One write of raw bytes to the back channel.
bool HostileBackend::SendBack(const std::string& bytes) {
  if (back_ < 0) return false;
  return write(back_, bytes.data(), bytes.size()) ==
         static_cast<ssize_t>(bytes.size());
}

// Polls the unread byte count of the back channel until it is 0.
bool HostileBackend::WaitBackDrained(double timeout) {
  if (back_peek_ < 0) return true;
  double until = now() + timeout;
  for (;;) {
    int unread = 0;
    if (ioctl(back_peek_, FIONREAD, &unread) != 0) return false;
    if (unread == 0) return true;
    if (now() > until) return false;
    struct timespec pause = {0, 200000};
    nanosleep(&pause, nullptr);
  }
}

// The filter's next back-channel read sees the end of the file.
void HostileBackend::CloseBack() {
  if (back_ >= 0) close(back_);
  if (back_peek_ >= 0) close(back_peek_);
  back_ = back_peek_ = -1;
}

// The filter's next side-channel request finds nobody.
void HostileBackend::CloseSide() {
  if (side_ >= 0) close(side_);
  side_ = -1;
}

// The filter's next write to stdout finds no reader.
void HostileBackend::CloseStdoutReader() {
  TakeStdout();
  if (stdout_ >= 0) close(stdout_);
  stdout_ = -1;
}

// Collects what is waiting in the stdout pipe.
std::string HostileBackend::TakeStdout() {
  if (stdout_ < 0) return out_;
  char buffer[4096];
  ssize_t n;
  while ((n = read(stdout_, buffer, sizeof(buffer))) > 0)
    out_.append(buffer, static_cast<size_t>(n));
  return out_;
}

// Waits for the end of the run, then gathers stdout and stderr.
ExitInfo HostileBackend::Wait(double timeout) {
  ExitInfo info;
  if (!wait_readable(pidfd_, timeout * Slowdown())) {
    kill(pid_, SIGKILL);
    info.killed = true;
  }
  int status = 0;
  waitpid(pid_, &status, 0);
  waited_ = true;
  info.seconds = Elapsed();
  info.exited = WIFEXITED(status) && !info.killed;
  if (WIFEXITED(status)) info.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) info.signal = WTERMSIG(status);
  if (stdout_ >= 0) {
    fcntl(stdout_, F_SETFL, 0);
    char buffer[4096];
    ssize_t n;
    while ((n = read(stdout_, buffer, sizeof(buffer))) > 0)
      out_.append(buffer, static_cast<size_t>(n));
  }
  info.out = out_;
  lseek(err_fd_, 0, SEEK_SET);
  char buffer[4096];
  ssize_t n;
  while ((n = read(err_fd_, buffer, sizeof(buffer))) > 0)
    info.err.append(buffer, static_cast<size_t>(n));
  return info;
}

// Frames a side-channel message the way libcups does.
std::string HostileBackend::Message(int command, int status,
                                    const std::string& data) {
  std::string bytes;
  bytes += static_cast<char>(command);
  bytes += static_cast<char>(status);
  bytes += static_cast<char>((data.size() >> 8) & 0xff);
  bytes += static_cast<char>(data.size() & 0xff);
  return bytes + data;
}

// Memory checkers run the filter some twenty times slower.
double HostileBackend::Slowdown() {
  return wrapper_words().empty() ? 1.0 : 20.0;
}
