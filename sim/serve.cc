// The serving loop of the simulated printer.

#include "sim/serve.h"

#include <cups/cups.h>
#include <cups/sidechannel.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <deque>

#include "sim/clock.h"
#include "sim/printer_core.h"
#include "sim/reply_transport.h"
#include "sim/value_parsers.h"

namespace {

// How long a further piece waits for the filter to empty the pipe.
constexpr double kPieceWaitLimit = 10.0;

// True when the descriptor is open.
bool fd_is_open(int fd) { return fcntl(fd, F_GETFD) != -1; }

class PrinterServer : public ReplyTransport {
 public:
  // Takes the script, the descriptors and the log.
  PrinterServer(const Scenario& scenario, const ServeChannels& channels,
                SimLog& log)
      : scenario_(scenario), channels_(channels), log_(log),
        printer_(scenario) {}

  // Runs the loop until the filter is done with the channels.
  void Run();

 private:
  // Polls the channels once, waiting at most timeout_ms.
  void PollOnce(int timeout_ms);
  // Reads what the filter wrote; false at end of file.
  bool ReadInput();
  // Reads and handles whatever the filter has written by now.
  void ReadPendingInput();
  // Logs the printer's reactions and carries out its replies.
  void Handle(const std::vector<PrinterEvent>& events);
  // Queues one piece of a reply; the first goes at once.
  void SendPiece(const uint8_t* data, size_t size) override;
  // Closes the back channel once the pieces are out.
  void ResetAfterPieces() override;
  // Closes the back channel instead of replying.
  void CloseInstead() override;
  // "back channel closes".
  std::string ResetWords() const override;
  // Reads and answers one side-channel request.
  void HandleSideChannel();
  // Answers a side-channel request with a status and data, or not at all.
  void Answer(int command, const SideAnswer& answer, const Bytes& data);
  // Writes the next reply pieces that may go now.
  void SendPieces();
  // Writes one piece of a reply to the back channel.
  void WritePiece(const Bytes& piece);
  // Closes the back channel (and its kept read end).
  void CloseBackChannel();
  // Closes the side channel.
  void CloseSideChannel();
  // The milliseconds to wait in poll: -1 unless pieces are waiting.
  int PollTimeout();

  const Scenario& scenario_;
  ServeChannels channels_;
  SimLog& log_;
  bool input_open_ = false;
  bool side_open_ = false;
  bool back_open_ = false;
  PrinterCore printer_;
  long side_requests_ = 0;
  long drains_ = 0;
  std::deque<Bytes> pieces_;
  bool close_after_pieces_ = false;  // a reset: close once they are out
  bool wrote_for_reply_ = false;     // a piece has gone for this reply
  double last_piece_time_ = 0;
};

// Runs the loop until the filter's output ends (and the side channel, if
// asked).
void PrinterServer::Run() {
  input_open_ = channels_.input_fd >= 0;
  side_open_ = fd_is_open(CUPS_SC_FD);
  back_open_ = fd_is_open(CUPS_BC_FD);
  if (scenario_.close_sidechannel_at == 0 && side_open_) CloseSideChannel();
  if (scenario_.close_backchannel_at_start && back_open_) CloseBackChannel();
  Handle(printer_.Start());

  for (;;) {
    bool waiting_for_side = channels_.until_sidechannel_eof && side_open_;
    if (!input_open_ && !waiting_for_side) break;
    SendPieces();
    PollOnce(PollTimeout());
  }
}

// Waits for either channel and handles what has come.
void PrinterServer::PollOnce(int timeout_ms) {
  struct pollfd fds[2];
  nfds_t count = 0;
  int input_slot = -1;
  int side_slot = -1;
  if (input_open_) {
    fds[count] = {channels_.input_fd, POLLIN, 0};
    input_slot = static_cast<int>(count++);
  }
  if (side_open_) {
    fds[count] = {CUPS_SC_FD, POLLIN, 0};
    side_slot = static_cast<int>(count++);
  }
  if (count == 0) return;
  int ready = poll(fds, count, timeout_ms);
  if (ready < 0 && errno != EINTR) {
    log_.Line("poll() failed: %s", strerror(errno));
    input_open_ = side_open_ = false;
    return;
  }
  if (ready <= 0) return;
  if (input_slot >= 0 && fds[input_slot].revents != 0 && !ReadInput()) {
    input_open_ = false;
    Handle(printer_.Finish());
  }
  if (side_slot >= 0 && fds[side_slot].revents != 0) HandleSideChannel();
}

// Reads one chunk of the filter's output, keeps it and saves a copy.
bool PrinterServer::ReadInput() {
  uint8_t buffer[4096];
  ssize_t n = read(channels_.input_fd, buffer, sizeof buffer);
  if (n < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (n <= 0) return false;
  if (channels_.save_fd >= 0 &&
      write(channels_.save_fd, buffer, static_cast<size_t>(n)) != n)
    log_.Line("saving the filter's output failed: %s", strerror(errno));
  Handle(printer_.Take(buffer, static_cast<size_t>(n)));
  return true;
}

// Reads everything that the filter has written so far.
void PrinterServer::ReadPendingInput() {
  while (input_open_) {
    struct pollfd fd = {channels_.input_fd, POLLIN, 0};
    if (poll(&fd, 1, 0) <= 0) break;
    if (!ReadInput()) {
      input_open_ = false;
      Handle(printer_.Finish());
      return;
    }
  }
}

// Logs each reaction of the printer and answers its queries.
void PrinterServer::Handle(const std::vector<PrinterEvent>& events) {
  for (const PrinterEvent& event : events) {
    log_.Line("%s", event.log_line.c_str());
    if (!event.is_query) continue;
    wrote_for_reply_ = false;
    if (back_open_)
      carry_out_reply(event.reply, log_, *this);
    else
      log_.Line("no reply to %s (back channel closed)", event.reply.what);
  }
}

// The first piece goes at once (the backend has the reply in hand), the
// others once the filter has read the pipe empty.
void PrinterServer::SendPiece(const uint8_t* data, size_t size) {
  pieces_.emplace_back(data, data + size);
  if (!wrote_for_reply_) {
    WritePiece(pieces_.front());
    pieces_.pop_front();
    wrote_for_reply_ = true;
  }
}

void PrinterServer::ResetAfterPieces() {
  if (pieces_.empty())
    CloseBackChannel();
  else
    close_after_pieces_ = true;
}

void PrinterServer::CloseInstead() { CloseBackChannel(); }

std::string PrinterServer::ResetWords() const { return "back channel closes"; }

// Writes further pieces once the filter has emptied the pipe (or has left
// it full for too long).  Without a kept read end they all go at once.
void PrinterServer::SendPieces() {
  while (!pieces_.empty() && back_open_) {
    if (channels_.backchannel_peek_fd >= 0) {
      int unread = 0;
      if (ioctl(channels_.backchannel_peek_fd, FIONREAD, &unread) == 0 &&
          unread > 0 && monotonic_seconds() - last_piece_time_ < kPieceWaitLimit)
        return;
    }
    WritePiece(pieces_.front());
    pieces_.pop_front();
    if (pieces_.empty() && close_after_pieces_) CloseBackChannel();
  }
  if (!back_open_) pieces_.clear();
}

// Writes one piece of a reply to the back channel.
void PrinterServer::WritePiece(const Bytes& piece) {
  if (cupsBackChannelWrite(reinterpret_cast<const char*>(piece.data()),
                           piece.size(), 1.0) < 0)
    log_.Line("cupsBackChannelWrite() failed: %s", strerror(errno));
  last_piece_time_ = monotonic_seconds();
}

// Polls every millisecond while a piece waits for the pipe to empty.
int PrinterServer::PollTimeout() {
  return pieces_.empty() || !back_open_ ? -1 : 1;
}

// Reads one side-channel request and answers it as the scenario says.
void PrinterServer::HandleSideChannel() {
  char peek;
  ssize_t n = recv(CUPS_SC_FD, &peek, 1, MSG_PEEK | MSG_DONTWAIT);
  if (n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR)) {
    // The filter has closed its end.
    side_open_ = false;
    close(CUPS_SC_FD);
    return;
  }
  if (n < 0) return;

  cups_sc_command_t command = CUPS_SC_CMD_NONE;
  cups_sc_status_t status = CUPS_SC_STATUS_NONE;
  char data[2048];
  int length = sizeof data;
  if (cupsSideChannelRead(&command, &status, data, &length, 0.0) != 0) {
    log_.Line("sc unreadable request (%s)", sc_status_name(status).c_str());
    return;
  }
  side_requests_++;
  std::string name = sc_command_name(command);
  if (side_requests_ == scenario_.close_sidechannel_at) {
    log_.Line("sc %s -> no answer", name.c_str());
    CloseSideChannel();
    return;
  }
  if (command == CUPS_SC_CMD_GET_BIDI) {
    Answer(command, scenario_.bidi, scenario_.bidi_data);
  } else if (command == CUPS_SC_CMD_DRAIN_OUTPUT) {
    ReadPendingInput();
    SendPieces();
    drains_++;
    auto own = scenario_.drain_at.find(drains_);
    Answer(command, own != scenario_.drain_at.end() ? own->second
                                                     : scenario_.drain,
           Bytes());
  } else {
    Answer(command, SideAnswer{true, CUPS_SC_STATUS_NOT_IMPLEMENTED}, Bytes());
  }
}

// Writes the answer to a side-channel request, or logs that there is none.
void PrinterServer::Answer(int command, const SideAnswer& answer,
                           const Bytes& data) {
  std::string name = sc_command_name(command);
  if (!answer.answered) {
    log_.Line("sc %s -> no answer", name.c_str());
    return;
  }
  std::string shown = data.empty() ? "" : " " + hex_text(data.data(), data.size());
  log_.Line("sc %s -> %s%s", name.c_str(),
            sc_status_name(answer.status).c_str(), shown.c_str());
  if (cupsSideChannelWrite(static_cast<cups_sc_command_t>(command),
                           static_cast<cups_sc_status_t>(answer.status),
                           reinterpret_cast<const char*>(data.data()),
                           static_cast<int>(data.size()), 1.0) != 0)
    log_.Line("cupsSideChannelWrite() failed: %s", strerror(errno));
}

// Closes the back channel's write end and the kept read end: the filter
// reads end of file.
void PrinterServer::CloseBackChannel() {
  log_.Line("back channel closed");
  close(CUPS_BC_FD);
  if (channels_.backchannel_peek_fd >= 0) close(channels_.backchannel_peek_fd);
  channels_.backchannel_peek_fd = -1;
  back_open_ = false;
  pieces_.clear();
  close_after_pieces_ = false;
}

// Closes the side channel: the filter's requests meet a closed socket.
void PrinterServer::CloseSideChannel() {
  log_.Line("side channel closed");
  close(CUPS_SC_FD);
  side_open_ = false;
}

}  // namespace

// Serves the filter until it is done.
void serve_printer(const Scenario& scenario, const ServeChannels& channels,
                   SimLog& log) {
  PrinterServer server(scenario, channels, log);
  server.Run();
}
