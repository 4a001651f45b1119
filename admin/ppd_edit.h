// The edit of a queue's PPD text behind `quillaroth enable QUEUE` and
// `quillaroth disable QUEUE`: sending the queue's command jobs to
// commandtoquillaroth without touching the printer's print path.
//
// enable appends one block, marked by "*% quillaroth enable: begin" and
// "*% quillaroth enable: end" lines, holding the lines of
// ppd/quillaroth-command-filter.txt that the PPD needs:
//   - the *cupsFilter2 form of the filter line when the PPD has any
//     *cupsFilter2 line (CUPS then ignores every *cupsFilter line), the
//     *cupsFilter form otherwise;
//   - for a PPD with no filter line at all (a PostScript printer) also
//     *cupsFilter: "application/vnd.cups-postscript 0 -", the PostScript
//     path that CUPS gives such a queue only while its PPD names no filter;
//   - *cupsCommands with ReportLevels and ReportStatus.  When the PPD has a
//     *cupsCommands line, the block's line carries its words first (no word
//     twice), and the PPD's own line stays in its place as a comment,
//     "*% quillaroth enable: was *cupsCommands: ...";
//   - the *cupsIPPReason lines of the reasons that the PPD does not describe.
// The block takes the PPD's line ends (LF or CRLF).  disable removes the
// block and turns the "was" comments back into their lines, giving back
// the PPD as it was, byte for byte.  enable on a PPD that has the block, or
// that runs commandtoquillaroth on its own (the simulated printer's),
// changes nothing.

#ifndef QUILLAROTH_ADMIN_PPD_EDIT_H_
#define QUILLAROTH_ADMIN_PPD_EDIT_H_

#include <map>
#include <string>

// The --dry-run view of an edit.
#include "admin/unified_diff.h"

// The outcome of an edit.
struct PpdEdit {
  enum class Outcome { kChanged, kUnchanged, kRefused };
  Outcome outcome = Outcome::kRefused;
  // The PPD after the edit (the input itself when unchanged or refused).
  std::string text;
  // One line for the admin: what was done, or why nothing was ("already
  // enabled by quillaroth", "libcups cannot read the PPD: line 3: ...").
  std::string reason;
};

// Adds the block to a PPD (see above).  Refused: a PPD that libcups cannot
// read ("line N: <libcups' error>"), a PPD that sends command jobs to
// another program, a damaged block, line ends of a lone CR.
PpdEdit EnableCommandFilter(const std::string& ppd);

// Removes the block and restores a merged *cupsCommands line; a PPD
// without the block comes back unchanged ("not enabled by quillaroth").
PpdEdit DisableCommandFilter(const std::string& ppd);

// True when the queue's command jobs go to commandtoquillaroth, as CUPS
// picks their filter: among the *cupsFilter2 lines if the PPD has any, the
// *cupsFilter lines otherwise, the cheapest line from
// application/vnd.cups-command runs commandtoquillaroth (a path ending in
// /commandtoquillaroth counts).  False for a PPD that libcups cannot read.
bool RunsCommandFilter(const std::string& ppd);

// The texts of the *cupsIPPReason KEYWORD/TEXT lines by keyword, as libcups
// reads them, from a whole PPD or from PPD lines without a PPD's header
// (ppd/quillaroth-command-filter.txt); empty for a text that libcups
// cannot read.
std::map<std::string, std::string> ReasonTexts(const std::string& ppd);

#endif  // QUILLAROTH_ADMIN_PPD_EDIT_H_
