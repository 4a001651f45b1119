// HostileBackend: plays the CUPS backend's side of the filter's channels by
// hand, byte for byte, so that tests can answer the way no sane backend
// would.
//
// The filter built here is started as the scheduler starts it beside a
// backend:
//   fd 0  the command text (a temporary file)
//   fd 1  a pipe to us (the escape commands; TakeStdout() reads it)
//   fd 2  a temporary file (ExitInfo::err)
//   fd 3  the read end of the back-channel pipe (SendBack() writes to it)
//   fd 4  one end of the side-channel socketpair (ReadRequest()/SendSide())
// Either channel can be left out (the descriptor is then closed in the
// filter), closed later, or abused.  Side-channel messages on the wire are
// what libcups sends: command byte, status byte, 16-bit big-endian data
// length, data.
//
// The filter runs with the sleep interposer preloaded, so only real poll
// time-outs cost time, behind the wrapper of $QUILLAROTH_FILTER_WRAPPER
// (for example valgrind) when one is set.

#ifndef QUILLAROTH_TESTS_SUPPORT_HOSTILE_BACKEND_H_
#define QUILLAROTH_TESTS_SUPPORT_HOSTILE_BACKEND_H_

#include <memory>
#include <string>

#include "tests/support/subprocess.h"

// How the filter's run ended, and what it wrote.
struct ExitInfo {
  ExitStatus exit;  // how it ended, and when
  std::string err;  // everything written to stderr
  std::string out;  // everything written to stdout
};

// What ReadRequest() saw instead of a request.
constexpr int kRequestEof = -1;      // the filter closed its side channel
constexpr int kRequestTimeout = -2;  // nothing came in time
constexpr int kRequestExited = -3;   // the filter has ended

struct HostileOptions {
  bool back_channel = true;  // give the filter fd 3
  bool side_channel = true;  // give the filter fd 4
  std::string command_file;  // passed as the sixth argument when not empty
  int uid = -1;              // run the filter as this user (when >= 0),
                             // from a copy that the user can reach
};

class HostileBackend {
 public:
  // Starts the filter with the five job arguments (plus the command file of
  // the options) and text on stdin.
  explicit HostileBackend(const std::string& text,
                          const HostileOptions& options = HostileOptions());
  // Kills the filter if it still runs; closes everything.
  ~HostileBackend();

  HostileBackend(const HostileBackend&) = delete;
  HostileBackend& operator=(const HostileBackend&) = delete;

  // Waits up to timeout seconds for the next side-channel request and
  // returns its command byte, or kRequestEof / kRequestTimeout /
  // kRequestExited.
  int ReadRequest(double timeout);
  // Writes raw bytes to the side channel in one write; false on failure.
  bool SendSide(const std::string& bytes);
  // Writes raw bytes to the back channel in one write; false on failure.
  bool SendBack(const std::string& bytes);
  // Waits until the filter has read everything in the back channel.
  bool WaitBackDrained(double timeout);
  // Closes our end of a channel, or the reader of the filter's stdout.
  void CloseBack();
  void CloseSide();
  void CloseStdoutReader();
  // Reads what the filter has written to stdout so far.
  std::string TakeStdout();
  // Waits for the filter to end, at most timeout seconds, then kills it.
  ExitInfo Wait(double timeout);

  // A side-channel message: command, status, length (big-endian), data.
  static std::string Message(int command, int status, const std::string& data);

 private:
  std::unique_ptr<Subprocess> filter_;
  int side_ = -1;       // our end of the side channel
  int back_ = -1;       // write end of the back channel
  int back_peek_ = -1;  // a kept read end, to see what is unread
  int stdout_ = -1;     // read end of the filter's stdout
  int err_fd_ = -1;     // the filter's stderr file
  std::string out_;     // stdout bytes taken so far
};

#endif  // QUILLAROTH_TESTS_SUPPORT_HOSTILE_BACKEND_H_
