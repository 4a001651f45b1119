#include "tests/support/stderr_capture.h"

#include <unistd.h>

#include <cstdio>

#include "tests/support/files.h"

StderrCapture::StderrCapture() {
  fflush(stderr);
  file_fd_ = OpenTempFile();
  saved_fd_ = dup(2);
  dup2(file_fd_, 2);
}

StderrCapture::~StderrCapture() {
  Restore();
  if (file_fd_ >= 0) close(file_fd_);
}

void StderrCapture::Restore() {
  if (saved_fd_ < 0) return;
  fflush(stderr);
  dup2(saved_fd_, 2);
  close(saved_fd_);
  saved_fd_ = -1;
}

std::string StderrCapture::Text() {
  Restore();
  return ReadDescriptor(file_fd_);
}
