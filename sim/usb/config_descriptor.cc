// Parsing a raw configuration descriptor into libusb's structures.

#include "sim/usb/config_descriptor.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// One alternate setting while it is parsed.
struct Alternate {
  libusb_interface_descriptor descriptor;
  std::vector<libusb_endpoint_descriptor> endpoints;
};

// A 16-bit little-endian field.
uint16_t get16(const uint8_t* p) {
  return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

// A calloc'ed copy of the items (nullptr for none); false when out of memory.
template <typename T>
bool copy_array(const std::vector<T>& items, const T** out) {
  *out = nullptr;
  if (items.empty()) return true;
  T* array = static_cast<T*>(calloc(items.size(), sizeof(T)));
  if (array == nullptr) return false;
  memcpy(static_cast<void*>(array), items.data(), items.size() * sizeof(T));
  *out = array;
  return true;
}

// Builds the interface array: alternate settings grouped by interface
// number, interfaces in the order in which they first come; there must be
// as many as the configuration says.
int build_interfaces(const std::vector<Alternate>& alternates,
                     libusb_config_descriptor* config) {
  std::vector<std::vector<libusb_interface_descriptor>> groups;
  std::vector<uint8_t> numbers;
  for (const Alternate& alternate : alternates) {
    libusb_interface_descriptor descriptor = alternate.descriptor;
    if (!copy_array(alternate.endpoints, &descriptor.endpoint))
      return LIBUSB_ERROR_NO_MEM;
    size_t i = 0;
    while (i < numbers.size() && numbers[i] != descriptor.bInterfaceNumber) i++;
    if (i == numbers.size()) {
      numbers.push_back(descriptor.bInterfaceNumber);
      groups.emplace_back();
    }
    groups[i].push_back(descriptor);
  }
  if (groups.size() != config->bNumInterfaces) return LIBUSB_ERROR_IO;
  std::vector<libusb_interface> interfaces(groups.size());
  for (size_t i = 0; i < groups.size(); i++) {
    interfaces[i].num_altsetting = static_cast<int>(groups[i].size());
    if (!copy_array(groups[i], &interfaces[i].altsetting))
      return LIBUSB_ERROR_NO_MEM;
  }
  return copy_array(interfaces, &config->interface) ? LIBUSB_SUCCESS
                                                    : LIBUSB_ERROR_NO_MEM;
}

}  // namespace

// Walks the descriptors one by one, by their bLength.
int parse_config_descriptor(const Bytes& raw,
                            struct libusb_config_descriptor** config) {
  *config = nullptr;
  if (raw.size() < LIBUSB_DT_CONFIG_SIZE || raw[1] != LIBUSB_DT_CONFIG ||
      get16(&raw[2]) != raw.size())
    return LIBUSB_ERROR_IO;
  auto* out = static_cast<libusb_config_descriptor*>(
      calloc(1, sizeof(libusb_config_descriptor)));
  if (out == nullptr) return LIBUSB_ERROR_NO_MEM;
  out->bLength = raw[0];
  out->bDescriptorType = raw[1];
  out->wTotalLength = get16(&raw[2]);
  out->bNumInterfaces = raw[4];
  out->bConfigurationValue = raw[5];
  out->iConfiguration = raw[6];
  out->bmAttributes = raw[7];
  out->MaxPower = raw[8];

  std::vector<Alternate> alternates;
  for (size_t at = raw[0]; at < raw.size(); at += raw[at]) {
    const uint8_t* d = &raw[at];
    if (d[0] < 2 || at + d[0] > raw.size()) {
      free_config_descriptor(out);
      return LIBUSB_ERROR_IO;
    }
    if (d[1] == LIBUSB_DT_INTERFACE && d[0] >= LIBUSB_DT_INTERFACE_SIZE) {
      Alternate alternate{};
      alternate.descriptor = {d[0], d[1], d[2], d[3],    d[4],    d[5],
                              d[6], d[7], d[8], nullptr, nullptr, 0};
      alternates.push_back(alternate);
    } else if (d[1] == LIBUSB_DT_ENDPOINT && d[0] >= LIBUSB_DT_ENDPOINT_SIZE &&
               !alternates.empty()) {
      alternates.back().endpoints.push_back(
          {d[0], d[1], d[2], d[3], get16(&d[4]), d[6], 0, 0, nullptr, 0});
    }
  }
  int status = build_interfaces(alternates, out);
  if (status != LIBUSB_SUCCESS) {
    free_config_descriptor(out);
    return status;
  }
  *config = out;
  return LIBUSB_SUCCESS;
}

// Frees the endpoints, the alternate settings, the interfaces, the whole.
void free_config_descriptor(struct libusb_config_descriptor* config) {
  if (config == nullptr) return;
  if (config->interface != nullptr) {
    for (int i = 0; i < config->bNumInterfaces; i++) {
      const libusb_interface& interface = config->interface[i];
      for (int a = 0; a < interface.num_altsetting; a++)
        free(const_cast<libusb_endpoint_descriptor*>(
            interface.altsetting[a].endpoint));
      free(const_cast<libusb_interface_descriptor*>(interface.altsetting));
    }
  }
  free(const_cast<libusb_interface*>(config->interface));
  free(config);
}
