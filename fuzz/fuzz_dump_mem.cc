// Fuzz target: the hex dump and the names of CUPS enumeration values.
//
// Input layout: 4 bytes of size (host order, any value, negative included,
// bounded by the bytes that follow), one label byte count (0 to 15) and the
// label, then the bytes to dump, copied to a heap block of exactly their
// length so that a read past the size is caught.  The first 36 bytes also
// name values of every enumeration and fill a raster page header to dump.

#include <cups/raster.h>
#include <cups/sidechannel.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "debug/cups_names.h"
#include "debug/dump_mem.h"
#include "debug/page_header_dump.h"
#include "fuzz/quiet_stderr.h"

namespace {

// The input's 32-bit value at offset, zero beyond its end.
int32_t Word(const uint8_t* data, size_t size, size_t offset) {
  int32_t value = 0;
  if (offset + 4 <= size) memcpy(&value, data + offset, 4);
  return value;
}

}  // namespace

// libFuzzer's entry: one dump, one round of names.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  quiet_stderr();
  int32_t wanted = Word(data, size, 0);
  size_t at = size < 4 ? size : 4;
  size_t label_length = at < size ? data[at] % 16 : 0;
  at = at < size ? at + 1 : at;
  if (label_length > size - at) label_length = size - at;
  std::string label(reinterpret_cast<const char*>(data + at), label_length);
  at += label_length;

  size_t available = size - at;
  std::unique_ptr<uint8_t[]> bytes(new uint8_t[available > 0 ? available : 1]);
  if (available > 0) memcpy(bytes.get(), data + at, available);
  int dump_size = wanted < 0 ? wanted
                             : static_cast<int>(static_cast<uint32_t>(wanted) %
                                                (available + 1));
  dump_mem(label.c_str(), bytes.get(), dump_size);

  for (size_t offset = 0; offset < 36; offset += 4) {
    int32_t value = Word(data, size, offset);
    (void)to_string(static_cast<cups_sc_status_e>(value));
    (void)to_string(static_cast<cups_adv_e>(value));
    (void)to_string(static_cast<cups_bool_e>(value));
    (void)to_string(static_cast<cups_cspace_e>(value));
    (void)to_string(static_cast<cups_cut_e>(value));
    (void)to_string(static_cast<cups_edge_e>(value));
    (void)to_string(static_cast<cups_jog_e>(value));
    (void)to_string(static_cast<cups_order_e>(value));
    (void)to_string(static_cast<cups_orient_e>(value));
  }

  cups_page_header_t header;
  memset(&header, 0, sizeof(header));
  memcpy(&header, data, size < sizeof(header) ? size : sizeof(header));
  // The media strings are NUL-terminated in any header CUPS reads.
  header.MediaClass[sizeof(header.MediaClass) - 1] = '\0';
  header.MediaColor[sizeof(header.MediaColor) - 1] = '\0';
  header.MediaType[sizeof(header.MediaType) - 1] = '\0';
  header.OutputType[sizeof(header.OutputType) - 1] = '\0';
  dump(&header);
  return 0;
}
