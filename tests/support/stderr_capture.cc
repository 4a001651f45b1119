#include "tests/support/stderr_capture.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

// Sends fd 2 to a fresh, already unlinked temporary file.
StderrCapture::StderrCapture() {
  fflush(stderr);
  char path[] = "/tmp/stderr-capture-XXXXXX";
  file_fd_ = mkstemp(path);
  if (file_fd_ < 0) abort();
  unlink(path);
  saved_fd_ = dup(2);
  dup2(file_fd_, 2);
}

// Gives the test its stderr back.
StderrCapture::~StderrCapture() {
  Restore();
  if (file_fd_ >= 0) close(file_fd_);
}

// Restores fd 2 from the saved copy, once.
void StderrCapture::Restore() {
  if (saved_fd_ < 0) return;
  fflush(stderr);
  dup2(saved_fd_, 2);
  close(saved_fd_);
  saved_fd_ = -1;
}

// Stops capturing and reads the whole temporary file.
std::string StderrCapture::Text() {
  Restore();
  std::string text;
  char buffer[4096];
  ssize_t n;
  lseek(file_fd_, 0, SEEK_SET);
  while ((n = read(file_fd_, buffer, sizeof(buffer))) > 0)
    text.append(buffer, static_cast<size_t>(n));
  return text;
}
