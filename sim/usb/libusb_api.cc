// libusb-1.0's entry points, answered by the emulated printer.
//
// This file is built into libusb-1.0.so.0, which CUPS' own usb backend
// loads in place of the system's libusb (the wrapper backend puts its
// folder first in LD_LIBRARY_PATH).  The bus holds one device, the printer
// of the script that QUILLAROTH_USB_PRINTER names; every call keeps
// libusb's signature, return codes and ownership rules (lists and
// configuration descriptors are the caller's to free; devices are
// reference-counted).  The bus and the device live as long as the process:
// the backend's read thread may still be inside a transfer when the main
// thread closes the device and returns from main().

#include <cups/backend.h>
#include <libusb-1.0/libusb.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "sim/sim_log.h"
#include "sim/usb/config_descriptor.h"
#include "sim/usb/usb_printer.h"
#include "sim/usb/usb_script.h"

// A context holds nothing: every context sees the one bus.
struct libusb_context {};

struct libusb_device {
  std::atomic<int> references;
  UsbPrinter* printer;
};

struct libusb_device_handle {
  libusb_device* device;
  int number;
  std::atomic<bool> open;
};

namespace {

// The bus: the emulated printer and the count of device scans.
struct Bus {
  std::mutex mutex;
  long scans = 0;
  libusb_device device{};
  int handles = 0;
};

// The bus, made at the first call: the script read, the printer plugged
// in.  A script that cannot be read ends the process as a failed backend,
// with the reason on stderr, rather than leave the backend waiting for a
// printer that will never come.
Bus& bus() {
  static Bus* the_bus = [] {
    UsbScript script;
    const char* path = getenv(kUsbScriptVariable);
    std::string why;
    if (path != nullptr && !load_usb_script(path, &script, &why)) {
      fprintf(stderr, "ERROR: Emulated USB printer: %s\n", why.c_str());
      _exit(CUPS_BACKEND_FAILED);
    }
    // One write per log line: the backend's threads log too.
    FILE* log_file = fdopen(dup(STDERR_FILENO), "w");
    if (log_file != nullptr) setvbuf(log_file, nullptr, _IOFBF, 4096);
    auto* printer_log = new SimLog(log_file, "DEBUG: sim: ");
    auto* usb_log = new SimLog(log_file, "DEBUG: usb: ");
    auto* made = new Bus;
    made->device.printer = new UsbPrinter(script, *printer_log, *usb_log);
    return made;
  }();
  return *the_bus;
}

// Asks the printer behind an open handle; a handle that is not open is an
// invalid parameter.
template <typename Request>
int ask(libusb_device_handle* handle, Request request) {
  if (handle == nullptr || !handle->open) return LIBUSB_ERROR_INVALID_PARAM;
  return request(*handle->device->printer);
}

// The libusb_strerror() texts, by error code.
struct ErrorText {
  int code;
  const char* name;
  const char* text;
};
const ErrorText kErrorTexts[] = {
    {LIBUSB_SUCCESS, "LIBUSB_SUCCESS / LIBUSB_TRANSFER_COMPLETED", "Success"},
    {LIBUSB_ERROR_IO, "LIBUSB_ERROR_IO", "Input/Output Error"},
    {LIBUSB_ERROR_INVALID_PARAM, "LIBUSB_ERROR_INVALID_PARAM",
     "Invalid parameter"},
    {LIBUSB_ERROR_ACCESS, "LIBUSB_ERROR_ACCESS",
     "Access denied (insufficient permissions)"},
    {LIBUSB_ERROR_NO_DEVICE, "LIBUSB_ERROR_NO_DEVICE",
     "No such device (it may have been disconnected)"},
    {LIBUSB_ERROR_NOT_FOUND, "LIBUSB_ERROR_NOT_FOUND", "Entity not found"},
    {LIBUSB_ERROR_BUSY, "LIBUSB_ERROR_BUSY", "Resource busy"},
    {LIBUSB_ERROR_TIMEOUT, "LIBUSB_ERROR_TIMEOUT", "Operation timed out"},
    {LIBUSB_ERROR_OVERFLOW, "LIBUSB_ERROR_OVERFLOW", "Overflow"},
    {LIBUSB_ERROR_PIPE, "LIBUSB_ERROR_PIPE", "Pipe error"},
    {LIBUSB_ERROR_INTERRUPTED, "LIBUSB_ERROR_INTERRUPTED",
     "System call interrupted (perhaps due to signal)"},
    {LIBUSB_ERROR_NO_MEM, "LIBUSB_ERROR_NO_MEM", "Insufficient memory"},
    {LIBUSB_ERROR_NOT_SUPPORTED, "LIBUSB_ERROR_NOT_SUPPORTED",
     "Operation not supported or unimplemented on this platform"},
    {LIBUSB_ERROR_OTHER, "LIBUSB_ERROR_OTHER", "Other error"},
};

// The entry for code, or nullptr.
const ErrorText* error_text(int code) {
  for (const ErrorText& entry : kErrorTexts)
    if (entry.code == code) return &entry;
  return nullptr;
}

}  // namespace

extern "C" {

// A context of its own when asked for one; all share the one bus.
int LIBUSB_CALL libusb_init(libusb_context** context) {
  bus();
  if (context != nullptr) *context = new libusb_context;
  return LIBUSB_SUCCESS;
}

// Frees a context of its own; the default one stays.
void LIBUSB_CALL libusb_exit(libusb_context* context) { delete context; }

// The devices on the bus now: the printer, once it has appeared and until
// it is unplugged.  The list ends with nullptr and holds a reference to
// each device.
ssize_t LIBUSB_CALL libusb_get_device_list(libusb_context* /*context*/,
                                           libusb_device*** list) {
  Bus& b = bus();
  long scan;
  {
    std::lock_guard<std::mutex> lock(b.mutex);
    scan = ++b.scans;
  }
  bool found = b.device.printer->isOnBus(scan);
  auto** devices =
      static_cast<libusb_device**>(calloc(2, sizeof(libusb_device*)));
  if (devices == nullptr) return LIBUSB_ERROR_NO_MEM;
  if (found) devices[0] = libusb_ref_device(&b.device);
  *list = devices;
  return found ? 1 : 0;
}

// Frees the list, dropping the references it holds if asked to.
void LIBUSB_CALL libusb_free_device_list(libusb_device** list,
                                         int unref_devices) {
  if (list == nullptr) return;
  if (unref_devices)
    for (libusb_device** d = list; *d != nullptr; d++) libusb_unref_device(*d);
  free(list);
}

// One more reference.
libusb_device* LIBUSB_CALL libusb_ref_device(libusb_device* device) {
  device->references++;
  return device;
}

// One reference less; the device itself lives as long as the bus.
void LIBUSB_CALL libusb_unref_device(libusb_device* device) {
  if (device != nullptr) device->references--;
}

// The device descriptor, from the device's cached copy (no I/O).
int LIBUSB_CALL libusb_get_device_descriptor(
    libusb_device* device, struct libusb_device_descriptor* descriptor) {
  const Bytes& d = device->printer->DeviceDescriptor();
  descriptor->bLength = d[0];
  descriptor->bDescriptorType = d[1];
  descriptor->bcdUSB = static_cast<uint16_t>(d[2] | (d[3] << 8));
  descriptor->bDeviceClass = d[4];
  descriptor->bDeviceSubClass = d[5];
  descriptor->bDeviceProtocol = d[6];
  descriptor->bMaxPacketSize0 = d[7];
  descriptor->idVendor = static_cast<uint16_t>(d[8] | (d[9] << 8));
  descriptor->idProduct = static_cast<uint16_t>(d[10] | (d[11] << 8));
  descriptor->bcdDevice = static_cast<uint16_t>(d[12] | (d[13] << 8));
  descriptor->iManufacturer = d[14];
  descriptor->iProduct = d[15];
  descriptor->iSerialNumber = d[16];
  descriptor->bNumConfigurations = d[17];
  return LIBUSB_SUCCESS;
}

// The configuration by index (the device has one), parsed from the cached
// copy; the caller frees it with libusb_free_config_descriptor().
int LIBUSB_CALL
libusb_get_config_descriptor(libusb_device* device, uint8_t config_index,
                             struct libusb_config_descriptor** config) {
  if (config_index != 0) return LIBUSB_ERROR_NOT_FOUND;
  return parse_config_descriptor(device->printer->ConfigurationDescriptor(),
                                 config);
}

// Frees what libusb_get_config_descriptor() made.
void LIBUSB_CALL
libusb_free_config_descriptor(struct libusb_config_descriptor* config) {
  free_config_descriptor(config);
}

// The bus number and address that the device has on the emulated bus.
uint8_t LIBUSB_CALL libusb_get_bus_number(libusb_device* /*device*/) {
  return 1;
}

// The device's address on the emulated bus.
uint8_t LIBUSB_CALL libusb_get_device_address(libusb_device* /*device*/) {
  return 2;
}

// Opens a handle; the device stays referenced while it is open.
int LIBUSB_CALL libusb_open(libusb_device* device,
                            libusb_device_handle** handle) {
  int number;
  {
    std::lock_guard<std::mutex> lock(bus().mutex);
    number = ++bus().handles;
  }
  int status = device->printer->Open(number);
  if (status != LIBUSB_SUCCESS) return status;
  *handle = new libusb_device_handle{libusb_ref_device(device), number, {true}};
  return LIBUSB_SUCCESS;
}

// Closes the handle, giving up its claim.  The handle's memory is kept: a
// thread of the caller's may still be using it.
void LIBUSB_CALL libusb_close(libusb_device_handle* handle) {
  if (handle == nullptr || !handle->open.exchange(false)) return;
  handle->device->printer->Close(handle->number);
  libusb_unref_device(handle->device);
}

// The device behind a handle.
libusb_device* LIBUSB_CALL libusb_get_device(libusb_device_handle* handle) {
  return handle->device;
}

// Whether the kernel's printer driver holds the interface: 1, 0 or an error.
int LIBUSB_CALL libusb_kernel_driver_active(libusb_device_handle* handle,
                                            int interface_number) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.KernelDriverActive(interface_number);
  });
}

// Unbinds the kernel's driver from the interface.
int LIBUSB_CALL libusb_detach_kernel_driver(libusb_device_handle* handle,
                                            int interface_number) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.DetachKernelDriver(interface_number);
  });
}

// Binds the kernel's driver to the interface again.
int LIBUSB_CALL libusb_attach_kernel_driver(libusb_device_handle* handle,
                                            int interface_number) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.AttachKernelDriver(interface_number);
  });
}

// Claims the interface for this handle.
int LIBUSB_CALL libusb_claim_interface(libusb_device_handle* handle,
                                       int interface_number) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.ClaimInterface(handle->number, interface_number);
  });
}

// Releases the interface that this handle claimed.
int LIBUSB_CALL libusb_release_interface(libusb_device_handle* handle,
                                         int interface_number) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.ReleaseInterface(handle->number, interface_number);
  });
}

// Selects a configuration (-1: unconfigured).
int LIBUSB_CALL libusb_set_configuration(libusb_device_handle* handle,
                                         int configuration) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.SetConfiguration(configuration);
  });
}

// Selects an alternate setting of the claimed interface.
int LIBUSB_CALL libusb_set_interface_alt_setting(libusb_device_handle* handle,
                                                 int interface_number,
                                                 int alternate_setting) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.SetAltSetting(handle->number, interface_number,
                                 alternate_setting);
  });
}

// Clears a halt on an endpoint.
int LIBUSB_CALL libusb_clear_halt(libusb_device_handle* handle,
                                  unsigned char endpoint) {
  return ask(handle,
             [&](UsbPrinter& printer) { return printer.ClearHalt(endpoint); });
}

// Resets the device's port.
int LIBUSB_CALL libusb_reset_device(libusb_device_handle* handle) {
  return ask(handle, [&](UsbPrinter& printer) { return printer.Reset(); });
}

// A control transfer; the device answers at once, so the time-out never
// runs out.
int LIBUSB_CALL libusb_control_transfer(libusb_device_handle* handle,
                                        uint8_t request_type, uint8_t request,
                                        uint16_t value, uint16_t index,
                                        unsigned char* data, uint16_t length,
                                        unsigned int /*timeout*/) {
  return ask(handle, [&](UsbPrinter& printer) {
    return printer.Control(request_type, request, value, index, data, length);
  });
}

// A bulk transfer; transferred may be nullptr.
int LIBUSB_CALL libusb_bulk_transfer(libusb_device_handle* handle,
                                     unsigned char endpoint,
                                     unsigned char* data, int length,
                                     int* transferred, unsigned int timeout) {
  int count = 0;
  int status = ask(handle, [&](UsbPrinter& printer) {
    return printer.Bulk(handle->number, endpoint, data, length, &count,
                        timeout);
  });
  if (transferred != nullptr) *transferred = count;
  return status;
}

// A string descriptor in ASCII: the device's first language, each UTF-16
// character outside ASCII as '?', cut to length - 1 bytes and terminated;
// the count of characters.
int LIBUSB_CALL libusb_get_string_descriptor_ascii(libusb_device_handle* handle,
                                                   uint8_t index,
                                                   unsigned char* data,
                                                   int length) {
  if (index == 0 || length < 1) return LIBUSB_ERROR_INVALID_PARAM;
  unsigned char buffer[255];
  uint16_t descriptor = static_cast<uint16_t>(LIBUSB_DT_STRING << 8);
  int got = libusb_control_transfer(handle, LIBUSB_ENDPOINT_IN,
                                    LIBUSB_REQUEST_GET_DESCRIPTOR, descriptor,
                                    0, buffer, sizeof buffer, 1000);
  if (got < 0) return got;
  if (got < 4) return LIBUSB_ERROR_IO;
  uint16_t language = static_cast<uint16_t>(buffer[2] | (buffer[3] << 8));
  got = libusb_control_transfer(handle, LIBUSB_ENDPOINT_IN,
                                LIBUSB_REQUEST_GET_DESCRIPTOR,
                                static_cast<uint16_t>(descriptor | index),
                                language, buffer, sizeof buffer, 1000);
  if (got < 0) return got;
  if (got < 2 || buffer[1] != LIBUSB_DT_STRING || buffer[0] > got)
    return LIBUSB_ERROR_IO;
  int count = 0;
  for (int i = 2; i + 1 < buffer[0] && count < length - 1; i += 2) {
    bool ascii = buffer[i] < 0x80 && buffer[i + 1] == 0;
    data[count++] = ascii ? buffer[i] : '?';
  }
  data[count] = '\0';
  return count;
}

// The English text of an error code ("Other error" for codes it does not
// know).
const char* LIBUSB_CALL libusb_strerror(int code) {
  const ErrorText* entry = error_text(code);
  return entry != nullptr ? entry->text : "Other error";
}

// The name of an error code ("**UNKNOWN**" for codes it does not know).
const char* LIBUSB_CALL libusb_error_name(int code) {
  const ErrorText* entry = error_text(code);
  return entry != nullptr ? entry->name : "**UNKNOWN**";
}

}  // extern "C"
