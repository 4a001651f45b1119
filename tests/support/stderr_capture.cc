#include "tests/support/stderr_capture.h"

#include <unistd.h>

#include "tests/support/files.h"

StderrCapture::StderrCapture() : file_fd_(OpenTempFile()), redirect_(file_fd_) {}

StderrCapture::~StderrCapture() {
  redirect_.Restore();
  if (file_fd_ >= 0) close(file_fd_);
}

std::string StderrCapture::Text() {
  redirect_.Restore();
  return ReadDescriptor(file_fd_);
}
