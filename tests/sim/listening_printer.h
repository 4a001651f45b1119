// ListeningPrinter: a network printer of the test's own, played by
// "quillaroth-sim --listen 127.0.0.1:0 --log FILE OPTIONS...".
//
// Start() runs it and waits for the "listening on 127.0.0.1:PORT" line;
// Stop() (or the destructor) sends SIGTERM and waits for it.  Its log and
// a temporary folder for it live as long as the object.

#ifndef QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_
#define QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_

#include <sys/types.h>

#include <string>
#include <vector>

class ListeningPrinter {
 public:
  // Remembers the simulator's path and the options after --listen.
  ListeningPrinter(std::string sim_path, std::vector<std::string> options);
  // Stops the printer and removes its folder.
  ~ListeningPrinter();

  ListeningPrinter(const ListeningPrinter&) = delete;
  ListeningPrinter& operator=(const ListeningPrinter&) = delete;

  // Starts it and waits (5 s at most) for its address; false with the
  // reason in *error.
  bool Start(std::string* error);
  // Sends SIGTERM and waits; the exit status (128 + signal if killed), or
  // -1 when it was not running.
  int Stop();

  // The port it listens on (0 before Start).
  int port() const { return port_; }
  // "127.0.0.1:PORT".
  std::string address() const;
  // Its log so far.
  std::string Log() const;

 private:
  std::string sim_path_;
  std::vector<std::string> options_;
  std::string folder_;
  pid_t pid_ = -1;
  int port_ = 0;
};

#endif  // QUILLAROTH_TESTS_SIM_LISTENING_PRINTER_H_
