#include "sim/network_printer.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "sim/clock.h"
#include "sim/option_table.h"
#include "sim/printer_core.h"
#include "sim/reply_transport.h"

namespace {

constexpr int kBacklog = 8;
// The pause between the pieces of a reply, so that the host's reads see
// them one by one.
constexpr double kPieceGap = 0.02;

volatile sig_atomic_t stop_signal = 0;

// Notes the signal that ends the run.
void note_stop(int signal) { stop_signal = signal; }

// "127.0.0.1:9100", "[::1]:9100" (port left out when with_port is false).
std::string address_text(const struct sockaddr_storage& address,
                         bool with_port) {
  char host[NI_MAXHOST];
  char port[NI_MAXSERV];
  if (getnameinfo(reinterpret_cast<const struct sockaddr*>(&address),
                  sizeof address, host, sizeof host, port, sizeof port,
                  NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    return "?";
  std::string text = address.ss_family == AF_INET6
                         ? "[" + std::string(host) + "]"
                         : std::string(host);
  return with_port ? text + ":" + port : text;
}

// One host connection and the printer behind it.
struct Connection {
  Connection(long number_in, int fd_in, Scenario scenario)
      : number(number_in), fd(fd_in), printer(std::move(scenario)) {}

  long number;
  int fd;
  PrinterCore printer;
  std::deque<Bytes> pieces;  // reply pieces still to send
  double next_piece_time = 0;
  bool reset_after_pieces = false;
  bool close_after_pieces = false;
  bool closed = false;
};

// A reply on a connection: its pieces queued to go with a pause between
// them (SendDue), then the ending.
class ConnectionReply : public ReplyTransport {
 public:
  ConnectionReply(Connection& connection, SimLog& log)
      : connection_(connection), log_(log) {}

  void SendPiece(const uint8_t* data, size_t size) override {
    connection_.pieces.emplace_back(data, data + size);
  }
  void ResetAfterPieces() override { connection_.reset_after_pieces = true; }
  void CloseInstead() override {
    log_.Line("connection %ld closed by the printer", connection_.number);
    connection_.close_after_pieces = true;
  }
  std::string ResetWords() const override {
    return "connection " + std::to_string(connection_.number) + " reset";
  }

 private:
  Connection& connection_;
  SimLog& log_;
};

class NetworkPrinter {
 public:
  // Takes the settings and the log.
  NetworkPrinter(const SimSettings& settings, SimLog& log)
      : settings_(settings), log_(log) {}

  // Binds, prints the address and serves until a stop signal.
  int Run();

 private:
  // Binds the listening socket (listening unless every connection is to be
  // refused); false with a message on stderr.
  bool Bind();
  // Takes one waiting connection.
  void Accept();
  // Stops listening but keeps the port: connections are refused.
  void Refuse();
  // Reads what the host sent and lets the printer act on it.
  void Read(Connection& connection);
  // Logs the printer's reactions and carries out its replies.
  void Handle(Connection& connection, const std::vector<PrinterEvent>& events);
  // Sends the pieces that are due, then the ending that follows them.
  void SendDue(Connection& connection);
  // Closes the connection, resetting it when reset is true.
  void Close(Connection& connection, bool reset);
  // Milliseconds until the next piece is due, or -1.
  int PollTimeout() const;

  const SimSettings& settings_;
  SimLog& log_;
  int listen_fd_ = -1;
  bool listening_ = false;
  struct sockaddr_storage bound_ = {};
  socklen_t bound_size_ = 0;
  long accepted_ = 0;
  std::list<Connection> connections_;
  int save_fd_ = -1;
};

int NetworkPrinter::Run() {
  if (!Bind()) return 2;
  if (!settings_.stdout_path.empty()) {
    save_fd_ = open(settings_.stdout_path.c_str(),
                    O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (save_fd_ < 0) {
      fprintf(stderr, "quillaroth-sim: %s: %s\n", settings_.stdout_path.c_str(),
              strerror(errno));
      return 2;
    }
  }
  // The stop signals are let through only while waiting in ppoll().
  struct sigaction action = {};
  action.sa_handler = note_stop;
  sigaction(SIGTERM, &action, nullptr);
  sigaction(SIGINT, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigset_t waiting;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigaddset(&blocked, SIGINT);
  sigprocmask(SIG_BLOCK, &blocked, &waiting);
  sigdelset(&waiting, SIGTERM);
  sigdelset(&waiting, SIGINT);

  printf("listening on %s\n", address_text(bound_, true).c_str());
  fflush(stdout);
  if (!listening_) log_.Line("refusing connections");

  while (stop_signal == 0) {
    std::vector<struct pollfd> fds;
    std::vector<Connection*> readers;
    if (listening_) fds.push_back({listen_fd_, POLLIN, 0});
    for (Connection& connection : connections_) {
      if (connection.printer.hung()) continue;  // it reads nothing
      fds.push_back({connection.fd, POLLIN, 0});
      readers.push_back(&connection);
    }
    int timeout = PollTimeout();
    struct timespec wait = {timeout / 1000, (timeout % 1000) * 1000000L};
    int ready = ppoll(fds.data(), fds.size(), timeout < 0 ? nullptr : &wait,
                      &waiting);
    if (ready < 0 && errno != EINTR) {
      log_.Line("poll() failed: %s", strerror(errno));
      break;
    }
    size_t first_reader = listening_ ? 1 : 0;
    if (ready > 0 && listening_ && fds[0].revents != 0) Accept();
    for (size_t i = 0; ready > 0 && i < readers.size(); i++)
      if (fds[first_reader + i].revents != 0) Read(*readers[i]);
    for (Connection& connection : connections_) SendDue(connection);
    connections_.remove_if([](const Connection& c) { return c.closed; });
  }

  if (stop_signal != 0)
    log_.Line("stopped by signal %d (%s)", static_cast<int>(stop_signal),
              strsignal(stop_signal));
  for (Connection& connection : connections_) close(connection.fd);
  close(listen_fd_);
  if (save_fd_ >= 0) close(save_fd_);
  return 0;
}

bool NetworkPrinter::Bind() {
  struct addrinfo hints = {};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  struct addrinfo* found = nullptr;
  std::string port = std::to_string(settings_.listen_port);
  std::string where = settings_.listen_host + ":" + port;
  int status = getaddrinfo(settings_.listen_host.c_str(), port.c_str(), &hints,
                           &found);
  if (status != 0) {
    fprintf(stderr, "quillaroth-sim: cannot listen on %s: %s\n", where.c_str(),
            gai_strerror(status));
    return false;
  }
  int error = 0;
  for (struct addrinfo* at = found; at != nullptr; at = at->ai_next) {
    int fd = socket(at->ai_family, at->ai_socktype | SOCK_CLOEXEC,
                    at->ai_protocol);
    if (fd < 0) {
      error = errno;
      continue;
    }
    int on = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    bool refuse_all = settings_.accept_limit == 0;
    if (bind(fd, at->ai_addr, at->ai_addrlen) != 0 ||
        (!refuse_all && listen(fd, kBacklog) != 0)) {
      error = errno;
      close(fd);
      continue;
    }
    listen_fd_ = fd;
    listening_ = !refuse_all;
    bound_size_ = sizeof bound_;
    getsockname(fd, reinterpret_cast<struct sockaddr*>(&bound_), &bound_size_);
    break;
  }
  freeaddrinfo(found);
  if (listen_fd_ < 0) {
    fprintf(stderr, "quillaroth-sim: cannot listen on %s: %s\n", where.c_str(),
            strerror(error));
    return false;
  }
  return true;
}

void NetworkPrinter::Accept() {
  struct sockaddr_storage peer = {};
  socklen_t size = sizeof peer;
  int fd = accept4(listen_fd_, reinterpret_cast<struct sockaddr*>(&peer),
                   &size, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (fd < 0) return;
  int on = 1;
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  long number = ++accepted_;
  log_.Line("connection %ld from %s", number,
            address_text(peer, false).c_str());
  connections_.emplace_back(number, fd,
                            scenario_for_connection(settings_, number));
  Handle(connections_.back(), connections_.back().printer.Start());
  if (settings_.accept_limit > 0 && accepted_ >= settings_.accept_limit)
    Refuse();
}

void NetworkPrinter::Refuse() {
  log_.Line("refusing further connections");
  close(listen_fd_);
  listening_ = false;
  // The same port, bound but not listening: connections are refused, and
  // no other program takes the port meanwhile.
  listen_fd_ = socket(bound_.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int on = 1;
  setsockopt(listen_fd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (bind(listen_fd_, reinterpret_cast<struct sockaddr*>(&bound_),
           bound_size_) != 0)
    log_.Line("cannot keep the port bound: %s", strerror(errno));
}

void NetworkPrinter::Read(Connection& connection) {
  uint8_t buffer[4096];
  ssize_t n = recv(connection.fd, buffer, sizeof buffer, 0);
  if (n < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (n < 0) {
    log_.Line("connection %ld failed: %s", connection.number, strerror(errno));
    Close(connection, false);
    return;
  }
  if (n == 0) {
    Handle(connection, connection.printer.Finish());
    log_.Line("connection %ld closed by the host", connection.number);
    // What the printer still has to send goes first.
    connection.close_after_pieces = true;
    SendDue(connection);
    return;
  }
  if (save_fd_ >= 0 && write(save_fd_, buffer, static_cast<size_t>(n)) != n)
    log_.Line("saving the received bytes failed: %s", strerror(errno));
  Handle(connection, connection.printer.Take(buffer, static_cast<size_t>(n)));
}

void NetworkPrinter::Handle(Connection& connection,
                            const std::vector<PrinterEvent>& events) {
  for (const PrinterEvent& event : events) {
    log_.Line("%s", event.log_line.c_str());
    if (!event.is_query || connection.closed) continue;
    ConnectionReply reply(connection, log_);
    carry_out_reply(event.reply, log_, reply);
    SendDue(connection);
  }
}

void NetworkPrinter::SendDue(Connection& connection) {
  while (!connection.closed && !connection.pieces.empty() &&
         monotonic_seconds() >= connection.next_piece_time) {
    const Bytes& piece = connection.pieces.front();
    if (send(connection.fd, piece.data(), piece.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(piece.size())) {
      log_.Line("connection %ld: send failed: %s", connection.number,
                strerror(errno));
      Close(connection, false);
      return;
    }
    connection.pieces.pop_front();
    connection.next_piece_time = monotonic_seconds() + kPieceGap;
  }
  if (connection.closed || !connection.pieces.empty()) return;
  if (connection.reset_after_pieces) {
    Close(connection, true);
  } else if (connection.close_after_pieces) {
    Close(connection, false);
  }
}

void NetworkPrinter::Close(Connection& connection, bool reset) {
  if (reset) {
    // No lingering: close() sends a reset instead of a FIN.
    struct linger now_please = {1, 0};
    setsockopt(connection.fd, SOL_SOCKET, SO_LINGER, &now_please,
               sizeof now_please);
  }
  close(connection.fd);
  connection.closed = true;
  connection.pieces.clear();
}

int NetworkPrinter::PollTimeout() const {
  double soonest = -1;
  for (const Connection& connection : connections_) {
    if (connection.closed || connection.pieces.empty()) continue;
    double wait = connection.next_piece_time - monotonic_seconds();
    if (wait < 0) wait = 0;
    if (soonest < 0 || wait < soonest) soonest = wait;
  }
  return soonest < 0 ? -1 : static_cast<int>(soonest * 1000) + 1;
}

}  // namespace

int serve_network_printer(const SimSettings& settings, SimLog& log) {
  NetworkPrinter printer(settings, log);
  return printer.Run();
}
