#include "tests/support/stderr_writes.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

StderrWrites::StderrWrites() : write_fd_(OpenPair()), redirect_(write_fd_) {
  close(write_fd_);
}

int StderrWrites::OpenPair() {
  int fds[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds) != 0) abort();
  int size = 4 * 1024 * 1024;
  setsockopt(fds[1], SOL_SOCKET, SO_SNDBUF, &size, sizeof(size));
  setsockopt(fds[0], SOL_SOCKET, SO_RCVBUF, &size, sizeof(size));
  read_fd_ = fds[0];
  return fds[1];
}

StderrWrites::~StderrWrites() {
  redirect_.Restore();
  if (read_fd_ >= 0) close(read_fd_);
}

std::vector<std::string> StderrWrites::Writes() {
  redirect_.Restore();
  fcntl(read_fd_, F_SETFL, fcntl(read_fd_, F_GETFL) | O_NONBLOCK);
  std::vector<std::string> writes;
  std::vector<char> buffer(1024 * 1024);
  ssize_t n;
  while ((n = recv(read_fd_, buffer.data(), buffer.size(), 0)) > 0)
    writes.emplace_back(buffer.data(), static_cast<size_t>(n));
  return writes;
}

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
