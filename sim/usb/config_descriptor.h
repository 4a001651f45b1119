// The parsed form of a configuration descriptor, as
// libusb_get_config_descriptor() hands it out.
//
// The raw descriptor (configuration, then each interface descriptor
// followed by its endpoint descriptors) becomes one struct
// libusb_config_descriptor with an array of struct libusb_interface, one per
// interface number, each holding its alternate settings in the order in
// which they come, each with its endpoints.  Descriptors of other types are
// skipped, as libusb keeps them only as "extra" bytes.

#ifndef QUILLAROTH_SIM_USB_CONFIG_DESCRIPTOR_H_
#define QUILLAROTH_SIM_USB_CONFIG_DESCRIPTOR_H_

#include <libusb-1.0/libusb.h>

#include "sim/scenario.h"

// Parses raw into a newly allocated tree; LIBUSB_SUCCESS, or
// LIBUSB_ERROR_IO for a malformed descriptor, LIBUSB_ERROR_NO_MEM.
int parse_config_descriptor(const Bytes& raw,
                            struct libusb_config_descriptor** config);

// Frees a tree from parse_config_descriptor (nullptr is fine).
void free_config_descriptor(struct libusb_config_descriptor* config);

#endif  // QUILLAROTH_SIM_USB_CONFIG_DESCRIPTOR_H_
