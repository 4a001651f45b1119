// StderrCapture: collects what the code under test writes to stderr.
//
// Redirects file descriptor 2 to a temporary file for the life of the object
// (or until Text() is called) so that tests compare the exact bytes that the
// scheduler would read, written by fprintf(stderr, ...) and friends alike.

#ifndef QUILLAROTH_TESTS_SUPPORT_STDERR_CAPTURE_H_
#define QUILLAROTH_TESTS_SUPPORT_STDERR_CAPTURE_H_

#include <string>

#include "tests/support/stderr_redirect.h"

class StderrCapture {
 public:
  // Starts capturing.
  StderrCapture();
  // Stops capturing if Text() was not called, and closes the file.
  ~StderrCapture();

  StderrCapture(const StderrCapture&) = delete;
  StderrCapture& operator=(const StderrCapture&) = delete;

  // Stops capturing and returns every byte written meanwhile.
  std::string Text();

 private:
  int file_fd_;
  StderrRedirect redirect_;
};

#endif  // QUILLAROTH_TESTS_SUPPORT_STDERR_CAPTURE_H_
