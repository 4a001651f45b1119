#include "debug/page_header_dump.h"

#include <cstdio>

#include "debug/cups_names.h"
#include "debug/raw_value.h"

namespace {

// Reads an unsigned header field as the signed value the log prints.
int as_int(unsigned value) { return static_cast<int>(value); }

// Names an enumerated header field, whatever number it holds.
template <typename E>
const char* name_of(const E& field) {
  return to_string(static_cast<E>(raw_value(field)));
}

}  // namespace

void dump(cups_page_header_s const* header) {
  const cups_page_header_s& h = *header;
  fprintf(stderr, "=== cups_page_header_t ===\n");
  fprintf(stderr, "Standard Page Device Dictionary String Values\n");
  fprintf(stderr, "__MediaClass=%s        /* MediaClass string */\n", h.MediaClass);
  fprintf(stderr, "__MediaColor=%s        /* MediaColor string */\n", h.MediaColor);
  fprintf(stderr, "__MediaType=%s        /* MediaType string */\n", h.MediaType);
  fprintf(stderr, "__OutputType=%s        /* OutputType string */\n", h.OutputType);
  fprintf(stderr, "Standard Page Device Dictionary Integer Values\n");
  fprintf(stderr, "__AdvanceDistance=%d        /* AdvanceDistance value in points */\n", as_int(h.AdvanceDistance));
  fprintf(stderr, "__AdvanceMedia=%s        /* AdvanceMedia value (@link cups_adv_t@) */\n", name_of(h.AdvanceMedia));
  fprintf(stderr, "__Collate=%s        /* Collated copies value */\n", name_of(h.Collate));
  fprintf(stderr, "__CutMedia=%s        /* CutMedia value (@link cups_cut_t@) */\n", name_of(h.CutMedia));
  fprintf(stderr, "__Duplex=%s        /* Duplexed (double-sided) value */\n", name_of(h.Duplex));
  fprintf(stderr, "__HWResolution=(%d,%d)        /* Resolution in dots-per-inch */\n", as_int(h.HWResolution[0]), as_int(h.HWResolution[1]));
  // Only left and bottom: the line has always shown the box this way.
  fprintf(stderr, "__ImagingBoundingBox=(%d,%d)        /* Pixel region that is painted (points, left, bottom, right, top) */\n", as_int(h.ImagingBoundingBox[0]), as_int(h.ImagingBoundingBox[1]));
  fprintf(stderr, "__InsertSheet=%s        /* InsertSheet value */\n", name_of(h.InsertSheet));
  fprintf(stderr, "__Jog=%s        /* Jog value (@link cups_jog_t@) */\n", name_of(h.Jog));
  fprintf(stderr, "__LeadingEdge=%s        /* LeadingEdge value (@link cups_edge_t@) */\n", name_of(h.LeadingEdge));
  fprintf(stderr, "__Margins=(%d,%d)        /* Lower-lefthand margins in points */\n", as_int(h.Margins[0]), as_int(h.Margins[1]));
  fprintf(stderr, "__ManualFeed=%s        /* ManualFeed value */\n", name_of(h.ManualFeed));
  fprintf(stderr, "__MediaPosition=%d        /* MediaPosition value */\n", as_int(h.MediaPosition));
  fprintf(stderr, "__MediaWeight=%d        /* MediaWeight value in grams/m^2 */\n", as_int(h.MediaWeight));
  fprintf(stderr, "__MirrorPrint=%s        /* MirrorPrint value */\n", name_of(h.MirrorPrint));
  fprintf(stderr, "__NegativePrint=%s        /* NegativePrint value */\n", name_of(h.NegativePrint));
  fprintf(stderr, "__NumCopies=%d        /* Number of copies to produce */\n", as_int(h.NumCopies));
  fprintf(stderr, "__Orientation=%s        /* Orientation value (@link cups_orient_t@) */\n", name_of(h.Orientation));
  fprintf(stderr, "__OutputFaceUp=%s        /* OutputFaceUp value */\n", name_of(h.OutputFaceUp));
  fprintf(stderr, "__PageSize=(%d,%d)        /* Width and length of page in points */\n", as_int(h.PageSize[0]), as_int(h.PageSize[1]));
  fprintf(stderr, "__Separations=%s        /* Separations value */\n", name_of(h.Separations));
  fprintf(stderr, "__TraySwitch=%s        /* TraySwitch value */\n", name_of(h.TraySwitch));
  fprintf(stderr, "__Tumble=%s        /* Tumble value */\n", name_of(h.Tumble));
  fprintf(stderr, "CUPS Page Device Dictionary Values\n");
  fprintf(stderr, "__cupsWidth=%d        /* Width of page image in pixels */\n", as_int(h.cupsWidth));
  fprintf(stderr, "__cupsHeight=%d        /* Height of page image in pixels */\n", as_int(h.cupsHeight));
  fprintf(stderr, "__cupsMediaType=%d        /* Media type code */\n", as_int(h.cupsMediaType));
  fprintf(stderr, "__cupsBitsPerColor=%d        /* Number of bits for each color */\n", as_int(h.cupsBitsPerColor));
  fprintf(stderr, "__cupsBitsPerPixel=%d        /* Number of bits for each pixel */\n", as_int(h.cupsBitsPerPixel));
  fprintf(stderr, "__cupsBytesPerLine=%d        /* Number of bytes per line */\n", as_int(h.cupsBytesPerLine));
  fprintf(stderr, "__cupsColorOrder=%s        /* Order of colors */\n", name_of(h.cupsColorOrder));
  fprintf(stderr, "__cupsColorSpace=%s        /* True colorspace */\n", name_of(h.cupsColorSpace));
  fprintf(stderr, "__cupsCompression=%d        /* Device compression to use */\n", as_int(h.cupsCompression));
  fprintf(stderr, "__cupsRowCount=%d        /* Rows per band */\n", as_int(h.cupsRowCount));
  fprintf(stderr, "__cupsRowFeed=%d        /* Feed between bands */\n", as_int(h.cupsRowFeed));
  fprintf(stderr, "__cupsRowStep=%d        /* Spacing between lines */\n", as_int(h.cupsRowStep));
}
