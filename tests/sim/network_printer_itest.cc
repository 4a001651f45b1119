// The network printer (quillaroth-sim --listen) driven over TCP, as CUPS'
// socket backend drives it: connect, write the commands, read the replies
// from the same connection, half-close at the end.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>

#include "tests/sim/listening_printer.h"
#include "tests/sim/sim_kit.h"

namespace {

const std::string kWakeUp = std::string("\x1b" "EWU", 4);
const std::string kPrinterInfo = std::string("\x1b" "V21", 4);
// How long a read waits before the printer counts as silent.
constexpr int kSilenceMs = 300;

// The first n bytes.
Bytes Prefix(const Bytes& bytes, size_t n) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<long>(n));
}

class NetworkPrinterTest : public ::testing::Test {
 protected:
  ~NetworkPrinterTest() override { Disconnect(); }

  // Starts the printer with these options.
  void Listen(const std::vector<std::string>& options) {
    printer_ = std::make_unique<ListeningPrinter>(options);
    std::string error;
    ASSERT_TRUE(printer_->Start(&error)) << error;
  }
  // Opens a connection as the host; false when it is refused.
  bool Connect() {
    Disconnect();
    fd_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    struct sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(printer_->port()));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return connect(fd_, reinterpret_cast<struct sockaddr*>(&address),
                   sizeof address) == 0;
  }
  // The host writes these bytes.
  void Send(const std::string& bytes) {
    ASSERT_EQ(static_cast<ssize_t>(bytes.size()),
              send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL));
  }
  // The host is done writing (as the socket backend at the end of a job).
  void HalfClose() { shutdown(fd_, SHUT_WR); }
  // Reads until `size` bytes came, the printer fell silent, closed or
  // reset; `ending` says which of the last three ended the read.
  Bytes Receive(size_t size, std::string* ending) {
    Bytes bytes;
    *ending = "silent";
    while (bytes.size() < size) {
      struct pollfd fd = {fd_, POLLIN, 0};
      if (poll(&fd, 1, kSilenceMs) <= 0) return bytes;
      uint8_t buffer[1024];
      ssize_t n = recv(fd_, buffer, sizeof buffer, 0);
      if (n <= 0) {
        *ending = n == 0 ? "closed" : errno == ECONNRESET ? "reset" : "error";
        return bytes;
      }
      bytes.insert(bytes.end(), buffer, buffer + n);
    }
    *ending = "complete";
    return bytes;
  }
  // Sends the wake-up and one query, returns the reply (192 bytes at most).
  Bytes Query(std::string* ending) {
    Send(kWakeUp + kPrinterInfo);
    return Receive(kInfoReplySize, ending);
  }
  // Closes the host's end.
  void Disconnect() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }
  // Stops the printer; its log, which must end with the stop.
  std::string StopAndLog() {
    EXPECT_EQ("exit status 0", printer_->Stop().Describe());
    return printer_->Log();
  }

  std::unique_ptr<ListeningPrinter> printer_;
  int fd_ = -1;
};

TEST_F(NetworkPrinterTest, AnswersAJobAndClosesAfterTheHost) {
  Listen({"--error", "060202"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(WithBytes(DefaultInfoReply(), 131, Hex("06 02 02")),
            Query(&ending));
  EXPECT_EQ("complete", ending);
  HalfClose();
  EXPECT_EQ(Bytes(), Receive(1, &ending));
  EXPECT_EQ("closed", ending);
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes: power 00, error 06 02 02, sheet 84 10, ribbon "
      "123/350\n"
      "sim: connection 1 closed by the host\n"
      "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
}

TEST_F(NetworkPrinterTest, QueriesCountAgainInEveryConnection) {
  Listen({"--wake-after", "1", "--connection", "2:error=060202"});
  Bytes asleep = WithBytes(DefaultInfoReply(), 5, Hex("01"));
  std::string ending;
  ASSERT_TRUE(Connect());
  EXPECT_EQ(asleep, Query(&ending));
  Send(kPrinterInfo);
  EXPECT_EQ(DefaultInfoReply(), Receive(kInfoReplySize, &ending));
  ASSERT_TRUE(Connect());
  EXPECT_EQ(WithBytes(asleep, 131, Hex("06 02 02")), Query(&ending));
}

TEST_F(NetworkPrinterTest, CommandsCutAnywhereAndRepliesInPieces) {
  Listen({"--split", "100+92"});
  ASSERT_TRUE(Connect());
  std::string all = kWakeUp + kPrinterInfo;
  for (char byte : all) Send(std::string(1, byte));
  std::string ending;
  EXPECT_EQ(DefaultInfoReply(), Receive(kInfoReplySize, &ending));
  EXPECT_EQ("complete", ending);
}

TEST_F(NetworkPrinterTest, ResetMidReply) {
  Listen({"--reset", "100"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(Prefix(DefaultInfoReply(), 100), Query(&ending));
  EXPECT_EQ("reset", ending);
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n" +
          SimPrinter().SimReplyLine(false) +
          "sim: connection 1 reset after 100 of 192 bytes\n"
      "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
}

TEST_F(NetworkPrinterTest, StalledReplyLeavesTheConnectionOpen) {
  Listen({"--stall", "150"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(Prefix(DefaultInfoReply(), 150), Query(&ending));
  EXPECT_EQ("silent", ending);
  Send(kPrinterInfo);
  HalfClose();
  EXPECT_EQ(Bytes(), Receive(1, &ending));
  EXPECT_EQ("silent", ending);
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n" +
          SimPrinter().SimReplyLine(false) +
          "sim: printer hangs after 150 of 192 bytes\n"
      "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
}

TEST_F(NetworkPrinterTest, HungPrinterAcceptsAndNeverAnswers) {
  Listen({"--hang"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(Bytes(), Query(&ending));
  EXPECT_EQ("silent", ending);
  HalfClose();
  EXPECT_EQ(Bytes(), Receive(1, &ending));
  EXPECT_EQ("silent", ending);
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: printer hangs: it reads and answers nothing\n"
      "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
}

TEST_F(NetworkPrinterTest, PrinterThatClosesInsteadOfAnswering) {
  Listen({"--reply", "1:close"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(Bytes(), Query(&ending));
  EXPECT_EQ("closed", ending);
}

TEST_F(NetworkPrinterTest, RefusesConnectionsBeyondItsLimit) {
  Listen({"--accept", "1"});
  ASSERT_TRUE(Connect());
  std::string ending;
  EXPECT_EQ(DefaultInfoReply(), Query(&ending));  // it took the connection
  int first = fd_;
  fd_ = -1;
  EXPECT_FALSE(Connect());
  EXPECT_EQ(ECONNREFUSED, errno);
  EXPECT_EQ(
      "sim: connection 1 from 127.0.0.1\n"
      "sim: refusing further connections\n"
      "sim: cmd 1b 45 57 55\n"
      "sim: cmd 1b 56 32 31\n" +
          SimPrinter().SimReplyLine(false) +
          "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
  close(first);
}

TEST_F(NetworkPrinterTest, RefusesEveryConnection) {
  Listen({"--accept", "0"});
  EXPECT_FALSE(Connect());
  EXPECT_EQ(ECONNREFUSED, errno);
  EXPECT_EQ(
      "sim: refusing connections\n"
      "sim: stopped by signal 15 (Terminated)\n",
      StopAndLog());
}

}  // namespace
