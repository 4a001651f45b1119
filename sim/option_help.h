// The option table as text: quillaroth-sim --help, the README's tables
// (quillaroth-sim --print-table markdown and --print-table uri-keys) and
// the manual page's option sections (--print-table man), all made from
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

// The Markdown table of the keys that a device URI takes, with the columns
// Key, Value and Meaning.
std::string uri_key_table();

// The manual page's option sections, in roff: a ".SS Heading" for each
// group of options, an entry (.TP) for each option, and ".SS Keys", the
// keys of --reply and of --connection and a device URI.
std::string man_sections();

// What --print-table prints in the format (one of kTableFormats).
std::string printed_table(const std::string& format);

#endif  // QUILLAROTH_SIM_OPTION_HELP_H_
