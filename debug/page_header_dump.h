// Dump of a CUPS raster page header for the log.
//
// dump() writes the 43 lines "=== cups_page_header_t ===", three headings
// and "__Field=value        /* comment */" for every field of the version-1
// page header, to stderr.  Enumerated fields are named as in cups_names.h.

#ifndef QUILLAROTH_DEBUG_PAGE_HEADER_DUMP_H_
#define QUILLAROTH_DEBUG_PAGE_HEADER_DUMP_H_

#include <cups/raster.h>

// Writes every field of the page header to stderr, one a line.
void dump(cups_page_header_s const* header);

#endif  // QUILLAROTH_DEBUG_PAGE_HEADER_DUMP_H_
