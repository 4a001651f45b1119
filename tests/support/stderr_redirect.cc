#include "tests/support/stderr_redirect.h"

#include <unistd.h>

#include <cstdio>

StderrRedirect::StderrRedirect(int fd) {
  fflush(stderr);
  saved_fd_ = dup(2);
  dup2(fd, 2);
}

StderrRedirect::~StderrRedirect() { Restore(); }

void StderrRedirect::Restore() {
  if (saved_fd_ < 0) return;
  fflush(stderr);
  dup2(saved_fd_, 2);
  close(saved_fd_);
  saved_fd_ = -1;
}
