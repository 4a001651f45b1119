// The option table as text: quillaroth-sim --help, and the README's tables
// (quillaroth-sim --print-table markdown), both made from
// sim/option_table.h alone.

#ifndef QUILLAROTH_SIM_OPTION_HELP_H_
#define QUILLAROTH_SIM_OPTION_HELP_H_

#include <string>

#include "sim/option_table.h"

// What the option means, in Markdown: its help text, then where a reply
// field sits and the printer's value when the script is silent ("Error
// code (`000000`: no error). Offsets 131-133. Default `000000`.").
std::string option_meaning(const OptionSpec& option);

// The --help text, lines of at most 79 columns, backticks taken out.
std::string usage_text();

// One Markdown table per group of options, each under a "#### Heading"
// line, with the columns Option, Key and Meaning.
std::string markdown_tables();

#endif  // QUILLAROTH_SIM_OPTION_HELP_H_
