#include "sim/sim_options.h"

#include <getopt.h>

#include <cstdio>
#include <string>
#include <vector>

#include "sim/option_table.h"

namespace {

// getopt_long's value for the table's row i.
constexpr int kFirstOption = 256;

// Writes a command-line complaint to stderr; returns false.
bool complain(const std::string& text) {
  fprintf(stderr, "quillaroth-sim: %s\n", text.c_str());
  return false;
}

// Adds one long option for name, standing for the table's row `row`.
void add_long_option(const char* name, const OptionSpec& option, int row,
                     std::vector<struct option>* options) {
  bool optional = option.kind != ValueKind::kRequired;
  options->push_back({name, optional ? optional_argument : required_argument,
                      nullptr, kFirstOption + row});
}

// getopt_long's list: every command-line option of the table and its alias.
std::vector<struct option> long_options() {
  std::vector<struct option> options;
  const std::vector<OptionSpec>& table = option_table();
  for (size_t row = 0; row < table.size(); row++) {
    if ((table[row].scope & kCommandLine) == 0) continue;
    add_long_option(table[row].name, table[row], static_cast<int>(row),
                    &options);
    if (table[row].alias != nullptr)
      add_long_option(table[row].alias, table[row], static_cast<int>(row),
                      &options);
  }
  options.push_back({nullptr, 0, nullptr, 0});
  return options;
}

}  // namespace

bool parse_sim_options(int argc, char** argv, SimSettings* settings) {
  std::vector<struct option> options = long_options();
  OptionTarget target;
  target.settings = settings;
  target.scenario = &settings->scenario;
  target.shape = &settings->scenario.every;
  optind = 1;
  opterr = 1;
  int index = -1;
  int found;
  while ((found = getopt_long(argc, argv, "+", options.data(), &index)) != -1) {
    if (found < kFirstOption) return false;  // getopt has complained
    const OptionSpec& option = option_table()[found - kFirstOption];
    std::string name = options[index].name;
    std::string value = optarg != nullptr ? optarg : "";
    std::string why;
    if (!apply_option(option, name, value, target, &why))
      return complain("--" + why);
    index = -1;
  }
  for (int i = optind; i < argc; i++) settings->command.push_back(argv[i]);
  if (settings->help || !settings->print_table.empty()) return true;
  if (settings->listen && !settings->command.empty())
    return complain("--listen serves a network printer: no filter command "
                    "goes with it");
  if (settings->listen && settings->stdout_devfull)
    return complain("--stdout-devfull goes with a filter command, not with "
                    "--listen");
  if (!settings->listen && settings->command.empty())
    return complain("no filter command given (put it after --)");
  return true;
}
