// The emulated USB printer's device model, driven as the libusb entry
// points drive it: what the printer logs and what the bulk endpoints carry.

#include "sim/usb/usb_printer.h"

#include <libusb-1.0/libusb.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

#include "sim/usb/printer_descriptors.h"
#include "tests/sim/sim_kit.h"

namespace {

const std::string kPrinterInfo = std::string("\x1b" "V21", 4);
// The handle that the tests open.
constexpr int kHandle = 1;
// A bulk transfer's time-out, short: the printer answers at once or never.
constexpr unsigned kTimeoutMs = 20;

// A log that collects its lines in memory.
class MemoryLog {
 public:
  explicit MemoryLog(const char* prefix)
      : file_(open_memstream(&text_, &size_)), log_(file_, prefix) {}
  ~MemoryLog() {
    fclose(file_);
    free(text_);
  }
  SimLog& log() { return log_; }
  // Everything logged so far.
  std::string Text() {
    fflush(file_);
    return std::string(text_, size_);
  }

 private:
  char* text_ = nullptr;
  size_t size_ = 0;
  FILE* file_;
  SimLog log_;
};

class UsbPrinterTest : public ::testing::Test {
 protected:
  // Makes the device from script lines and claims its interface, with the
  // bulk IN endpoint.
  void Plug(const std::string& script_text) {
    UsbScript script;
    std::string why;
    ASSERT_TRUE(parse_usb_script(script_text, &script, &why)) << why;
    printer_ = std::make_unique<UsbPrinter>(script, sim_.log(), usb_.log());
    ASSERT_EQ(LIBUSB_SUCCESS, printer_->Open(kHandle));
    ASSERT_EQ(LIBUSB_SUCCESS,
              printer_->ClaimInterface(kHandle, kPrinterInterface));
    ASSERT_EQ(LIBUSB_SUCCESS,
              printer_->SetAltSetting(kHandle, kPrinterInterface, 1));
  }
  // Writes bytes to the bulk OUT endpoint; the transfer's status.
  int Write(const std::string& bytes) {
    std::string copy = bytes;
    int transferred = 0;
    return printer_->Bulk(kHandle, kBulkOutAddress,
                          reinterpret_cast<uint8_t*>(&copy[0]),
                          static_cast<int>(copy.size()), &transferred,
                          kTimeoutMs);
  }
  // Reads one 512-byte transfer from the bulk IN endpoint; its bytes, or
  // "" when it fails.
  Bytes Read() {
    uint8_t data[512];
    int transferred = 0;
    int status = printer_->Bulk(kHandle, kBulkInAddress, data, sizeof data,
                                &transferred, kTimeoutMs);
    return Bytes(data, data + (status == LIBUSB_SUCCESS ? transferred : 0));
  }
  // The printer's log ("sim: ...").
  std::string SimLines() { return sim_.Text(); }

 private:
  MemoryLog sim_{"sim: "};
  MemoryLog usb_{"usb: "};
  std::unique_ptr<UsbPrinter> printer_;
};

TEST_F(UsbPrinterTest, AnswersAQuery) {
  Plug("total=350\nremaining=120\n");
  ASSERT_EQ(LIBUSB_SUCCESS, Write(kPrinterInfo));
  Bytes expected(192, 0x00);
  expected[145] = 0x84;
  expected[146] = 0x10;
  expected[148] = 0x01;
  expected[149] = 0x5e;
  expected[151] = 0x78;
  EXPECT_EQ(expected, Read());
  EXPECT_EQ(
      "sim: cmd 1b 56 32 31\n"
      "sim: reply 192 bytes: power 00, error 00 00 00, sheet 84 10, "
      "ribbon 120/350\n",
      SimLines());
}

TEST_F(UsbPrinterTest, StalledPrinterSaysSoAndTakesNoMore) {
  Plug("stall=100\n");
  ASSERT_EQ(LIBUSB_SUCCESS, Write(kPrinterInfo));
  EXPECT_EQ(100u, Read().size());
  EXPECT_EQ(LIBUSB_ERROR_TIMEOUT, Write(kPrinterInfo));
  EXPECT_EQ("sim: cmd 1b 56 32 31\n" + SimPrinter().SimReplyLine(false) +
                "sim: printer hangs after 100 of 192 bytes\n",
            SimLines());
}

TEST_F(UsbPrinterTest, HungPrinterSaysSoWhenClaimed) {
  Plug("hang\n");
  EXPECT_EQ(LIBUSB_ERROR_TIMEOUT, Write(kPrinterInfo));
  EXPECT_EQ("sim: printer hangs: it reads and answers nothing\n", SimLines());
}

TEST_F(UsbPrinterTest, ResetUnplugsTheDeviceAfterThePieces) {
  Plug("reset=100\n");
  ASSERT_EQ(LIBUSB_SUCCESS, Write(kPrinterInfo));
  EXPECT_EQ(100u, Read().size());
  EXPECT_EQ(Bytes(), Read());
  EXPECT_EQ(LIBUSB_ERROR_NO_DEVICE, Write(kPrinterInfo));
  EXPECT_EQ("sim: cmd 1b 56 32 31\n" + SimPrinter().SimReplyLine(false) +
                "sim: device unplugs after 100 of 192 bytes\n",
            SimLines());
}

}  // namespace
