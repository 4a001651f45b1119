#include "admin/queue_checks.h"

#include <cstring>

namespace {

// Backends that send the job and read no printer bytes back: through them
// the side channel's bidirectional query answers "no", and the filter can
// never read the printer.
constexpr const char* kOneWaySchemes[] = {"ipp", "ipps", "http", "https",
                                          "lpd"};

// Queues that cups-browsed made for a printer shared by another server.
constexpr const char* kRemoteSchemes[] = {"implicitclass"};

}  // namespace

std::string WhyNoFilterHere(const PrinterAttributes& printer) {
  const std::string& name = printer.name;
  if ((printer.type & CUPS_PRINTER_CLASS) != 0)
    return name + " is a class, not a printer: enable each of its printers";
  if ((printer.type & CUPS_PRINTER_REMOTE) != 0)
    return name + " is a remote queue, shared from another server: enable it "
                  "on the server that owns the printer";
  const std::string& uri = printer.device_uri;
  std::string scheme = uri.substr(0, uri.find(':'));
  for (const char* remote : kRemoteSchemes)
    if (scheme == remote)
      return name + " is a queue for a printer shared from elsewhere (" +
             scheme + "): enable it on the server that owns the printer";
  bool one_way = false;
  for (const char* s : kOneWaySchemes) one_way = one_way || scheme == s;
  // A DNS-SD URI names the protocol the printer is found by; IPP is one way.
  if (scheme == "dnssd" &&
      (uri.find("._ipp.") != std::string::npos ||
       uri.find("._ipps.") != std::string::npos))
    one_way = true;
  if (one_way)
    return name + ": its backend '" + scheme +
           "' answers no bidirectional link, so the filter could never read "
           "the printer; the usb and socket backends can";
  return "";
}
