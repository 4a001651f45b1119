// The emulated USB printer's script: what the printer answers and how the
// device behaves on the bus.
//
// The script is a text file, one "key=value" per line ('#' starts a
// comment, blank lines are skipped).  The printer's keys are the
// simulator's own, the scenario keys of sim/option_table.h:
//
//   error=060202 remaining=0 sheet=8f10 ...   every reply's fields
//   split=100+92 size=N none close            how every reply comes
//   reset=N stall=N hang                      faults (see below)
//   wake-after=N|never (wake=)                queries that find it asleep
//   reply=N:key=value,...                     the Nth query's reply only
//   oneway                                    a one-way device: interface
//                                             protocol 1, no bulk IN
//                                             endpoint
//
// On USB, a reply that ends in a reset (reset=N, close) is the device
// unplugged after the reply's first N bytes: LIBUSB_ERROR_NO_DEVICE from
// then on.  A hung printer (stall=N, hang) takes no more bulk OUT data.
// The side-channel keys (bidi, drain, ...) are not the printer's but CUPS'
// usb backend's, and are refused.  The device's own keys:
//
//   packet=N      wMaxPacketSize of the bulk endpoints (8, 16, 32, 64, 512;
//                 default 64)
//   zlp=0|1       end a reply (or a piece of one) that fills its last packet
//                 with a zero-length packet (default 1; 0: the host's
//                 transfer waits for more and runs into its time-out)
//   empty=N       zero-length packets sent ahead of each reply (default 0)
//   appear=N      the device is on the bus from the Nth device scan of the
//                 process on (default 1: from the first)
//
// The file's path comes from the environment variable QUILLAROTH_USB_PRINTER
// (the wrapper backend sets it); no variable or no file: the default
// printer, awake and well.

#ifndef QUILLAROTH_SIM_USB_USB_SCRIPT_H_
#define QUILLAROTH_SIM_USB_USB_SCRIPT_H_

#include <cstddef>
#include <string>

#include "sim/scenario.h"

// The environment variable that names the script file.
constexpr char kUsbScriptVariable[] = "QUILLAROTH_USB_PRINTER";

struct UsbScript {
  Scenario printer;          // what the printer answers
  bool oneway = false;       // interface protocol 1, bulk OUT only
  size_t packet_size = 64;   // wMaxPacketSize of the bulk endpoints
  bool end_with_zlp = true;  // a reply that fills its last packet ends so
  long empty_packets = 0;    // lone zero-length packets ahead of a reply
  long appear_at_scan = 1;   // the first device scan that finds it
};

// Sets one key of the script.  On a bad key or value returns false and says
// why in *why.
bool set_usb_script_key(UsbScript* script, const std::string& key,
                        const std::string& value, std::string* why);

// Parses the lines of a script.  On failure returns false with the line
// number and the reason in *why.
bool parse_usb_script(const std::string& text, UsbScript* script,
                      std::string* why);

// Reads the script file at path; a file that does not exist leaves the
// defaults.  On an unreadable file or a bad line returns false with the
// reason in *why.
bool load_usb_script(const std::string& path, UsbScript* script,
                     std::string* why);

#endif  // QUILLAROTH_SIM_USB_USB_SCRIPT_H_
