// What the emulated printer tells the host about itself: its USB
// descriptors and its IEEE 1284 device ID.
//
// One configuration (value 1, self-powered) with one printer-class
// interface (class 7, subclass 1):
//
//   bidirectional device:  alternate setting 0, protocol 1, bulk OUT 0x01
//                          alternate setting 1, protocol 2, bulk OUT 0x01
//                                                           bulk IN  0x82
//   one-way device:        alternate setting 0, protocol 1, bulk OUT 0x01
//
// String descriptors (US English): 1 the manufacturer, 2 the product,
// 3 the serial number.  The device ID names the same make and model as the
// queue's PPD ("Quillaroth" "Simulated Printer").

#ifndef QUILLAROTH_SIM_USB_PRINTER_DESCRIPTORS_H_
#define QUILLAROTH_SIM_USB_PRINTER_DESCRIPTORS_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "sim/scenario.h"

constexpr uint16_t kVendorId = 0xf0f0;
constexpr uint16_t kProductId = 0x0001;
constexpr uint8_t kConfigurationValue = 1;
constexpr uint8_t kPrinterInterface = 0;
constexpr uint8_t kBulkOutAddress = 0x01;
constexpr uint8_t kBulkInAddress = 0x82;
constexpr uint16_t kLanguageEnglishUs = 0x0409;

constexpr char kManufacturer[] = "Quillaroth";
constexpr char kProduct[] = "Simulated Printer";
constexpr char kSerialNumber[] = "SIM0001";
constexpr char kDeviceId[] =
    "MFG:Quillaroth;MDL:Simulated Printer;CMD:QUILLAROTH-ESC;CLS:PRINTER;"
    "DES:Quillaroth Simulated Printer;";

// The 18-byte device descriptor.
Bytes device_descriptor();

// The configuration descriptor with its interface and endpoint descriptors,
// wTotalLength bytes in all.
Bytes configuration_descriptor(bool oneway, size_t packet_size);

// String descriptor index (0: the language list); empty when there is none.
Bytes string_descriptor(uint8_t index);

// The answer to GET_DEVICE_ID: a two-byte big-endian length that counts
// itself, then the device ID.
Bytes device_id_answer();

#endif  // QUILLAROTH_SIM_USB_PRINTER_DESCRIPTORS_H_
