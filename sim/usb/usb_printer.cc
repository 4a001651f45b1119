// The emulated USB printer's device model.

#include "sim/usb/usb_printer.h"

#include <libusb-1.0/libusb.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "sim/usb/printer_descriptors.h"

namespace {

// The printer class's own requests (USB Device Class Definition for
// Printing Devices 1.1).
constexpr uint8_t kGetDeviceId = 0;
constexpr uint8_t kGetPortStatus = 1;
constexpr uint8_t kSoftReset = 2;
// Port status: selected, no error, paper not empty.
constexpr uint8_t kPortStatusGood = 0x18;

// Frames of a full-speed bus and microframes of a high-speed one, and the
// bulk packets that fit into one.
constexpr std::chrono::microseconds kFullSpeedFrame{1000};
constexpr size_t kFullSpeedPacketsPerFrame = 19;
constexpr std::chrono::microseconds kHighSpeedMicroframe{125};
constexpr size_t kHighSpeedPacketsPerMicroframe = 13;
constexpr size_t kHighSpeedPacketSize = 512;

constexpr uint8_t kClassInterfaceIn =
    LIBUSB_REQUEST_TYPE_CLASS | LIBUSB_RECIPIENT_INTERFACE | LIBUSB_ENDPOINT_IN;
constexpr uint8_t kClassInterfaceOut = LIBUSB_REQUEST_TYPE_CLASS |
                                       LIBUSB_RECIPIENT_INTERFACE |
                                       LIBUSB_ENDPOINT_OUT;
constexpr uint8_t kStandardDeviceIn =
    LIBUSB_REQUEST_TYPE_STANDARD | LIBUSB_RECIPIENT_DEVICE | LIBUSB_ENDPOINT_IN;

// Copies as much of the answer as the request asked for; the count.
int answer(const Bytes& bytes, uint8_t* data, uint16_t length) {
  size_t n = std::min<size_t>(bytes.size(), length);
  if (n > 0) memcpy(data, bytes.data(), n);
  return static_cast<int>(n);
}

// "64+64+64+0": the sizes of a transfer's packets, for the log.
std::string packet_sizes(const std::vector<size_t>& sizes) {
  std::string text;
  for (size_t size : sizes)
    text += (text.empty() ? "" : "+") + std::to_string(size);
  return text;
}

}  // namespace

// Lays out the descriptors; the kernel has configured the device.
UsbPrinter::UsbPrinter(const UsbScript& script, SimLog& printer_log,
                       SimLog& usb_log)
    : script_(script),
      printer_log_(printer_log),
      usb_log_(usb_log),
      device_descriptor_(device_descriptor()),
      configuration_(
          configuration_descriptor(script.oneway, script.packet_size)),
      configuration_value_(kConfigurationValue) {}

// From the scripted scan on, until the unplug.
bool UsbPrinter::isOnBus(long scan) const {
  std::lock_guard<std::mutex> lock(mutex_);
  return !unplugged_ && scan >= script_.appear_at_scan;
}

// A handle opens on a device that is there.
int UsbPrinter::Open(int handle) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  usb_log_.Line("open (handle %d)", handle);
  return LIBUSB_SUCCESS;
}

// Closing a handle gives up its claim, as closing the device file does.
void UsbPrinter::Close(int handle) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (claimed_by_ == handle) claimed_by_ = 0;
  usb_log_.Line("close (handle %d)", handle);
}

// 1 when the kernel's printer driver holds the interface, else 0.
int UsbPrinter::KernelDriverActive(int interface_number) const {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (interface_number != kPrinterInterface) return LIBUSB_ERROR_NOT_FOUND;
  return kernel_driver_bound_ ? 1 : 0;
}

// Unbinds the kernel's driver; there must be one.
int UsbPrinter::DetachKernelDriver(int interface_number) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (interface_number != kPrinterInterface) return LIBUSB_ERROR_INVALID_PARAM;
  if (!kernel_driver_bound_) return LIBUSB_ERROR_NOT_FOUND;
  kernel_driver_bound_ = false;
  return LIBUSB_SUCCESS;
}

// Binds the kernel's driver, unless the interface is taken.
int UsbPrinter::AttachKernelDriver(int interface_number) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (interface_number != kPrinterInterface) return LIBUSB_ERROR_INVALID_PARAM;
  if (kernel_driver_bound_ || claimed_by_ != 0) return LIBUSB_ERROR_BUSY;
  kernel_driver_bound_ = true;
  return LIBUSB_SUCCESS;
}

// One handle at a time, and not while the kernel's driver holds it.
int UsbPrinter::ClaimInterface(int handle, int interface_number) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (configuration_value_ != kConfigurationValue ||
      interface_number != kPrinterInterface)
    return LIBUSB_ERROR_NOT_FOUND;
  if (claimed_by_ == handle) return LIBUSB_SUCCESS;
  if (claimed_by_ != 0 || kernel_driver_bound_) return LIBUSB_ERROR_BUSY;
  Claim(handle);
  return LIBUSB_SUCCESS;
}

// The printer starts a new conversation with every claim.
void UsbPrinter::Claim(int handle) {
  claimed_by_ = handle;
  printer_.emplace(script_.printer);
  usb_log_.Line("claim interface %d", kPrinterInterface);
  for (const PrinterEvent& event : printer_->Start())
    printer_log_.Line("%s", event.log_line.c_str());
}

// Only the handle that holds the interface can let it go.
int UsbPrinter::ReleaseInterface(int handle, int interface_number) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (interface_number != kPrinterInterface || claimed_by_ != handle)
    return LIBUSB_ERROR_NOT_FOUND;
  claimed_by_ = 0;
  usb_log_.Line("release interface %d", interface_number);
  return LIBUSB_SUCCESS;
}

// The claimed interface switches to an alternate setting that it has.
int UsbPrinter::SetAltSetting(int handle, int interface_number, int alternate) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  int alternates = script_.oneway ? 1 : 2;
  if (interface_number != kPrinterInterface || claimed_by_ != handle ||
      alternate < 0 || alternate >= alternates)
    return LIBUSB_ERROR_NOT_FOUND;
  alternate_ = alternate;
  usb_log_.Line("interface %d alternate setting %d", interface_number,
                alternate);
  return LIBUSB_SUCCESS;
}

// Configuration 1, 0 or -1 (both unconfigured); not while claimed.
int UsbPrinter::SetConfiguration(int configuration) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (configuration != -1 && configuration != 0 &&
      configuration != kConfigurationValue)
    return LIBUSB_ERROR_NOT_FOUND;
  if (claimed_by_ != 0) return LIBUSB_ERROR_BUSY;
  configuration_value_ = std::max(configuration, 0);
  alternate_ = 0;
  usb_log_.Line("configuration %d", configuration_value_);
  return LIBUSB_SUCCESS;
}

// The endpoints never stall, so there is no halt to clear.
int UsbPrinter::ClearHalt(uint8_t endpoint) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (endpoint != kBulkOutAddress && endpoint != kBulkInAddress)
    return LIBUSB_ERROR_NOT_FOUND;
  return LIBUSB_SUCCESS;
}

// A port reset: the interface goes back to its first alternate setting and
// whatever waited on the endpoints is gone.
int UsbPrinter::Reset() {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NOT_FOUND;
  alternate_ = 0;
  FlushIn();
  usb_log_.Line("reset");
  return LIBUSB_SUCCESS;
}

// Standard descriptor and configuration requests and the printer class's
// requests; anything else stalls (LIBUSB_ERROR_PIPE).
int UsbPrinter::Control(uint8_t request_type, uint8_t request, uint16_t value,
                        uint16_t index, uint8_t* data, uint16_t length) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  if (request_type == kStandardDeviceIn) {
    if (request == LIBUSB_REQUEST_GET_DESCRIPTOR)
      return GetDescriptor(value, data, length);
    if (request == LIBUSB_REQUEST_GET_CONFIGURATION)
      return answer({static_cast<uint8_t>(configuration_value_)}, data, length);
    if (request == LIBUSB_REQUEST_GET_STATUS)
      return answer({0x01, 0x00}, data, length);  // self-powered
    return LIBUSB_ERROR_PIPE;
  }
  // The printer class addresses its interface in wIndex's high byte.
  bool our_interface = configuration_value_ == kConfigurationValue &&
                       (index >> 8) == kPrinterInterface;
  if (request_type == kClassInterfaceIn && our_interface) {
    if (request == kGetDeviceId) {
      usb_log_.Line("GET_DEVICE_ID");
      return answer(device_id_answer(), data, length);
    }
    if (request == kGetPortStatus)
      return answer({kPortStatusGood}, data, length);
  }
  if (request_type == kClassInterfaceOut && request == kSoftReset &&
      (index & 0xff) == kPrinterInterface) {
    usb_log_.Line("SOFT_RESET");
    FlushIn();
    return 0;
  }
  return LIBUSB_ERROR_PIPE;
}

// Device, configuration and string descriptors; others stall.
int UsbPrinter::GetDescriptor(uint16_t value, uint8_t* data,
                              uint16_t length) const {
  uint8_t type = static_cast<uint8_t>(value >> 8);
  uint8_t index = static_cast<uint8_t>(value & 0xff);
  if (type == LIBUSB_DT_DEVICE && index == 0)
    return answer(device_descriptor_, data, length);
  if (type == LIBUSB_DT_CONFIG && index == 0)
    return answer(configuration_, data, length);
  if (type == LIBUSB_DT_STRING) {
    Bytes text = string_descriptor(index);
    if (!text.empty()) return answer(text, data, length);
  }
  return LIBUSB_ERROR_PIPE;
}

// OUT data goes to the printer at once; IN data is waited for.  Either
// way the transfer ends when the bus has carried it.
int UsbPrinter::Bulk(int handle, uint8_t endpoint, uint8_t* data, int length,
                     int* transferred, unsigned int timeout_ms) {
  std::unique_lock<std::mutex> lock(mutex_);
  *transferred = 0;
  int status = CheckEndpoint(handle, endpoint);
  if (status != LIBUSB_SUCCESS) return status;
  if (length < 0) return LIBUSB_ERROR_INVALID_PARAM;
  size_t packets = 0;
  if ((endpoint & LIBUSB_ENDPOINT_DIR_MASK) == LIBUSB_ENDPOINT_IN) {
    status = Read(lock, data, length, transferred, timeout_ms, &packets);
  } else {
    status = Write(lock, data, length, transferred, timeout_ms);
    packets = (static_cast<size_t>(length) + script_.packet_size - 1) /
              script_.packet_size;
  }
  lock.unlock();
  if (status == LIBUSB_SUCCESS) std::this_thread::sleep_for(BusTime(packets));
  return status;
}

// Whole (micro)frames, at least one.
std::chrono::microseconds UsbPrinter::BusTime(size_t packets) const {
  bool high_speed = script_.packet_size == kHighSpeedPacketSize;
  size_t per_frame =
      high_speed ? kHighSpeedPacketsPerMicroframe : kFullSpeedPacketsPerFrame;
  size_t frames = std::max<size_t>(1, (packets + per_frame - 1) / per_frame);
  return static_cast<long>(frames) *
         (high_speed ? kHighSpeedMicroframe : kFullSpeedFrame);
}

// The endpoint must belong to the interface's present alternate setting;
// an unclaimed interface is claimed for the handle, as the kernel does.
int UsbPrinter::CheckEndpoint(int handle, uint8_t endpoint) {
  if (unplugged_) return LIBUSB_ERROR_NO_DEVICE;
  bool known = endpoint == kBulkOutAddress ||
               (endpoint == kBulkInAddress && alternate_ == 1);
  if (configuration_value_ != kConfigurationValue || !known)
    return LIBUSB_ERROR_IO;
  if (claimed_by_ == 0 && !kernel_driver_bound_) Claim(handle);
  if (claimed_by_ != handle) return LIBUSB_ERROR_BUSY;
  return LIBUSB_SUCCESS;
}

// The printer takes the bytes, logs each command and the reply it plans,
// and its replies go onto the IN endpoint.  A hung printer takes nothing.
int UsbPrinter::Write(std::unique_lock<std::mutex>& lock, const uint8_t* data,
                      int length, int* transferred, unsigned int timeout_ms) {
  if (printer_->hung()) {
    auto gone = [this] { return unplugged_; };
    if (timeout_ms == 0)
      packet_ready_.wait(lock, gone);
    else
      packet_ready_.wait_for(lock, std::chrono::milliseconds(timeout_ms), gone);
    return unplugged_ ? LIBUSB_ERROR_NO_DEVICE : LIBUSB_ERROR_TIMEOUT;
  }
  for (const PrinterEvent& event :
       printer_->Take(data, static_cast<size_t>(length))) {
    printer_log_.Line("%s", event.log_line.c_str());
    if (!event.is_query) continue;
    // Lone zero-length packets go before a reply, if the script says so.
    if (!unplug_queued_ && event.reply.kind == ReplyPlan::Kind::kSend)
      for (long i = 0; i < script_.empty_packets; i++)
        in_packets_.push_back({});
    carry_out_reply(event.reply, printer_log_, *this);
    packet_ready_.notify_all();
  }
  *transferred = length;
  return LIBUSB_SUCCESS;
}

// Full packets, then a short one; a piece that fills its last packet ends
// with a zero-length packet unless the script says otherwise.
void UsbPrinter::SendPiece(const uint8_t* data, size_t size) {
  if (unplug_queued_) return;
  size_t packet = script_.packet_size;
  for (size_t offset = 0;; offset += packet) {
    size_t n = std::min(packet, size - offset);
    if (n == 0 && !script_.end_with_zlp) return;
    in_packets_.push_back({Bytes(data + offset, data + offset + n), false});
    if (n < packet) return;
  }
}

void UsbPrinter::ResetAfterPieces() {
  if (!unplug_queued_) QueueUnplug();
}

void UsbPrinter::CloseInstead() {
  if (!unplug_queued_) QueueUnplug();
}

std::string UsbPrinter::ResetWords() const { return "device unplugs"; }

// Drops what waits on the IN endpoint; a device on its way out stays so.
void UsbPrinter::FlushIn() {
  in_packets_.clear();
  if (unplug_queued_) in_packets_.push_back({Bytes(), true});
}

// The device dies when a transfer reaches this point.
void UsbPrinter::QueueUnplug() {
  in_packets_.push_back({Bytes(), true});
  unplug_queued_ = true;
  packet_ready_.notify_all();
}

// Takes packets until the transfer is full or a short packet ends it;
// waits (without spinning) for the next packet, the time-out or the unplug.
int UsbPrinter::Read(std::unique_lock<std::mutex>& lock, uint8_t* data,
                     int length, int* transferred, unsigned int timeout_ms,
                     size_t* packets) {
  auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
  std::vector<size_t> sizes;
  size_t got = 0;
  for (;;) {
    if (unplugged_) {
      *transferred = static_cast<int>(got);
      return LIBUSB_ERROR_NO_DEVICE;
    }
    if (in_packets_.empty()) {
      if (timeout_ms == 0) {
        packet_ready_.wait(lock);
      } else if (packet_ready_.wait_until(lock, deadline) ==
                     std::cv_status::timeout &&
                 in_packets_.empty() && !unplugged_) {
        *transferred = static_cast<int>(got);
        if (got > 0)
          usb_log_.Line("in %zu bytes (%s), then timed out", got,
                        packet_sizes(sizes).c_str());
        return LIBUSB_ERROR_TIMEOUT;
      }
      continue;
    }
    Packet packet = std::move(in_packets_.front());
    in_packets_.pop_front();
    if (packet.unplug) {
      Unplug();
      continue;
    }
    if (packet.bytes.size() > static_cast<size_t>(length) - got) {
      // More than the transfer has room for: the host calls it babble.
      *transferred = static_cast<int>(got);
      usb_log_.Line("in overflow: a %zu-byte packet for %zu bytes of room",
                    packet.bytes.size(), static_cast<size_t>(length) - got);
      return LIBUSB_ERROR_OVERFLOW;
    }
    if (!packet.bytes.empty())
      memcpy(data + got, packet.bytes.data(), packet.bytes.size());
    got += packet.bytes.size();
    sizes.push_back(packet.bytes.size());
    if (packet.bytes.size() < script_.packet_size ||
        got == static_cast<size_t>(length))
      break;
  }
  *transferred = static_cast<int>(got);
  *packets = sizes.size();
  usb_log_.Line("in %zu bytes (%s)", got, packet_sizes(sizes).c_str());
  return LIBUSB_SUCCESS;
}

// Gone for good: waiting transfers and every later call fail.
void UsbPrinter::Unplug() {
  unplugged_ = true;
  in_packets_.clear();
  usb_log_.Line("unplugged");
  packet_ready_.notify_all();
}
