#include "tests/support/hostile_backend.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "tests/support/built_tools.h"
#include "tests/support/files.h"

namespace {

// Moves a descriptor above the five that the filter's side uses.
int Lift(int fd) {
  if (fd < 0) return fd;
  int high = fcntl(fd, F_DUPFD_CLOEXEC, 10);
  close(fd);
  return high;
}

}  // namespace

HostileBackend::HostileBackend(const std::string& text,
                               const HostileOptions& options) {
  signal(SIGPIPE, SIG_IGN);
  int in_fd = Lift(OpenTempFile(text));
  err_fd_ = Lift(OpenTempFile());

  int out_pipe[2];
  if (pipe2(out_pipe, O_CLOEXEC) != 0) abort();
  int out_w = Lift(out_pipe[1]);
  stdout_ = Lift(out_pipe[0]);

  ProcessSetup setup;
  setup.fds = {{0, in_fd}, {1, out_w}, {2, err_fd_}};
  int back_r = -1;
  if (options.back_channel) {
    int back_pipe[2];
    if (pipe2(back_pipe, O_CLOEXEC) != 0) abort();
    back_r = Lift(back_pipe[0]);
    back_ = Lift(back_pipe[1]);
    back_peek_ = fcntl(back_r, F_DUPFD_CLOEXEC, 10);
    setup.fds.push_back({3, back_r});
  }
  int side_theirs = -1;
  if (options.side_channel) {
    int pair[2];
    if (socketpair(AF_LOCAL, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) abort();
    side_ = Lift(pair[0]);
    side_theirs = Lift(pair[1]);
    setup.fds.push_back({4, side_theirs});
  }

  const ToolPaths& tools = BuiltTools();
  setup.argv = FilterCommand(options.uid >= 0 ? ReachableCopy(tools.filter)
                                              : tools.filter);
  for (const char* word : {"1", "user", "title", "1", ""})
    setup.argv.push_back(word);
  if (!options.command_file.empty()) setup.argv.push_back(options.command_file);
  setup.env = {"LD_PRELOAD=" + PreloadValue({tools.fake_sleep})};
  setup.uid = options.uid;
  filter_ = std::make_unique<Subprocess>(setup);

  close(in_fd);
  close(out_w);
  if (back_r >= 0) close(back_r);
  if (side_theirs >= 0) close(side_theirs);
  fcntl(stdout_, F_SETFL, O_NONBLOCK);
}

HostileBackend::~HostileBackend() {
  filter_.reset();
  for (int fd : {side_, back_, back_peek_, stdout_, err_fd_})
    if (fd >= 0) close(fd);
}

int HostileBackend::ReadRequest(double timeout) {
  if (side_ < 0) return kRequestEof;
  struct pollfd p[2] = {{side_, POLLIN, 0}, {filter_->pidfd(), POLLIN, 0}};
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

bool HostileBackend::SendSide(const std::string& bytes) {
  if (side_ < 0) return false;
  return send(side_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
         static_cast<ssize_t>(bytes.size());
}

bool HostileBackend::SendBack(const std::string& bytes) {
  if (back_ < 0) return false;
  return write(back_, bytes.data(), bytes.size()) ==
         static_cast<ssize_t>(bytes.size());
}

bool HostileBackend::WaitBackDrained(double timeout) {
  if (back_peek_ < 0) return true;
  double until = Now() + timeout;
  for (;;) {
    int unread = 0;
    if (ioctl(back_peek_, FIONREAD, &unread) != 0) return false;
    if (unread == 0) return true;
    if (Now() > until) return false;
    struct timespec pause = {0, 200000};
    nanosleep(&pause, nullptr);
  }
}

void HostileBackend::CloseBack() {
  if (back_ >= 0) close(back_);
  if (back_peek_ >= 0) close(back_peek_);
  back_ = back_peek_ = -1;
}

void HostileBackend::CloseSide() {
  if (side_ >= 0) close(side_);
  side_ = -1;
}

void HostileBackend::CloseStdoutReader() {
  TakeStdout();
  if (stdout_ >= 0) close(stdout_);
  stdout_ = -1;
}

std::string HostileBackend::TakeStdout() {
  if (stdout_ < 0) return out_;
  char buffer[4096];
  ssize_t n;
  while ((n = read(stdout_, buffer, sizeof(buffer))) > 0)
    out_.append(buffer, static_cast<size_t>(n));
  return out_;
}

ExitInfo HostileBackend::Wait(double timeout) {
  ExitInfo info;
  info.exit = filter_->Wait(timeout * Slowdown());
  if (stdout_ >= 0) fcntl(stdout_, F_SETFL, 0);
  info.out = TakeStdout();
  info.err = ReadDescriptor(err_fd_);
  return info;
}

std::string HostileBackend::Message(int command, int status,
                                    const std::string& data) {
  std::string bytes;
  bytes += static_cast<char>(command);
  bytes += static_cast<char>(status);
  bytes += static_cast<char>((data.size() >> 8) & 0xff);
  bytes += static_cast<char>(data.size() & 0xff);
  return bytes + data;
}
