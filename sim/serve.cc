// The serving loop of the simulated printer.

#include "sim/serve.h"

#include <cups/sidechannel.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <deque>

#include "sim/printer.h"

namespace {

constexpr int BACK_CHANNEL_FD = 3;
// How long a further piece waits for the filter to empty the pipe.
constexpr double PIECE_WAIT_LIMIT = 10.0;

// The escape commands that the printer understands.
struct PrinterCommand {
  const char* name;
  const char* bytes;
  size_t size;
};
const PrinterCommand WAKE_UP = {"wake-up", "\x1b" "EWU", 4};
const PrinterCommand PRINTER_INFO = {"printer information", "\x1b" "V21", 4};
const PrinterCommand JOB_STATUS = {"job status", "\x1b" "V10\0\0", 6};
const PrinterCommand* const COMMANDS[] = {&WAKE_UP, &PRINTER_INFO,
                                          &JOB_STATUS};

// The side-channel command names, by number.
const char* const SC_COMMAND_NAMES[] = {
    "NONE",      "SOFT_RESET", "DRAIN_OUTPUT",  "GET_BIDI",     "GET_DEVICE_ID",
    "GET_STATE", "SNMP_GET",   "SNMP_GET_NEXT", "GET_CONNECTED"};

// Seconds on the monotonic clock.
double now() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// True when the descriptor is open.
bool fd_is_open(int fd) { return fcntl(fd, F_GETFD) != -1; }

// The name of a side-channel command for the log.
std::string sc_command_name(int command) {
  if (command >= 0 && command < 9) return SC_COMMAND_NAMES[command];
  return std::to_string(command);
}

class PrinterServer {
 public:
  // Takes the script, the descriptors and the log.
  PrinterServer(const Scenario& scenario, const ServeChannels& channels,
                SimLog& log)
      : scenario_(scenario), channels_(channels), log_(log) {}

  // Runs the loop until the filter is done with the channels.
  void Run();

 private:
  // Polls the channels once, waiting at most timeout_ms.
  void PollOnce(int timeout_ms);
  // Reads what the filter wrote; false at end of file.
  bool ReadInput();
  // Reads and handles whatever the filter has written by now.
  void ReadPendingInput();
  // Handles every complete escape command in the input buffer.
  void HandleCommands(bool at_end);
  // Acts on one escape command.
  void HandleCommand(const PrinterCommand& command);
  // Sends, withholds or closes as the plan says.
  void Reply(const char* what, const ReplyPlan& plan);
  // Reads and answers one side-channel request.
  void HandleSideChannel();
  // Answers a side-channel request with a status and data, or not at all.
  void Answer(int command, const SideAnswer& answer, const Bytes& data);
  // Writes the next reply pieces that may go now.
  void SendPieces();
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
  Bytes input_;
  long info_queries_ = 0;
  long job_queries_ = 0;
  long side_requests_ = 0;
  long drains_ = 0;
  std::deque<Bytes> pieces_;
  double last_piece_time_ = 0;
};

// Runs the loop until the filter's output ends (and the side channel, if
// asked).
void PrinterServer::Run() {
  input_open_ = channels_.input_fd >= 0;
  side_open_ = fd_is_open(CUPS_SC_FD);
  back_open_ = fd_is_open(BACK_CHANNEL_FD);
  if (scenario_.close_sidechannel_at == 0 && side_open_) CloseSideChannel();
  if (scenario_.close_backchannel_at_start && back_open_) CloseBackChannel();

  for (;;) {
    bool waiting_for_side = channels_.until_sidechannel_eof && side_open_;
    if (!input_open_ && !waiting_for_side) break;
    SendPieces();
    PollOnce(PollTimeout());
  }
  if (!input_.empty()) HandleCommands(true);
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
  if (input_slot >= 0 && fds[input_slot].revents != 0) {
    if (!ReadInput()) {
      input_open_ = false;
      HandleCommands(true);
    } else {
      HandleCommands(false);
    }
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
  input_.insert(input_.end(), buffer, buffer + n);
  return true;
}

// Reads everything that the filter has written so far.
void PrinterServer::ReadPendingInput() {
  while (input_open_) {
    struct pollfd fd = {channels_.input_fd, POLLIN, 0};
    if (poll(&fd, 1, 0) <= 0) break;
    if (!ReadInput()) {
      input_open_ = false;
      HandleCommands(true);
      return;
    }
  }
  HandleCommands(false);
}

// Takes every complete command off the front of the input; bytes that begin
// no command are logged and dropped.
void PrinterServer::HandleCommands(bool at_end) {
  while (!input_.empty()) {
    const PrinterCommand* match = nullptr;
    bool partial = false;
    for (const PrinterCommand* command : COMMANDS) {
      size_t n = std::min(input_.size(), command->size);
      if (memcmp(input_.data(), command->bytes, n) != 0) continue;
      if (n == command->size) {
        match = command;
        break;
      }
      partial = true;
    }
    if (match != nullptr) {
      input_.erase(input_.begin(),
                   input_.begin() + static_cast<long>(match->size));
      HandleCommand(*match);
      continue;
    }
    if (partial && !at_end) return;
    // Unknown bytes up to the next escape.
    size_t end = 1;
    while (end < input_.size() && input_[end] != 0x1b) end++;
    size_t shown = std::min<size_t>(end, 16);
    log_.Line("unknown bytes (%zu): %s%s", end,
              hex_text(input_.data(), shown).c_str(), end > shown ? " ..." : "");
    input_.erase(input_.begin(), input_.begin() + static_cast<long>(end));
  }
}

// Logs the command and answers it as the printer would.
void PrinterServer::HandleCommand(const PrinterCommand& command) {
  log_.Line("cmd %s", hex_text(reinterpret_cast<const uint8_t*>(command.bytes),
                               command.size)
                          .c_str());
  if (&command == &PRINTER_INFO) {
    info_queries_++;
    Reply("printer information", plan_info_reply(scenario_, info_queries_));
  } else if (&command == &JOB_STATUS) {
    job_queries_++;
    Reply("job status", plan_job_status_reply(scenario_, job_queries_));
  }
}

// Writes the reply (its first piece now, the others later), or says
// nothing, or closes the back channel.
void PrinterServer::Reply(const char* what, const ReplyPlan& plan) {
  if (!back_open_) {
    log_.Line("no reply to %s (back channel closed)", what);
    return;
  }
  if (plan.kind == ReplyPlan::Kind::None) {
    log_.Line("no reply to %s", what);
    return;
  }
  if (plan.kind == ReplyPlan::Kind::Close) {
    log_.Line("no reply to %s", what);
    CloseBackChannel();
    return;
  }
  // The log says what the reply carries: for printer information the
  // power state, error code, ink-sheet type and ribbon counts (a field
  // beyond a short reply's end is "cut off"), for job status its four
  // status bytes.
  const Bytes& b = plan.bytes;
  auto field = [&b](const char* name, size_t offset, size_t width) {
    if (b.size() < offset + width) return std::string(name) + " cut off";
    return std::string(name) + " " + hex_text(b.data() + offset, width);
  };
  std::string contents;
  if (std::strcmp(what, JOB_STATUS.name) == 0) {
    contents = field("status", 8, 4);
  } else {
    contents = field("power", 5, 1) + ", " + field("error", 131, 3) + ", " +
               field("sheet", 145, 2) + ", ";
    contents += b.size() < 152 ? "ribbon cut off"
                               : "ribbon " + std::to_string(b[150] << 8 | b[151]) +
                                     "/" + std::to_string(b[148] << 8 | b[149]);
  }
  std::string pieces;
  for (size_t piece : plan.pieces)
    pieces += (pieces.empty() ? "" : ",") + std::to_string(piece);
  if (plan.pieces.size() > 1)
    log_.Line("reply %zu bytes in pieces %s: %s", b.size(), pieces.c_str(),
              contents.c_str());
  else
    log_.Line("reply %zu bytes: %s", b.size(), contents.c_str());
  size_t offset = 0;
  for (size_t piece : plan.pieces) {
    pieces_.emplace_back(plan.bytes.begin() + static_cast<long>(offset),
                         plan.bytes.begin() + static_cast<long>(offset + piece));
    offset += piece;
  }
  // The first piece goes at once; the backend has the reply in hand.
  Bytes first = pieces_.front();
  pieces_.pop_front();
  if (cupsBackChannelWrite(reinterpret_cast<const char*>(first.data()),
                           first.size(), 1.0) < 0)
    log_.Line("cupsBackChannelWrite() failed: %s", strerror(errno));
  last_piece_time_ = now();
}

// Writes further pieces once the filter has emptied the pipe (or has left
// it full for too long).  Without a kept read end they all go at once.
void PrinterServer::SendPieces() {
  while (!pieces_.empty() && back_open_) {
    if (channels_.backchannel_peek_fd >= 0) {
      int unread = 0;
      if (ioctl(channels_.backchannel_peek_fd, FIONREAD, &unread) == 0 &&
          unread > 0 && now() - last_piece_time_ < PIECE_WAIT_LIMIT)
        return;
    }
    const Bytes& piece = pieces_.front();
    if (cupsBackChannelWrite(reinterpret_cast<const char*>(piece.data()),
                             piece.size(), 1.0) < 0)
      log_.Line("cupsBackChannelWrite() failed: %s", strerror(errno));
    pieces_.pop_front();
    last_piece_time_ = now();
  }
  if (!back_open_) pieces_.clear();
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
  close(BACK_CHANNEL_FD);
  if (channels_.backchannel_peek_fd >= 0) close(channels_.backchannel_peek_fd);
  channels_.backchannel_peek_fd = -1;
  back_open_ = false;
  pieces_.clear();
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
