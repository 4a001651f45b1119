// dump(cups_page_header_s const*): the 43-line page header dump.

#include "debug/page_header_dump.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <sstream>
#include <string>

#include "tests/support/stderr_capture.h"
#include "tests/support/stderr_writes.h"

namespace {

// Runs the header dump and returns all it wrote to stderr.
std::string DumpText(const cups_page_header_t& header) {
  StderrCapture capture;
  dump(&header);
  return capture.Text();
}

// A page header with every byte zero.
cups_page_header_t ZeroHeader() {
  cups_page_header_t header;
  std::memset(&header, 0, sizeof(header));
  return header;
}

// The dump of a zero-filled header.
std::string ZeroHeaderText() {
  return
      "=== cups_page_header_t ===\n"
      "Standard Page Device Dictionary String Values\n"
      "__MediaClass=        /* MediaClass string */\n"
      "__MediaColor=        /* MediaColor string */\n"
      "__MediaType=        /* MediaType string */\n"
      "__OutputType=        /* OutputType string */\n"
      "Standard Page Device Dictionary Integer Values\n"
      "__AdvanceDistance=0        /* AdvanceDistance value in points */\n"
      "__AdvanceMedia=CUPS_ADVANCE_NONE        /* AdvanceMedia value (@link cups_adv_t@) */\n"
      "__Collate=CUPS_FALSE        /* Collated copies value */\n"
      "__CutMedia=CUPS_CUT_NONE        /* CutMedia value (@link cups_cut_t@) */\n"
      "__Duplex=CUPS_FALSE        /* Duplexed (double-sided) value */\n"
      "__HWResolution=(0,0)        /* Resolution in dots-per-inch */\n"
      "__ImagingBoundingBox=(0,0)        /* Pixel region that is painted (points, left, bottom, right, top) */\n"
      "__InsertSheet=CUPS_FALSE        /* InsertSheet value */\n"
      "__Jog=CUPS_JOG_NONE        /* Jog value (@link cups_jog_t@) */\n"
      "__LeadingEdge=CUPS_EDGE_TOP        /* LeadingEdge value (@link cups_edge_t@) */\n"
      "__Margins=(0,0)        /* Lower-lefthand margins in points */\n"
      "__ManualFeed=CUPS_FALSE        /* ManualFeed value */\n"
      "__MediaPosition=0        /* MediaPosition value */\n"
      "__MediaWeight=0        /* MediaWeight value in grams/m^2 */\n"
      "__MirrorPrint=CUPS_FALSE        /* MirrorPrint value */\n"
      "__NegativePrint=CUPS_FALSE        /* NegativePrint value */\n"
      "__NumCopies=0        /* Number of copies to produce */\n"
      "__Orientation=CUPS_ORIENT_0        /* Orientation value (@link cups_orient_t@) */\n"
      "__OutputFaceUp=CUPS_FALSE        /* OutputFaceUp value */\n"
      "__PageSize=(0,0)        /* Width and length of page in points */\n"
      "__Separations=CUPS_FALSE        /* Separations value */\n"
      "__TraySwitch=CUPS_FALSE        /* TraySwitch value */\n"
      "__Tumble=CUPS_FALSE        /* Tumble value */\n"
      "CUPS Page Device Dictionary Values\n"
      "__cupsWidth=0        /* Width of page image in pixels */\n"
      "__cupsHeight=0        /* Height of page image in pixels */\n"
      "__cupsMediaType=0        /* Media type code */\n"
      "__cupsBitsPerColor=0        /* Number of bits for each color */\n"
      "__cupsBitsPerPixel=0        /* Number of bits for each pixel */\n"
      "__cupsBytesPerLine=0        /* Number of bytes per line */\n"
      "__cupsColorOrder=CUPS_ORDER_CHUNKED        /* Order of colors */\n"
      "__cupsColorSpace=CUPS_CSPACE_W        /* True colorspace */\n"
      "__cupsCompression=0        /* Device compression to use */\n"
      "__cupsRowCount=0        /* Rows per band */\n"
      "__cupsRowFeed=0        /* Feed between bands */\n"
      "__cupsRowStep=0        /* Spacing between lines */\n";
}

// The dump of a header whose fields hold these values (by name, as the
// dump prints them) and are zero elsewhere.
std::string HeaderText(const std::map<std::string, std::string>& values) {
  std::istringstream zero(ZeroHeaderText());
  std::string line, text;
  while (std::getline(zero, line)) {
    size_t equals = line.find('=');
    size_t comment = line.find("        /*");
    auto value = line.compare(0, 2, "__") == 0 && equals != std::string::npos
                     ? values.find(line.substr(2, equals - 2))
                     : values.end();
    if (value != values.end())
      line = line.substr(0, equals + 1) + value->second + line.substr(comment);
    text += line + "\n";
  }
  return text;
}

// The whole trace, written out: the readable example of this file.
// (ZeroHeaderText() above spells out the 43 lines.)
TEST(PageHeaderDumpTest, ZeroHeaderGoldenTrace) {
  const std::string text = DumpText(ZeroHeader());
  EXPECT_EQ(ZeroHeaderText(), text);
  size_t lines = 0;
  for (char c : text)
    if (c == '\n') ++lines;
  EXPECT_EQ(43u, lines);
}

// A header with every field set: strings, unknown enumeration values, bools
// of 2 and more, and unsigned values that print as negative numbers.
cups_page_header_t FullHeader() {
  cups_page_header_t header = ZeroHeader();
  std::strcpy(header.MediaClass, "PhotoClass");
  std::strcpy(header.MediaColor, "White");
  std::strcpy(header.MediaType, "Glossy");
  std::memset(header.OutputType, 'o', sizeof(header.OutputType) - 1);
  header.AdvanceDistance = 12;
  header.AdvanceMedia = static_cast<cups_adv_t>(7);
  header.Collate = static_cast<cups_bool_t>(2);
  header.CutMedia = CUPS_CUT_PAGE;
  header.Duplex = CUPS_TRUE;
  header.HWResolution[0] = 300;
  header.HWResolution[1] = 600;
  header.ImagingBoundingBox[0] = 10;
  header.ImagingBoundingBox[1] = 20;
  header.ImagingBoundingBox[2] = 300;
  header.ImagingBoundingBox[3] = 400;
  header.InsertSheet = static_cast<cups_bool_t>(-1);
  header.Jog = CUPS_JOG_SET;
  header.LeadingEdge = static_cast<cups_edge_t>(9);
  header.Margins[0] = 5;
  header.Margins[1] = 6;
  header.ManualFeed = CUPS_TRUE;
  header.MediaPosition = 2147483648u;
  header.MediaWeight = 250;
  header.MirrorPrint = static_cast<cups_bool_t>(2);
  header.NegativePrint = CUPS_FALSE;
  header.NumCopies = 3;
  header.Orientation = static_cast<cups_orient_t>(7);
  header.OutputFaceUp = CUPS_TRUE;
  header.PageSize[0] = 360;
  header.PageSize[1] = 504;
  header.Separations = static_cast<cups_bool_t>(3);
  header.TraySwitch = CUPS_TRUE;
  header.Tumble = static_cast<cups_bool_t>(2);
  header.cupsWidth = 4294967295u;
  header.cupsHeight = 1800;
  header.cupsMediaType = 4294967294u;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsBytesPerLine = 3600;
  header.cupsColorOrder = static_cast<cups_order_t>(3);
  header.cupsColorSpace = static_cast<cups_cspace_t>(47);
  header.cupsCompression = 1;
  header.cupsRowCount = 2;
  header.cupsRowFeed = 3;
  header.cupsRowStep = 4;
  return header;
}

// The dump of FullHeader(): the zero header's lines with these values.
std::string FullHeaderText() {
  return HeaderText({
      {"MediaClass", "PhotoClass"},
      {"MediaColor", "White"},
      {"MediaType", "Glossy"},
      {"OutputType", std::string(63, 'o')},
      {"AdvanceDistance", "12"},
      {"AdvanceMedia", "cups_adv_e(7)"},
      {"Collate", "cups_bool_e(2)"},
      {"CutMedia", "CUPS_CUT_PAGE"},
      {"Duplex", "CUPS_TRUE"},
      {"HWResolution", "(300,600)"},
      {"ImagingBoundingBox", "(10,20)"},
      {"InsertSheet", "cups_bool_e(-1)"},
      {"Jog", "CUPS_JOG_SET"},
      {"LeadingEdge", "cups_edge_e(9)"},
      {"Margins", "(5,6)"},
      {"ManualFeed", "CUPS_TRUE"},
      {"MediaPosition", "-2147483648"},
      {"MediaWeight", "250"},
      {"MirrorPrint", "cups_bool_e(2)"},
      {"NegativePrint", "CUPS_FALSE"},
      {"NumCopies", "3"},
      {"Orientation", "cups_orient_e(7)"},
      {"OutputFaceUp", "CUPS_TRUE"},
      {"PageSize", "(360,504)"},
      {"Separations", "cups_bool_e(3)"},
      {"TraySwitch", "CUPS_TRUE"},
      {"Tumble", "cups_bool_e(2)"},
      {"cupsWidth", "-1"},
      {"cupsHeight", "1800"},
      {"cupsMediaType", "-2"},
      {"cupsBitsPerColor", "8"},
      {"cupsBitsPerPixel", "24"},
      {"cupsBytesPerLine", "3600"},
      {"cupsColorOrder", "cups_order_e(3)"},
      {"cupsColorSpace", "cups_cspace_e(47)"},
      {"cupsCompression", "1"},
      {"cupsRowCount", "2"},
      {"cupsRowFeed", "3"},
      {"cupsRowStep", "4"},
  });
}

TEST(PageHeaderDumpTest, EveryFieldSet) {
  EXPECT_EQ(FullHeaderText(), DumpText(FullHeader()));
}

TEST(PageHeaderDumpTest, KnownNonZeroNames) {
  cups_page_header_t header = ZeroHeader();
  header.AdvanceMedia = CUPS_ADVANCE_PAGE;
  header.Collate = CUPS_TRUE;
  header.CutMedia = CUPS_CUT_JOB;
  header.Jog = CUPS_JOG_FILE;
  header.LeadingEdge = CUPS_EDGE_LEFT;
  header.Orientation = CUPS_ORIENT_270;
  header.cupsColorOrder = CUPS_ORDER_PLANAR;
  header.cupsColorSpace = CUPS_CSPACE_SRGB;
  const std::string text = DumpText(header);
  const std::string expected = HeaderText({
      {"AdvanceMedia", "CUPS_ADVANCE_PAGE"},
      {"Collate", "CUPS_TRUE"},
      {"CutMedia", "CUPS_CUT_JOB"},
      {"Jog", "CUPS_JOG_FILE"},
      {"LeadingEdge", "CUPS_EDGE_LEFT"},
      {"Orientation", "CUPS_ORIENT_270"},
      {"cupsColorOrder", "CUPS_ORDER_PLANAR"},
      {"cupsColorSpace", "CUPS_CSPACE_SRGB"},
  });
  EXPECT_EQ(expected, text);
}

TEST(PageHeaderDumpTest, HeaderIsLeftUnchanged) {
  const cups_page_header_t before = FullHeader();
  cups_page_header_t header = before;
  StderrCapture capture;
  dump(&header);
  capture.Text();
  EXPECT_EQ(0, std::memcmp(&before, &header, sizeof(header)));
}

TEST(PageHeaderDumpTest, EachLineIsOneWrite) {
  const cups_page_header_t full = FullHeader();
  const cups_page_header_t zero = ZeroHeader();
  StderrWrites writes;
  dump(&full);
  dump(&zero);
  EXPECT_EQ(SplitLines(FullHeaderText() + ZeroHeaderText()), writes.Writes());
}

}  // namespace
