// Parsers of the values that script the simulated printer.
//
// Each takes the whole text and fails on anything else (nothing is
// skipped, nothing trails); on failure the output is left as it was.

#ifndef QUILLAROTH_SIM_VALUE_PARSERS_H_
#define QUILLAROTH_SIM_VALUE_PARSERS_H_

#include <cups/sidechannel.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

// Separates the items of a list value ("100+92"), the same on the command
// line, in --reply and in a device URI.
constexpr char kListSeparator = '+';
// Separates the keys of a key list ("error=060202,split=100+92").
constexpr char kKeySeparator = ',';

// Exactly 2*count hex digits, into count bytes.
bool parse_hex_exact(const std::string& text, size_t count, Bytes* out);

// Hex digit pairs, blanks, tabs, line ends and colons allowed between
// the bytes; "" is no bytes.
bool parse_hex_bytes(const std::string& text, Bytes* out);

// A decimal number in [min, max].
bool parse_count(const std::string& text, long min, long max, long* out);

// Sizes of at least 1 joined with kListSeparator (or, the older spelling,
// with commas): "100+92".
bool parse_pieces(const std::string& text, std::vector<size_t>* out);

// A side-channel status: a CUPS name ("OK", "CUPS_SC_STATUS_TIMEOUT", any
// case) or a number 0-255.  The result is an int: a backend may answer with
// any byte, cups_sc_status_t names only the ones that libcups knows.
bool parse_sc_status(const std::string& text, int* out);

// A switch: "1" (or "", where a bare word is allowed) is on, "0" off.
bool parse_switch(const std::string& text, bool* out);

// "N:REST" with N from 1 up: the number and the rest.
bool parse_numbered(const std::string& text, long* number, std::string* rest);

// A count of queries, or "never" (-1).
bool parse_count_or_never(const std::string& text, long* out);

// "HOST:PORT" with a numeric port 0-65535 ("[::1]:9100" for IPv6).
bool parse_host_port(const std::string& text, std::string* host, int* port);

// The short name of a side-channel status for the log ("OK", "TIMEOUT"),
// or its number.
std::string sc_status_name(int status);

// The name of a side-channel command for the log ("GET_BIDI"), or its
// number.
std::string sc_command_name(int command);

// Splits text at every separator.
std::vector<std::string> split_at(const std::string& text, char separator);

#endif  // QUILLAROTH_SIM_VALUE_PARSERS_H_
