// Small PPDs of the shapes that `quillaroth enable` meets, shared by the
// edit tests and the print path tests, and the block that enable appends,
// built from the compiled-in fragment.

#ifndef QUILLAROTH_TESTS_ADMIN_PPD_SHAPES_H_
#define QUILLAROTH_TESTS_ADMIN_PPD_SHAPES_H_

#include <string>
#include <vector>

// The simulated printer's PPD, ppd/quillaroth-sim.ppd, compiled in.
extern const char kSimulatorPpd[];

// The header lines of every shape.
extern const char kHeader[];
// The vendor's print filter, as a *cupsFilter line and a *cupsFilter2 one
// (rastertopwg: a CUPS filter that exists wherever CUPS does).
extern const char kVendorFilter[];
extern const char kVendorFilter2[];
// The last line of every shape.
extern const char kTrailer[];

// Raster printer with *cupsFilter lines only.
std::string FilterOnlyPpd();
// Raster printer with a *cupsFilter2 line (and the *cupsFilter line for old
// CUPS versions beside it).
std::string Filter2Ppd();
// PostScript printer: no filter line at all.
std::string PostScriptPpd();

// A whole PPD that passes cupstestppd: the simulated printer's, without
// its *cupsFilter2, *cupsCommands and *cupsIPPReason lines, with the
// filter lines given (each with its LF) in their place.
std::string WholePpd(const std::string& filter_lines);

// Every line with CRLF instead of LF.
std::string WithCrlf(const std::string& text);

// The block that enable appends: begin line, the lines, end line.
std::string Block(const std::vector<std::string>& lines);
// The fragment's *cupsIPPReason lines, each with its LF, but those of the
// keywords given.
std::string ReasonLines(const std::vector<std::string>& except = {});

#endif  // QUILLAROTH_TESTS_ADMIN_PPD_SHAPES_H_
