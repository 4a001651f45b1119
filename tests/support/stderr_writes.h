// StderrWrites: collects what the code under test writes to stderr, one
// string per write() call.
//
// The scheduler reads a filter's stderr line by line; a line that leaves the
// process in several writes can be interleaved with another writer's output
// or cut short by a signal.  This redirects file descriptor 2 to one end of
// a SOCK_SEQPACKET socket pair, which keeps the boundary of every write, so
// a test can check that each log line went out in exactly one write.

#ifndef QUILLAROTH_TESTS_SUPPORT_STDERR_WRITES_H_
#define QUILLAROTH_TESTS_SUPPORT_STDERR_WRITES_H_

#include <string>
#include <vector>

#include "tests/support/stderr_redirect.h"

class StderrWrites {
 public:
  // Starts collecting.
  StderrWrites();
  // Stops collecting if Writes() was not called, and closes the socket.
  ~StderrWrites();

  StderrWrites(const StderrWrites&) = delete;
  StderrWrites& operator=(const StderrWrites&) = delete;

  // Stops collecting and returns the bytes of every write, in order.
  std::vector<std::string> Writes();

 private:
  // Makes a socket pair that keeps write boundaries, with room for every
  // write of a test so that no write ever blocks; sets read_fd_ and returns
  // the writing end.
  int OpenPair();

  int read_fd_ = -1;
  int write_fd_;
  StderrRedirect redirect_;
};

// Splits text after every line feed: the writes that a text made of whole
// lines should arrive in when each line is written at once; a tail without
// one is kept as is.
std::vector<std::string> SplitLines(const std::string& text);

#endif  // QUILLAROTH_TESTS_SUPPORT_STDERR_WRITES_H_
