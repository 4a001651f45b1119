#include "tests/admin/ppd_shapes.h"

#include <algorithm>
#include <sstream>

#include "admin/command_filter_lines.h"

const char kHeader[] =
    "*PPD-Adobe: \"4.3\"\n"
    "*FormatVersion: \"4.3\"\n"
    "*FileVersion: \"1.0\"\n"
    "*LanguageVersion: English\n"
    "*LanguageEncoding: ISOLatin1\n"
    "*PCFileName: \"VENDOR.PPD\"\n"
    "*Manufacturer: \"Vendor\"\n"
    "*Product: \"(Vendor Photo)\"\n"
    "*ModelName: \"Vendor Photo\"\n"
    "*ShortNickName: \"Vendor Photo\"\n"
    "*NickName: \"Vendor Photo\"\n"
    "*PSVersion: \"(3010.000) 0\"\n";
const char kVendorFilter[] =
    "*cupsFilter: \"application/vnd.cups-raster 50 rastertopwg\"\n";
const char kVendorFilter2[] =
    "*cupsFilter2: \"application/vnd.cups-raster "
    "application/vnd.vendor-raster 50 rastertopwg\"\n";
const char kTrailer[] = "*% End of vendor.ppd\n";

std::string FilterOnlyPpd() {
  return std::string(kHeader) + kVendorFilter + kTrailer;
}

std::string Filter2Ppd() {
  return std::string(kHeader) + kVendorFilter2 + kVendorFilter + kTrailer;
}

std::string PostScriptPpd() { return std::string(kHeader) + kTrailer; }

std::string WholePpd(const std::string& filter_lines) {
  std::istringstream in(kSimulatorPpd);
  std::string text, line;
  bool placed = false;
  while (std::getline(in, line)) {
    if (line.rfind("*cupsFilter2:", 0) == 0 ||
        line.rfind("*cupsCommands:", 0) == 0 ||
        line.rfind("*cupsIPPReason ", 0) == 0) {
      if (!placed) text += filter_lines;
      placed = true;
      continue;
    }
    text += line + "\n";
  }
  return text;
}

std::string WithCrlf(const std::string& text) {
  std::string out;
  for (char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

std::string Block(const std::vector<std::string>& lines) {
  std::string text = "*% quillaroth enable: begin\n";
  for (const std::string& line : lines) text += line;
  return text + "*% quillaroth enable: end\n";
}

std::string ReasonLines(const std::vector<std::string>& except) {
  std::string text;
  for (const std::string& line : TheCommandFilterLines().reasons)
    if (std::find(except.begin(), except.end(), ReasonKeyword(line)) ==
        except.end())
      text += line + "\n";
  return text;
}
