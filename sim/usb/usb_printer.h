// UsbPrinter: the emulated USB printer, as the host's USB stack sees it.
//
// Every operation answers with libusb's own return codes (LIBUSB_SUCCESS,
// LIBUSB_ERROR_NO_DEVICE, ...), so that the libusb entry points only
// translate their arguments.  The device keeps what a real one keeps: its
// configuration, the alternate setting of its interface, which open handle
// has claimed the interface, whether the kernel's printer driver is bound,
// and the packets waiting on its bulk IN endpoint.
//
// Bulk OUT data goes to the printer (PrinterCore; a new one for each claim
// of the interface, as for each connection of another transport), whose
// replies are queued as packets of at most the endpoint's wMaxPacketSize.
// A bulk IN transfer of N bytes takes packets until it has N bytes or a
// short packet (a zero-length one included) ends it, as a host controller
// does; with nothing to take it waits, on a condition variable, for a
// packet, its time-out or the unplug.
//
// A reply that ends in a reset unplugs the device after its last piece:
// from then on every operation on the device fails with
// LIBUSB_ERROR_NO_DEVICE and device scans no longer find it.  A printer
// that has hung takes no more bulk OUT data: the transfer waits for its
// time-out, as on a device that answers every packet with NAK.
//
// Transfers take the time that the bus takes: a bulk transfer ends at the
// end of the (micro)frame that carries its last packet, at least one frame
// after it began, as a host controller schedules it.  64-byte packets make
// a full-speed device (1 ms frames, at most 19 bulk packets in one),
// 512-byte packets a high-speed one (125 us microframes, at most 13).
//
// Thread-safe: the backend reads the bulk IN endpoint in a thread of its
// own while its main thread writes.

#ifndef QUILLAROTH_SIM_USB_USB_PRINTER_H_
#define QUILLAROTH_SIM_USB_USB_PRINTER_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "sim/printer_core.h"
#include "sim/reply_plan.h"
#include "sim/reply_transport.h"
#include "sim/sim_log.h"
#include "sim/usb/usb_script.h"

class UsbPrinter : private ReplyTransport {
 public:
  // The device as the script describes it; logs printer events to
  // printer_log and USB events to usb_log.
  UsbPrinter(const UsbScript& script, SimLog& printer_log, SimLog& usb_log);

  UsbPrinter(const UsbPrinter&) = delete;
  UsbPrinter& operator=(const UsbPrinter&) = delete;

  // True when the Nth device scan (counted from 1) finds the device.
  bool isOnBus(long scan) const;

  const Bytes& DeviceDescriptor() const { return device_descriptor_; }
  const Bytes& ConfigurationDescriptor() const { return configuration_; }

  // Opening and closing a handle; handles are numbered by the caller.
  int Open(int handle);
  void Close(int handle);

  // The interface and its kernel driver, as libusb_kernel_driver_active(),
  // libusb_detach_kernel_driver(), libusb_attach_kernel_driver(),
  // libusb_claim_interface(), libusb_release_interface() and
  // libusb_set_interface_alt_setting() answer.
  int KernelDriverActive(int interface_number) const;
  int DetachKernelDriver(int interface_number);
  int AttachKernelDriver(int interface_number);
  int ClaimInterface(int handle, int interface_number);
  int ReleaseInterface(int handle, int interface_number);
  int SetAltSetting(int handle, int interface_number, int alternate);

  // libusb_set_configuration(), libusb_clear_halt(), libusb_reset_device().
  int SetConfiguration(int configuration);
  int ClearHalt(uint8_t endpoint);
  int Reset();

  // A control transfer; returns the bytes transferred or an error.
  int Control(uint8_t request_type, uint8_t request, uint16_t value,
              uint16_t index, uint8_t* data, uint16_t length);

  // A bulk transfer on endpoint (IN when bit 7 is set); timeout_ms 0 waits
  // for ever.  Sets *transferred also on failure.
  int Bulk(int handle, uint8_t endpoint, uint8_t* data, int length,
           int* transferred, unsigned int timeout_ms);

 private:
  // A packet on the bulk IN endpoint, or the point where the device dies.
  struct Packet {
    Bytes bytes;
    bool unplug = false;
  };

  // Gives the interface to the handle, with a printer of its own.  Called
  // with the lock held.
  void Claim(int handle);
  // Checks the device, the configuration and the endpoint for a transfer
  // and claims the interface for the handle if nobody has (as the kernel
  // does); LIBUSB_SUCCESS or the error.  Called with the lock held.
  int CheckEndpoint(int handle, uint8_t endpoint);
  // Hands bulk OUT data to the printer and queues its replies; waits like
  // the transfer's time-out when the printer has hung.
  int Write(std::unique_lock<std::mutex>& lock, const uint8_t* data, int length,
            int* transferred, unsigned int timeout_ms);
  // Queues one piece of a reply as packets.
  void SendPiece(const uint8_t* data, size_t size) override;
  // Queues the unplug after the pieces.
  void ResetAfterPieces() override;
  // Queues the unplug instead of a reply: the printer vanishes.
  void CloseInstead() override;
  // "device unplugs".
  std::string ResetWords() const override;
  // Queues the unplug point.
  void QueueUnplug();
  // Drops the packets that wait on the IN endpoint (a reset).
  void FlushIn();
  // Takes packets for one bulk IN transfer; *packets counts them.
  int Read(std::unique_lock<std::mutex>& lock, uint8_t* data, int length,
           int* transferred, unsigned int timeout_ms, size_t* packets);
  // The bus time of a transfer of this many packets.
  std::chrono::microseconds BusTime(size_t packets) const;
  // Marks the device unplugged and wakes every waiting transfer.
  void Unplug();
  // Answers a standard GET_DESCRIPTOR request.
  int GetDescriptor(uint16_t value, uint8_t* data, uint16_t length) const;

  const UsbScript script_;
  SimLog& printer_log_;
  SimLog& usb_log_;
  const Bytes device_descriptor_;
  const Bytes configuration_;

  mutable std::mutex mutex_;
  std::condition_variable packet_ready_;
  std::optional<PrinterCore> printer_;  // from the first claim on
  bool unplugged_ = false;
  bool unplug_queued_ = false;
  int configuration_value_;
  int alternate_ = 0;
  int claimed_by_ = 0;  // the handle that holds the interface (0: none)
  bool kernel_driver_bound_ = false;
  std::deque<Packet> in_packets_;
};

#endif  // QUILLAROTH_SIM_USB_USB_PRINTER_H_
