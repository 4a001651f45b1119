// The emulated printer's descriptors, laid out byte by byte as they go over
// the USB wire (multi-byte fields little-endian).

#include "sim/usb/printer_descriptors.h"

#include <libusb-1.0/libusb.h>

#include <cstring>
#include <initializer_list>

namespace {

constexpr uint8_t kPrinterSubclass = 1;
constexpr uint8_t kProtocolUnidirectional = 1;
constexpr uint8_t kProtocolBidirectional = 2;
constexpr uint8_t kSelfPowered = 0xc0;
constexpr uint16_t kUsb20 = 0x0200;
constexpr uint16_t kDeviceRelease = 0x0100;
constexpr uint8_t kControlPacketSize = 64;

// Appends bytes one by one.
void put(Bytes* out, std::initializer_list<uint8_t> bytes) {
  for (uint8_t byte : bytes) out->push_back(byte);
}

// Appends a 16-bit field, low byte first.
void put16(Bytes* out, uint16_t value) {
  out->push_back(static_cast<uint8_t>(value & 0xff));
  out->push_back(static_cast<uint8_t>(value >> 8));
}

// Appends an interface descriptor.
void put_interface(Bytes* out, uint8_t alternate, uint8_t endpoints,
                   uint8_t protocol) {
  put(out, {LIBUSB_DT_INTERFACE_SIZE, LIBUSB_DT_INTERFACE, kPrinterInterface,
            alternate, endpoints, LIBUSB_CLASS_PRINTER, kPrinterSubclass,
            protocol, 0});
}

// Appends a bulk endpoint descriptor.
void put_bulk_endpoint(Bytes* out, uint8_t address, size_t packet_size) {
  put(out, {LIBUSB_DT_ENDPOINT_SIZE, LIBUSB_DT_ENDPOINT, address,
            LIBUSB_TRANSFER_TYPE_BULK});
  put16(out, static_cast<uint16_t>(packet_size));
  out->push_back(0);  // bInterval
}

}  // namespace

// bcdUSB 2.0, class per interface, three strings, one configuration.
Bytes device_descriptor() {
  Bytes out = {LIBUSB_DT_DEVICE_SIZE, LIBUSB_DT_DEVICE};
  put16(&out, kUsb20);
  put(&out, {LIBUSB_CLASS_PER_INTERFACE, 0, 0, kControlPacketSize});
  put16(&out, kVendorId);
  put16(&out, kProductId);
  put16(&out, kDeviceRelease);
  put(&out, {1, 2, 3, 1});  // the three strings, one configuration
  return out;
}

// One configuration; its interface offers protocol 1 and, on a
// bidirectional device, protocol 2 as a second alternate setting.
Bytes configuration_descriptor(bool oneway, size_t packet_size) {
  Bytes body;
  put_interface(&body, 0, 1, kProtocolUnidirectional);
  put_bulk_endpoint(&body, kBulkOutAddress, packet_size);
  if (!oneway) {
    put_interface(&body, 1, 2, kProtocolBidirectional);
    put_bulk_endpoint(&body, kBulkOutAddress, packet_size);
    put_bulk_endpoint(&body, kBulkInAddress, packet_size);
  }
  Bytes out = {LIBUSB_DT_CONFIG_SIZE, LIBUSB_DT_CONFIG};
  put16(&out, static_cast<uint16_t>(LIBUSB_DT_CONFIG_SIZE + body.size()));
  put(&out, {1, kConfigurationValue, 0, kSelfPowered, 1});
  out.insert(out.end(), body.begin(), body.end());
  return out;
}

// The language list, or a string in UTF-16LE.
Bytes string_descriptor(uint8_t index) {
  static const char* const kStrings[] = {kManufacturer, kProduct,
                                         kSerialNumber};
  if (index == 0) {
    Bytes out = {4, LIBUSB_DT_STRING};
    put16(&out, kLanguageEnglishUs);
    return out;
  }
  if (index > 3) return Bytes();
  const char* text = kStrings[index - 1];
  Bytes out = {static_cast<uint8_t>(2 + 2 * strlen(text)), LIBUSB_DT_STRING};
  for (const char* c = text; *c != '\0'; c++)
    put16(&out, static_cast<uint8_t>(*c));
  return out;
}

// The length (big-endian, counting its own two bytes), then the ID.
Bytes device_id_answer() {
  size_t length = 2 + strlen(kDeviceId);
  Bytes out(length);
  out[0] = static_cast<uint8_t>(length >> 8);
  out[1] = static_cast<uint8_t>(length & 0xff);
  memcpy(&out[2], kDeviceId, length - 2);
  return out;
}
