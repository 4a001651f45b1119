#include "tests/support/stderr_writes.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

// Sends fd 2 to a fresh socket pair that keeps write boundaries.
StderrWrites::StderrWrites() {
  fflush(stderr);
  int fds[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) abort();
  // Room for every write of a test, so that no write ever blocks.
  int size = 4 * 1024 * 1024;
  setsockopt(fds[1], SOL_SOCKET, SO_SNDBUF, &size, sizeof(size));
  setsockopt(fds[0], SOL_SOCKET, SO_RCVBUF, &size, sizeof(size));
  read_fd_ = fds[0];
  saved_fd_ = dup(2);
  dup2(fds[1], 2);
  close(fds[1]);
}

// Gives the test its stderr back.
StderrWrites::~StderrWrites() {
  Restore();
  if (read_fd_ >= 0) close(read_fd_);
}

// Restores fd 2 from the saved copy, once.
void StderrWrites::Restore() {
  if (saved_fd_ < 0) return;
  fflush(stderr);
  dup2(saved_fd_, 2);
  close(saved_fd_);
  saved_fd_ = -1;
}

// Stops collecting and reads every message that is waiting.
std::vector<std::string> StderrWrites::Writes() {
  Restore();
  fcntl(read_fd_, F_SETFL, fcntl(read_fd_, F_GETFL) | O_NONBLOCK);
  std::vector<std::string> writes;
  std::vector<char> buffer(1024 * 1024);
  ssize_t n;
  while ((n = recv(read_fd_, buffer.data(), buffer.size(), 0)) > 0)
    writes.emplace_back(buffer.data(), static_cast<size_t>(n));
  return writes;
}

// Splits text after every line feed; a tail without one is kept as is.
std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    end = (end == std::string::npos) ? text.size() : end + 1;
    lines.push_back(text.substr(start, end - start));
    start = end;
  }
  return lines;
}
