// The simulated printer's options, described once.
//
// Each row of the table names an option and says where it is accepted:
//
//   on quillaroth-sim's command line     --error 060202
//   as a key of one query's reply        --reply 2:error=060202,split=100+92
//   as a key of the device URI and of    quillarothsim://x?error=060202
//     one network connection             --connection 2:error=060202
//
// with the same name and the same value everywhere (lists are joined with
// kListSeparator, '+').  A row that is a reply field also gives its offset
// and width in the printer-information reply; the reply is laid out from
// those rows (sim/reply_plan.cc), and --help, the README's tables and the
// manual page's option sections are printed from the table
// (sim/option_help.h).  A new field is one new row.

#ifndef QUILLAROTH_SIM_OPTION_TABLE_H_
#define QUILLAROTH_SIM_OPTION_TABLE_H_

#include <cstddef>
#include <string>
#include <vector>

#include "sim/scenario.h"
#include "sim/sim_settings.h"

// The headings under which --help and the README list the options.
enum class OptionGroup { kOutput, kSideChannel, kPrinter, kFaults, kNetwork };

// Where an option is accepted: a set of these bits.
enum OptionScope : unsigned {
  kCommandLine = 1,  // quillaroth-sim --NAME VALUE
  kPerQuery = 2,     // --reply N:NAME=VALUE
  kScenarioKey = 4,  // a device URI's NAME=VALUE, --connection N:NAME=VALUE
};

// Where a field sits in the printer-information reply.
struct ReplyField {
  size_t offset = 0;
  size_t width = 0;       // 0: the option is not a reply field
  bool is_count = false;  // a big-endian number, else hex bytes
};

// What an option's value goes into; an option only touches the parts
// that its scope promises to be there.
struct OptionTarget {
  SimSettings* settings = nullptr;  // command line only
  Scenario* scenario = nullptr;     // command line and scenario keys
  ReplyShape* shape = nullptr;      // every scope
};

// What an option takes after its name.
enum class ValueKind {
  kSwitch,    // nothing, =1 or =0: --oneway, oneway, oneway=0
  kRequired,  // a value: --error 060202, error=060202
  kOptional,  // a value that the command line may leave out:
              // --close-sidechannel, --close-sidechannel=2
};

struct OptionSpec {
  const char* name;
  const char* alias;  // a second name that is accepted too, or nullptr
  ValueKind kind;
  // The value's syntax: "XXXXXX", "N"; "" for a switch.
  const char* value;
  OptionGroup group;
  unsigned scope;
  ReplyField field;
  // The printer's value when unscripted, or "": the scenario and the reply
  // start from these (Scenario(), default_reply_shape()).
  const char* default_value;
  // What a good value is, for complaints ("a number or never"); "" for a
  // reply field (it follows from the field's width).
  const char* takes;
  // One or more sentences, Markdown (backticks for literal text).
  const char* help;
  // Parses the value into the target; false on a bad value, with *why
  // left empty (the complaint is made from `takes`) or set to a reason of
  // its own.
  bool (*apply)(const OptionSpec& option, const std::string& value,
                const OptionTarget& target, std::string* why);
};

// Every option, in the order of --help and the README.
const std::vector<OptionSpec>& option_table();

// The option called name (or alias) that the scope accepts, or nullptr.
const OptionSpec* find_option(const std::string& name, unsigned scope);

// What a good value of the option is: "6 hex digits", "a number 0-65535".
std::string option_takes(const OptionSpec& option);

// Applies one value of the option, named as the user wrote it.  On a bad
// value returns false and says why: "error takes 6 hex digits, not
// \"06020\"".
bool apply_option(const OptionSpec& option, const std::string& name_given,
                  const std::string& value, const OptionTarget& target,
                  std::string* why);

// Applies "key=value" items (bare names for switches) joined with
// separator, each a key that the scope accepts.  On failure returns false
// and says why (an unknown key: "unknown key \"colour\"").
bool apply_keys(const std::string& list, char separator, unsigned scope,
                const OptionTarget& target, std::string* why);

// The target of scenario keys (a device URI, --connection, a USB script):
// the scenario, and its every-query reply shape.
OptionTarget scenario_target(Scenario* scenario);

// The reply that the printer gives when the script says nothing: each
// reply field at its default.
ReplyShape default_reply_shape();

// The scenario of the Nth connection (counted from 1): the run-wide one
// with that connection's --connection keys laid over it.
Scenario scenario_for_connection(const SimSettings& settings, long connection);

// The formats of --print-table: the README's option tables, its table of
// device-URI keys, and the manual page's option sections.
constexpr const char* kTableFormats[] = {"markdown", "uri-keys", "man"};

// The name of the power-state field: a sleeping printer reports 01 there.
constexpr char kPowerField[] = "power";

#endif  // QUILLAROTH_SIM_OPTION_TABLE_H_
