// ListeningPrinter: a network printer of the test's own, played by
// "quillaroth-sim --listen 127.0.0.1:0 --log FILE OPTIONS..." (the
// simulator that this build made).
//
// Start() runs it and waits for its "listening on 127.0.0.1:PORT" line;
// Stop() (or the destructor) sends SIGTERM and waits for its end.  Its log
// lives in a temporary folder as long as the object.

#ifndef QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_
#define QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_

#include <memory>
#include <string>
#include <vector>

#include "tests/support/subprocess.h"

class ListeningPrinter {
 public:
  // Remembers the options that follow --listen and --log.
  explicit ListeningPrinter(std::vector<std::string> options);
  // Stops the printer and removes its folder.
  ~ListeningPrinter();

  ListeningPrinter(const ListeningPrinter&) = delete;
  ListeningPrinter& operator=(const ListeningPrinter&) = delete;

  // Starts it and waits (5 s at most) for its address; false with the
  // reason in *error.
  bool Start(std::string* error);
  // Sends SIGTERM and waits (5 s, then SIGKILL); how it ended.
  ExitStatus Stop();

  // The port it listens on (0 before Start).
  int port() const { return port_; }
  // "127.0.0.1:PORT".
  std::string address() const;
  // Its log so far.
  std::string Log() const;

 private:
  std::vector<std::string> options_;
  std::string folder_;
  std::unique_ptr<Subprocess> process_;
  int port_ = 0;
};

#endif  // QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_
