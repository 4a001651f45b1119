#include "sim/option_table.h"

#include <fstream>
#include <iterator>

#include "sim/value_parsers.h"

namespace {

constexpr unsigned kEverywhere = kCommandLine | kPerQuery | kScenarioKey;
constexpr unsigned kScript = kCommandLine | kScenarioKey;
constexpr ReplyField kNoField = {};

// Reads a whole file into bytes.
bool read_file(const std::string& path, Bytes* out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  out->assign(std::istreambuf_iterator<char>(in),
              std::istreambuf_iterator<char>());
  return true;
}

// The largest number that a field of this many bytes holds.
long field_max(const ReplyField& field) {
  return (1L << (8 * field.width)) - 1;
}

// A reply field: hex bytes of its width, or a big-endian number.
bool apply_field(const OptionSpec& option, const std::string& value,
                 const OptionTarget& target, std::string*) {
  const ReplyField& field = option.field;
  Bytes bytes;
  if (field.is_count) {
    long n = 0;
    if (!parse_count(value, 0, field_max(field), &n)) return false;
    for (size_t i = field.width; i-- > 0;)
      bytes.push_back(static_cast<uint8_t>(n >> (8 * i)));
  } else if (!parse_hex_exact(value, field.width, &bytes)) {
    return false;
  }
  target.shape->fields[option.name] = bytes;
  return true;
}

bool apply_log(const OptionSpec&, const std::string& value,
               const OptionTarget& target, std::string*) {
  if (value.empty()) return false;
  target.settings->log_path = value;
  return true;
}

bool apply_stdout_file(const OptionSpec&, const std::string& value,
                       const OptionTarget& target, std::string*) {
  if (value.empty()) return false;
  target.settings->stdout_path = value;
  return true;
}

bool apply_stdout_devfull(const OptionSpec&, const std::string& value,
                          const OptionTarget& target, std::string*) {
  return parse_switch(value, &target.settings->stdout_devfull);
}

bool apply_print_table(const OptionSpec&, const std::string& value,
                       const OptionTarget& target, std::string*) {
  if (value != "markdown") return false;
  target.settings->print_table = value;
  return true;
}

bool apply_help(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  return parse_switch(value, &target.settings->help);
}

bool apply_oneway(const OptionSpec&, const std::string& value,
                  const OptionTarget& target, std::string*) {
  bool oneway = false;
  if (!parse_switch(value, &oneway)) return false;
  target.scenario->bidi_data = {static_cast<uint8_t>(
      oneway ? CUPS_SC_BIDI_NOT_SUPPORTED : CUPS_SC_BIDI_SUPPORTED)};
  return true;
}

bool apply_bidi(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  if (value != "never") return false;
  target.scenario->bidi.answered = false;
  return true;
}

bool apply_bidi_status(const OptionSpec&, const std::string& value,
                       const OptionTarget& target, std::string*) {
  return parse_sc_status(value, &target.scenario->bidi.status);
}

bool apply_bidi_data(const OptionSpec&, const std::string& value,
                     const OptionTarget& target, std::string*) {
  return parse_hex_bytes(value, &target.scenario->bidi_data);
}

bool apply_drain(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string*) {
  if (value != "never") return false;
  target.scenario->drain.answered = false;
  return true;
}

bool apply_drain_status(const OptionSpec&, const std::string& value,
                        const OptionTarget& target, std::string*) {
  return parse_sc_status(value, &target.scenario->drain.status);
}

bool apply_drain_at(const OptionSpec&, const std::string& value,
                    const OptionTarget& target, std::string*) {
  long drain = 0;
  std::string answer;
  if (!parse_numbered(value, &drain, &answer)) return false;
  SideAnswer side;
  side.answered = answer != "never";
  if (side.answered && !parse_sc_status(answer, &side.status)) return false;
  target.scenario->drain_at[drain] = side;
  return true;
}

bool apply_close_sidechannel(const OptionSpec&, const std::string& value,
                             const OptionTarget& target, std::string*) {
  if (value.empty()) {
    target.scenario->close_sidechannel_at = 0;
    return true;
  }
  return parse_count(value, 0, 1000000, &target.scenario->close_sidechannel_at);
}

bool apply_close_backchannel(const OptionSpec&, const std::string& value,
                             const OptionTarget& target, std::string*) {
  long query = 0;
  if (value.empty() || value == "0") {
    target.scenario->close_backchannel_at_start = true;
    return true;
  }
  if (!parse_count(value, 1, 1000000, &query)) return false;
  target.scenario->per_query[query].close = true;
  return true;
}

bool apply_fill(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  Bytes fill;
  if (!parse_hex_exact(value, 1, &fill)) return false;
  target.scenario->fill = fill[0];
  return true;
}

bool apply_raw(const OptionSpec&, const std::string& value,
               const OptionTarget& target, std::string*) {
  Bytes raw;
  if (!parse_hex_bytes(value, &raw)) return false;
  target.shape->raw = raw;
  return true;
}

bool apply_raw_file(const OptionSpec&, const std::string& value,
                    const OptionTarget& target, std::string* why) {
  Bytes raw;
  if (!read_file(value, &raw)) {
    *why = "cannot read " + value;
    return false;
  }
  target.shape->raw = raw;
  return true;
}

// A byte count into one of the shape's counts.
bool apply_byte_count(const std::string& value, std::optional<size_t>* out) {
  long n = 0;
  if (!parse_count(value, 0, 65536, &n)) return false;
  *out = static_cast<size_t>(n);
  return true;
}

bool apply_size(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  return apply_byte_count(value, &target.shape->size);
}

bool apply_reset(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string*) {
  return apply_byte_count(value, &target.shape->reset);
}

bool apply_stall(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string*) {
  return apply_byte_count(value, &target.shape->stall);
}

bool apply_split(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string*) {
  std::vector<size_t> pieces;
  if (!parse_pieces(value, &pieces)) return false;
  target.shape->split = pieces;
  return true;
}

bool apply_no_reply(const OptionSpec&, const std::string& value,
                    const OptionTarget& target, std::string*) {
  return parse_switch(value, &target.shape->none);
}

bool apply_close(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string*) {
  return parse_switch(value, &target.shape->close);
}

bool apply_fail_at(const OptionSpec&, const std::string& value,
                   const OptionTarget& target, std::string*) {
  long query = 0;
  if (!parse_count(value, 1, 1000000, &query)) return false;
  target.scenario->per_query[query].none = true;
  return true;
}

bool apply_wake_after(const OptionSpec&, const std::string& value,
                      const OptionTarget& target, std::string*) {
  return parse_count_or_never(value, &target.scenario->wake_after);
}

bool apply_reply(const OptionSpec&, const std::string& value,
                 const OptionTarget& target, std::string* why) {
  long query = 0;
  std::string keys;
  if (!parse_numbered(value, &query, &keys)) return false;
  OptionTarget reply;
  reply.shape = &target.scenario->per_query[query];
  if (apply_keys(keys, kKeySeparator, kPerQuery, reply, why)) return true;
  *why = "reply " + value + ": " + *why;
  return false;
}

bool apply_job_status(const OptionSpec&, const std::string& value,
                      const OptionTarget& target, std::string*) {
  Bytes status;
  if (!parse_hex_exact(value, target.scenario->job_status.size(), &status))
    return false;
  std::copy(status.begin(), status.end(), target.scenario->job_status.begin());
  return true;
}

bool apply_hang(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  return parse_switch(value, &target.scenario->hang);
}

bool apply_listen(const OptionSpec&, const std::string& value,
                  const OptionTarget& target, std::string*) {
  if (!parse_host_port(value, &target.settings->listen_host,
                       &target.settings->listen_port))
    return false;
  target.settings->listen = true;
  return true;
}

bool apply_connection(const OptionSpec&, const std::string& value,
                      const OptionTarget& target, std::string* why) {
  long connection = 0;
  std::string keys;
  if (!parse_numbered(value, &connection, &keys)) return false;
  // Checked now, laid over the run-wide scenario when the connection comes.
  Scenario scratch;
  OptionTarget check;
  check.scenario = &scratch;
  check.shape = &scratch.every;
  if (!apply_keys(keys, kKeySeparator, kScenarioKey, check, why)) {
    *why = "connection " + value + ": " + *why;
    return false;
  }
  std::string& all = target.settings->connection_keys[connection];
  all += (all.empty() ? "" : std::string(1, kKeySeparator)) + keys;
  return true;
}

bool apply_accept(const OptionSpec&, const std::string& value,
                  const OptionTarget& target, std::string*) {
  return parse_count(value, 0, 1000000, &target.settings->accept_limit);
}

const std::vector<OptionSpec> kOptions = {
    // Output.
    {"log", nullptr, "FILE", OptionGroup::kOutput, kCommandLine, kNoField, "",
     "a file name", "Log what the printer receives and answers (see Log).",
     apply_log},
    {"stdout-file", nullptr, "FILE", OptionGroup::kOutput, kCommandLine,
     kNoField, "", "a file name",
     "Save the raw bytes that the filter writes to its stdout.",
     apply_stdout_file},
    {"stdout-devfull", nullptr, "", OptionGroup::kOutput, kCommandLine,
     kNoField, "", "1 or 0",
     "Give the filter `/dev/full` as its stdout (its writes fail at the "
     "flush).",
     apply_stdout_devfull},
    {"print-table", nullptr, "FORMAT", OptionGroup::kOutput, kCommandLine,
     kNoField, "", "markdown",
     "Print these tables of options (`markdown`, as in the README) and exit.",
     apply_print_table},
    {"help", nullptr, "", OptionGroup::kOutput, kCommandLine, kNoField, "",
     "1 or 0", "Print the options and exit.", apply_help},

    // Side channel.
    {"oneway", nullptr, "", OptionGroup::kSideChannel, kScript, kNoField, "",
     "1 or 0",
     "Answer the probe `OK` with the byte 00 (`CUPS_SC_BIDI_NOT_SUPPORTED`) "
     "instead of 01.",
     apply_oneway},
    {"bidi", nullptr, "never", OptionGroup::kSideChannel, kScript, kNoField,
     "", "never",
     "Never answer the probe (libcups gives the filter a time-out after its "
     "30 s).",
     apply_bidi},
    {"bidi-status", nullptr, "STATUS", OptionGroup::kSideChannel, kScript,
     kNoField, "OK", "a side-channel status",
     "Answer the probe with this status.", apply_bidi_status},
    {"bidi-data", nullptr, "HEX", OptionGroup::kSideChannel, kScript,
     kNoField, "01", "hex bytes",
     "Answer the probe with these bytes; `''` for an empty answer, `0101` "
     "for two bytes.",
     apply_bidi_data},
    {"drain", nullptr, "never", OptionGroup::kSideChannel, kScript, kNoField,
     "", "never", "Never answer a drain (each costs the filter its real 5 s).",
     apply_drain},
    {"drain-status", nullptr, "STATUS", OptionGroup::kSideChannel, kScript,
     kNoField, "OK", "a side-channel status",
     "Answer every drain with this status.", apply_drain_status},
    {"drain-at", nullptr, "N:STATUS", OptionGroup::kSideChannel, kScript,
     kNoField, "", "N:STATUS or N:never",
     "Answer the Nth drain with this status, or not at all with `N:never`; "
     "may be repeated.",
     apply_drain_at},
    {"close-sidechannel", nullptr, "[N]", OptionGroup::kSideChannel, kScript,
     kNoField, "", "a request number",
     "Close the side channel before the filter's first request, or (`=N`) "
     "unanswered when the Nth request arrives.",
     apply_close_sidechannel},
    {"close-backchannel", nullptr, "[N]", OptionGroup::kSideChannel, kScript,
     kNoField, "", "a query number",
     "Close the back channel before the first query (the filter reads end "
     "of file), or (`=N`) instead of answering the Nth query.",
     apply_close_backchannel},

    // The printer and its printer-information reply.
    {"power", nullptr, "XX", OptionGroup::kPrinter, kEverywhere, {5, 1, false},
     "00", "", "Power state (00 = awake).", apply_field},
    {"memory", nullptr, "XX", OptionGroup::kPrinter, kEverywhere,
     {4, 1, false}, "00", "", "Memory state (`ff`: memory not free).",
     apply_field},
    {"mech", nullptr, "XXXX", OptionGroup::kPrinter, kEverywhere,
     {128, 2, false}, "0000", "", "Mechanism state.", apply_field},
    {"error", nullptr, "XXXXXX", OptionGroup::kPrinter, kEverywhere,
     {131, 3, false}, "000000", "", "Error code (`000000`: no error).",
     apply_field},
    {"sheet", nullptr, "XXXX", OptionGroup::kPrinter, kEverywhere,
     {145, 2, false}, "8410", "", "Ink-sheet type.", apply_field},
    {"total", nullptr, "N", OptionGroup::kPrinter, kEverywhere,
     {148, 2, true}, "350", "", "Ribbon total.", apply_field},
    {"remaining", nullptr, "N", OptionGroup::kPrinter, kEverywhere,
     {150, 2, true}, "123", "", "Ribbon remaining (0: used up).",
     apply_field},
    {"fill", nullptr, "XX", OptionGroup::kPrinter, kScript, kNoField, "00",
     "2 hex digits", "The byte in every place that no field covers.",
     apply_fill},
    {"raw", nullptr, "HEX", OptionGroup::kPrinter, kEverywhere, kNoField, "",
     "hex bytes",
     "The whole reply, as hex bytes (blanks and colons allowed). Only the "
     "fields named by options are laid over it.",
     apply_raw},
    {"raw-file", nullptr, "FILE", OptionGroup::kPrinter, kCommandLine,
     kNoField, "", "a file name", "The whole reply, from a binary file.",
     apply_raw_file},
    {"size", "short", "N", OptionGroup::kPrinter, kEverywhere, kNoField, "",
     "a byte count",
     "Make the reply N bytes long: cut short (the filter's next read times "
     "out) or padded with the fill byte (oversized).",
     apply_size},
    {"split", nullptr, "A+B+...", OptionGroup::kPrinter, kEverywhere,
     kNoField, "", "piece sizes like 100+92",
     "Write the reply in pieces of these sizes; what is left over goes as "
     "one last piece. (The command line takes `100,92` too.)",
     apply_split},
    {"no-reply", "none", "", OptionGroup::kPrinter, kEverywhere, kNoField, "",
     "1 or 0",
     "Answer no query (each costs the filter its 1 s read time-out).",
     apply_no_reply},
    {"close", nullptr, "", OptionGroup::kPrinter, kEverywhere, kNoField, "",
     "1 or 0", "Close the back channel instead of answering.", apply_close},
    {"fail-at", nullptr, "N", OptionGroup::kPrinter, kScript, kNoField, "",
     "a query number", "Give no answer to the Nth query.", apply_fail_at},
    {"wake-after", "wake", "N|never", OptionGroup::kPrinter, kScript,
     kNoField, "0", "a number or never",
     "Queries 1 to N find the printer asleep (power state 01); from query "
     "N+1 on it is awake. `never`: it never wakes.",
     apply_wake_after},
    {"reply", nullptr, "N:KEY=VALUE,...", OptionGroup::kPrinter, kCommandLine,
     kNoField, "", "N:KEY=VALUE,...",
     "The Nth query's reply only, with keys from the Key column; they "
     "override, for that query, both the run-wide options and "
     "`--wake-after`. May be repeated.",
     apply_reply},
    {"job-status", nullptr, "XXXXXXXX", OptionGroup::kPrinter, kScript,
     kNoField, "00000000", "8 hex digits",
     "Bytes 8-11 of the job status reply.", apply_job_status},

    // Faults of the printer and its connection.
    {"reset", nullptr, "N", OptionGroup::kFaults, kEverywhere, kNoField, "",
     "a byte count",
     "Send the reply's first N bytes, then reset the connection (over the "
     "pipes: close the back channel).",
     apply_reset},
    {"stall", nullptr, "N", OptionGroup::kFaults, kEverywhere, kNoField, "",
     "a byte count",
     "Send the reply's first N bytes, then hang: nothing more is sent or "
     "read, and the connection stays open.",
     apply_stall},
    {"hang", nullptr, "", OptionGroup::kFaults, kScript, kNoField, "",
     "1 or 0",
     "The printer hangs from the start: it reads and answers nothing (a "
     "backend in front of it still answers the side channel).",
     apply_hang},

    // The network printer.
    {"listen", nullptr, "HOST:PORT", OptionGroup::kNetwork, kCommandLine,
     kNoField, "", "HOST:PORT",
     "Be a network printer on this address instead of running a filter "
     "(see Network printer). Port 0 picks a free port.",
     apply_listen},
    {"connection", nullptr, "N:KEY=VALUE,...", OptionGroup::kNetwork,
     kCommandLine, kNoField, "", "N:KEY=VALUE,...",
     "Keys for the Nth connection only (any key that a device URI takes); "
     "may be repeated.",
     apply_connection},
    {"accept", nullptr, "N", OptionGroup::kNetwork, kCommandLine, kNoField,
     "", "a number",
     "Serve N connections, then refuse the rest; `0` refuses every "
     "connection (the port stays bound, but nothing listens).",
     apply_accept},
};

}  // namespace

const std::vector<OptionSpec>& option_table() { return kOptions; }

const OptionSpec* find_option(const std::string& name, unsigned scope) {
  for (const OptionSpec& option : kOptions) {
    bool named = name == option.name ||
                 (option.alias != nullptr && name == option.alias);
    if (named && (option.scope & scope) != 0) return &option;
  }
  return nullptr;
}

std::string option_takes(const OptionSpec& option) {
  const ReplyField& field = option.field;
  if (field.width == 0) return option.takes;
  if (field.is_count) return "a number 0-" + std::to_string(field_max(field));
  return std::to_string(2 * field.width) + " hex digits";
}

bool apply_option(const OptionSpec& option, const std::string& name_given,
                  const std::string& value, const OptionTarget& target,
                  std::string* why) {
  std::string reason;
  if (option.apply(option, value, target, &reason)) return true;
  *why = !reason.empty() ? reason
                         : name_given + " takes " + option_takes(option) +
                               ", not \"" + value + "\"";
  return false;
}

bool apply_keys(const std::string& list, char separator, unsigned scope,
                const OptionTarget& target, std::string* why) {
  for (const std::string& item : split_at(list, separator)) {
    if (item.empty()) continue;
    size_t equals = item.find('=');
    std::string key = item.substr(0, equals);
    const OptionSpec* option = find_option(key, scope);
    if (option == nullptr) {
      bool known = find_option(key, kCommandLine | kPerQuery | kScenarioKey) !=
                   nullptr;
      *why = (known ? "key \"" + key + "\" does not apply here"
                    : "unknown key \"" + key + "\"");
      return false;
    }
    bool is_switch = option->value[0] == '\0';
    if (equals == std::string::npos && !is_switch) {
      *why = "\"" + item + "\" is not key=value";
      return false;
    }
    std::string value =
        equals == std::string::npos ? std::string() : item.substr(equals + 1);
    if (!apply_option(*option, key, value, target, why)) return false;
  }
  return true;
}

ReplyShape default_reply_shape() {
  ReplyShape shape;
  OptionTarget target;
  target.shape = &shape;
  std::string why;
  for (const OptionSpec& option : kOptions)
    if (option.field.width > 0)
      apply_option(option, option.name, option.default_value, target, &why);
  return shape;
}

Scenario scenario_for_connection(const SimSettings& settings,
                                 long connection) {
  Scenario scenario = settings.scenario;
  auto keys = settings.connection_keys.find(connection);
  if (keys != settings.connection_keys.end()) {
    OptionTarget target;
    target.scenario = &scenario;
    target.shape = &scenario.every;
    std::string why;
    apply_keys(keys->second, kKeySeparator, kScenarioKey, target, &why);
  }
  return scenario;
}
