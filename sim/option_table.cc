#include "sim/option_table.h"

#include <algorithm>
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

// The part of the target that holds a member of Part.
template <typename Part>
Part* part_of(const OptionTarget& target);
template <>
SimSettings* part_of<SimSettings>(const OptionTarget& target) {
  return target.settings;
}
template <>
Scenario* part_of<Scenario>(const OptionTarget& target) {
  return target.scenario;
}
template <>
ReplyShape* part_of<ReplyShape>(const OptionTarget& target) {
  return target.shape;
}

// The class that a pointer to member belongs to.
template <typename Member>
struct MemberOf;
template <typename Part, typename Type>
struct MemberOf<Type Part::*> {
  using Owner = Part;
};

// The applier of most rows: the value, parsed by kParse, into the member
// kMember of the settings, the scenario or the reply shape.
template <auto kMember, auto kParse>
bool into(const OptionSpec&, const std::string& value,
          const OptionTarget& target, std::string*) {
  using Owner = typename MemberOf<decltype(kMember)>::Owner;
  return kParse(value, &(part_of<Owner>(target)->*kMember));
}

// The applier of a row that sets several members of one part.
template <typename Part, auto kParse>
bool into_whole(const OptionSpec&, const std::string& value,
                const OptionTarget& target, std::string*) {
  return kParse(value, part_of<Part>(target));
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

// The parsers of the values that have no parser of their own in
// sim/value_parsers.h, each in the shape that into() calls.

// A file name: anything but empty.
bool parse_file_name(const std::string& text, std::string* out) {
  if (text.empty()) return false;
  *out = text;
  return true;
}

// One of the formats of --print-table.
bool parse_table_format(const std::string& text, std::string* out) {
  for (const char* format : kTableFormats) {
    if (text != format) continue;
    *out = text;
    return true;
  }
  return false;
}

// The one-way switch: the probe's answer byte.
bool parse_oneway(const std::string& text, Bytes* bidi_data) {
  bool oneway = false;
  if (!parse_switch(text, &oneway)) return false;
  *bidi_data = {static_cast<uint8_t>(oneway ? CUPS_SC_BIDI_NOT_SUPPORTED
                                            : CUPS_SC_BIDI_SUPPORTED)};
  return true;
}

// "never": the request is not answered.
bool parse_never(const std::string& text, SideAnswer* answer) {
  if (text != "never") return false;
  answer->answered = false;
  return true;
}

// A side-channel status that answers the request.
bool parse_answer_status(const std::string& text, SideAnswer* answer) {
  return parse_sc_status(text, &answer->status);
}

// "N:STATUS" or "N:never" for the Nth drain.
bool parse_drain_at(const std::string& text,
                    std::map<long, SideAnswer>* drain_at) {
  long drain = 0;
  std::string answer;
  if (!parse_numbered(text, &drain, &answer)) return false;
  SideAnswer side;
  side.answered = answer != "never";
  if (side.answered && !parse_sc_status(answer, &side.status)) return false;
  (*drain_at)[drain] = side;
  return true;
}

// A request number, or none at all for "before the first".
bool parse_request_number(const std::string& text, long* out) {
  if (text.empty()) {
    *out = 0;
    return true;
  }
  return parse_count(text, 0, 1000000, out);
}

// The back channel closes at the start (no number, or 0) or at query N.
bool parse_close_backchannel(const std::string& text, Scenario* scenario) {
  long query = 0;
  if (text.empty() || text == "0") {
    scenario->close_backchannel_at_start = true;
    return true;
  }
  if (!parse_count(text, 1, 1000000, &query)) return false;
  scenario->per_query[query].close = true;
  return true;
}

// The query that gets no answer.
bool parse_fail_at(const std::string& text,
                   std::map<long, ReplyShape>* per_query) {
  long query = 0;
  if (!parse_count(text, 1, 1000000, &query)) return false;
  (*per_query)[query].none = true;
  return true;
}

// One hex byte.
bool parse_hex_byte(const std::string& text, uint8_t* out) {
  Bytes byte;
  if (!parse_hex_exact(text, 1, &byte)) return false;
  *out = byte[0];
  return true;
}

// Hex bytes for a whole reply.
bool parse_raw(const std::string& text, std::optional<Bytes>* out) {
  Bytes raw;
  if (!parse_hex_bytes(text, &raw)) return false;
  *out = raw;
  return true;
}

// A byte count of a reply.
bool parse_byte_count(const std::string& text, std::optional<size_t>* out) {
  long n = 0;
  if (!parse_count(text, 0, 65536, &n)) return false;
  *out = static_cast<size_t>(n);
  return true;
}

// The sizes of a reply's pieces.
bool parse_split(const std::string& text,
                 std::optional<std::vector<size_t>>* out) {
  std::vector<size_t> pieces;
  if (!parse_pieces(text, &pieces)) return false;
  *out = pieces;
  return true;
}

// The four status bytes of the job status reply.
bool parse_job_status(const std::string& text, std::array<uint8_t, 4>* out) {
  Bytes status;
  if (!parse_hex_exact(text, out->size(), &status)) return false;
  std::copy(status.begin(), status.end(), out->begin());
  return true;
}

// The network printer's address.
bool parse_listen(const std::string& text, SimSettings* settings) {
  if (!parse_host_port(text, &settings->listen_host, &settings->listen_port))
    return false;
  settings->listen = true;
  return true;
}

// A number of connections.
bool parse_connection_count(const std::string& text, long* out) {
  return parse_count(text, 0, 1000000, out);
}

// The appliers whose complaints say more than what the value takes.

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

bool apply_connection(const OptionSpec&, const std::string& value,
                      const OptionTarget& target, std::string* why) {
  long connection = 0;
  std::string keys;
  if (!parse_numbered(value, &connection, &keys)) return false;
  // Checked now, laid over the run-wide scenario when the connection comes.
  Scenario scratch;
  if (!apply_keys(keys, kKeySeparator, kScenarioKey, scenario_target(&scratch),
                  why)) {
    *why = "connection " + value + ": " + *why;
    return false;
  }
  std::string& all = target.settings->connection_keys[connection];
  all += (all.empty() ? "" : std::string(1, kKeySeparator)) + keys;
  return true;
}

constexpr ValueKind kSwitch = ValueKind::kSwitch;
constexpr ValueKind kRequired = ValueKind::kRequired;
constexpr ValueKind kOptional = ValueKind::kOptional;

// Every row, made on first use: a Scenario made during static
// initialisation may need them.
const std::vector<OptionSpec>& rows() {
  static const std::vector<OptionSpec> kRows = {
      // Output.
      {"log", nullptr, kRequired, "FILE", OptionGroup::kOutput, kCommandLine,
       kNoField, "", "a file name",
       "Log what the printer receives and answers (see Log).",
       into<&SimSettings::log_path, parse_file_name>},
      {"stdout-file", nullptr, kRequired, "FILE", OptionGroup::kOutput,
       kCommandLine, kNoField, "", "a file name",
       "Save the raw bytes that the filter writes to its stdout.",
       into<&SimSettings::stdout_path, parse_file_name>},
      {"stdout-devfull", nullptr, kSwitch, "", OptionGroup::kOutput,
       kCommandLine, kNoField, "", "1 or 0",
       "Give the filter `/dev/full` as its stdout (its writes fail at the "
       "flush).",
       into<&SimSettings::stdout_devfull, parse_switch>},
      {"print-table", nullptr, kRequired, "FORMAT", OptionGroup::kOutput,
       kCommandLine, kNoField, "", "markdown, uri-keys or man",
       "Print the options and exit: as the README's tables (`markdown`), "
       "the README's table of device-URI keys (`uri-keys`) or the manual "
       "page's option sections (`man`).",
       into<&SimSettings::print_table, parse_table_format>},
      {"help", nullptr, kSwitch, "", OptionGroup::kOutput, kCommandLine,
       kNoField, "", "1 or 0", "Print the options and exit.",
       into<&SimSettings::help, parse_switch>},

      // Side channel.
      {"oneway", nullptr, kSwitch, "", OptionGroup::kSideChannel, kScript,
       kNoField, "", "1 or 0",
       "Answer the probe `OK` with the byte 00 (`CUPS_SC_BIDI_NOT_SUPPORTED`) "
       "instead of 01.",
       into<&Scenario::bidi_data, parse_oneway>},
      {"bidi", nullptr, kRequired, "never", OptionGroup::kSideChannel, kScript,
       kNoField, "", "never",
       "Never answer the probe (libcups gives the filter a time-out after its "
       "30 s).",
       into<&Scenario::bidi, parse_never>},
      {"bidi-status", nullptr, kRequired, "STATUS", OptionGroup::kSideChannel,
       kScript, kNoField, "OK", "a side-channel status",
       "Answer the probe with this status.",
       into<&Scenario::bidi, parse_answer_status>},
      {"bidi-data", nullptr, kRequired, "HEX", OptionGroup::kSideChannel,
       kScript, kNoField, "01", "hex bytes",
       "Answer the probe with these bytes; `''` for an empty answer, `0101` "
       "for two bytes.",
       into<&Scenario::bidi_data, parse_hex_bytes>},
      {"drain", nullptr, kRequired, "never", OptionGroup::kSideChannel,
       kScript, kNoField, "", "never",
       "Never answer a drain (each costs the filter its real 5 s).",
       into<&Scenario::drain, parse_never>},
      {"drain-status", nullptr, kRequired, "STATUS", OptionGroup::kSideChannel,
       kScript, kNoField, "OK", "a side-channel status",
       "Answer every drain with this status.",
       into<&Scenario::drain, parse_answer_status>},
      {"drain-at", nullptr, kRequired, "N:STATUS", OptionGroup::kSideChannel,
       kScript, kNoField, "", "N:STATUS or N:never",
       "Answer the Nth drain with this status, or not at all with `N:never`; "
       "may be repeated.",
       into<&Scenario::drain_at, parse_drain_at>},
      {"close-sidechannel", nullptr, kOptional, "N", OptionGroup::kSideChannel,
       kScript, kNoField, "", "a request number",
       "Close the side channel before the filter's first request, or (`=N`) "
       "unanswered when the Nth request arrives.",
       into<&Scenario::close_sidechannel_at, parse_request_number>},
      {"close-backchannel", nullptr, kOptional, "N", OptionGroup::kSideChannel,
       kScript, kNoField, "", "a query number",
       "Close the back channel before the first query (the filter reads end "
       "of file), or (`=N`) instead of answering the Nth query.",
       into_whole<Scenario, parse_close_backchannel>},

      // The printer and its printer-information reply.
      {"power", nullptr, kRequired, "XX", OptionGroup::kPrinter, kEverywhere,
       {5, 1, false}, "00", "", "Power state (00 = awake).", apply_field},
      {"memory", nullptr, kRequired, "XX", OptionGroup::kPrinter, kEverywhere,
       {4, 1, false}, "00", "", "Memory state (`ff`: memory not free).",
       apply_field},
      {"mech", nullptr, kRequired, "XXXX", OptionGroup::kPrinter, kEverywhere,
       {128, 2, false}, "0000", "", "Mechanism state.", apply_field},
      {"error", nullptr, kRequired, "XXXXXX", OptionGroup::kPrinter,
       kEverywhere, {131, 3, false}, "000000", "",
       "Error code (`000000`: no error).", apply_field},
      {"sheet", nullptr, kRequired, "XXXX", OptionGroup::kPrinter, kEverywhere,
       {145, 2, false}, "8410", "", "Ink-sheet type.", apply_field},
      {"total", nullptr, kRequired, "N", OptionGroup::kPrinter, kEverywhere,
       {148, 2, true}, "350", "", "Ribbon total.", apply_field},
      {"remaining", nullptr, kRequired, "N", OptionGroup::kPrinter, kEverywhere,
       {150, 2, true}, "123", "", "Ribbon remaining (0: used up).",
       apply_field},
      {"fill", nullptr, kRequired, "XX", OptionGroup::kPrinter, kScript,
       kNoField, "00", "2 hex digits",
       "The byte in every place that no field covers.",
       into<&Scenario::fill, parse_hex_byte>},
      {"raw", nullptr, kRequired, "HEX", OptionGroup::kPrinter, kEverywhere,
       kNoField, "", "hex bytes",
       "The whole reply, as hex bytes (blanks and colons allowed). Only the "
       "fields named by options are laid over it.",
       into<&ReplyShape::raw, parse_raw>},
      {"raw-file", nullptr, kRequired, "FILE", OptionGroup::kPrinter,
       kCommandLine, kNoField, "", "a file name",
       "The whole reply, from a binary file.", apply_raw_file},
      {"size", "short", kRequired, "N", OptionGroup::kPrinter, kEverywhere,
       kNoField, "", "a byte count",
       "Make the reply N bytes long: cut short (the filter's next read times "
       "out) or padded with the fill byte (oversized).",
       into<&ReplyShape::size, parse_byte_count>},
      {"split", nullptr, kRequired, "A+B+...", OptionGroup::kPrinter,
       kEverywhere, kNoField, "", "piece sizes like 100+92",
       "Write the reply in pieces of these sizes; what is left over goes as "
       "one last piece. (The command line takes `100,92` too.)",
       into<&ReplyShape::split, parse_split>},
      {"no-reply", "none", kSwitch, "", OptionGroup::kPrinter, kEverywhere,
       kNoField, "", "1 or 0",
       "Answer no query (each costs the filter its 1 s read time-out).",
       into<&ReplyShape::none, parse_switch>},
      {"close", nullptr, kSwitch, "", OptionGroup::kPrinter, kEverywhere,
       kNoField, "", "1 or 0", "Close the back channel instead of answering.",
       into<&ReplyShape::close, parse_switch>},
      {"fail-at", nullptr, kRequired, "N", OptionGroup::kPrinter, kScript,
       kNoField, "", "a query number", "Give no answer to the Nth query.",
       into<&Scenario::per_query, parse_fail_at>},
      {"wake-after", "wake", kRequired, "N|never", OptionGroup::kPrinter,
       kScript, kNoField, "0", "a number or never",
       "Queries 1 to N find the printer asleep (power state 01); from query "
       "N+1 on it is awake. `never`: it never wakes.",
       into<&Scenario::wake_after, parse_count_or_never>},
      {"reply", nullptr, kRequired, "N:KEY=VALUE,...", OptionGroup::kPrinter,
       kCommandLine, kNoField, "", "N:KEY=VALUE,...",
       "The Nth query's reply only, with keys from the Key column; they "
       "override, for that query, both the run-wide options and "
       "`--wake-after`. May be repeated.",
       apply_reply},
      {"job-status", nullptr, kRequired, "XXXXXXXX", OptionGroup::kPrinter,
       kScript, kNoField, "00000000", "8 hex digits",
       "Bytes 8-11 of the job status reply.",
       into<&Scenario::job_status, parse_job_status>},

      // Faults of the printer and its connection.
      {"reset", nullptr, kRequired, "N", OptionGroup::kFaults, kEverywhere,
       kNoField, "", "a byte count",
       "Send the reply's first N bytes, then reset the connection (over the "
       "pipes: close the back channel).",
       into<&ReplyShape::reset, parse_byte_count>},
      {"stall", nullptr, kRequired, "N", OptionGroup::kFaults, kEverywhere,
       kNoField, "", "a byte count",
       "Send the reply's first N bytes, then hang: nothing more is sent or "
       "read, and the connection stays open.",
       into<&ReplyShape::stall, parse_byte_count>},
      {"hang", nullptr, kSwitch, "", OptionGroup::kFaults, kScript, kNoField,
       "", "1 or 0",
       "The printer hangs from the start: it reads and answers nothing (a "
       "backend in front of it still answers the side channel).",
       into<&Scenario::hang, parse_switch>},

      // The network printer.
      {"listen", nullptr, kRequired, "HOST:PORT", OptionGroup::kNetwork,
       kCommandLine, kNoField, "", "HOST:PORT",
       "Be a network printer on this address instead of running a filter "
       "(see Network printer). Port 0 picks a free port.",
       into_whole<SimSettings, parse_listen>},
      {"connection", nullptr, kRequired, "N:KEY=VALUE,...",
       OptionGroup::kNetwork, kCommandLine, kNoField, "", "N:KEY=VALUE,...",
       "Keys for the Nth connection only (any key that a device URI takes); "
       "may be repeated.",
       apply_connection},
      {"accept", nullptr, kRequired, "N", OptionGroup::kNetwork, kCommandLine,
       kNoField, "", "a number",
       "Serve N connections, then refuse the rest; `0` refuses every "
       "connection (the port stays bound, but nothing listens).",
       into<&SimSettings::accept_limit, parse_connection_count>},
  };
  return kRows;
}

}  // namespace

const std::vector<OptionSpec>& option_table() { return rows(); }

const OptionSpec* find_option(const std::string& name, unsigned scope) {
  for (const OptionSpec& option : rows()) {
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
    bool is_switch = option->kind == ValueKind::kSwitch;
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
  for (const OptionSpec& option : rows())
    if (option.field.width > 0)
      apply_option(option, option.name, option.default_value, target, &why);
  return shape;
}

Scenario scenario_for_connection(const SimSettings& settings,
                                 long connection) {
  Scenario scenario = settings.scenario;
  auto keys = settings.connection_keys.find(connection);
  if (keys != settings.connection_keys.end()) {
    std::string why;
    apply_keys(keys->second, kKeySeparator, kScenarioKey,
               scenario_target(&scenario), &why);
  }
  return scenario;
}

OptionTarget scenario_target(Scenario* scenario) {
  OptionTarget target;
  target.scenario = scenario;
  target.shape = &scenario->every;
  return target;
}

// The table's defaults of everything but the reply fields, which
// default_reply_shape() lays under every reply.
Scenario::Scenario() {
  std::string why;
  for (const OptionSpec& option : rows())
    if (option.field.width == 0 && option.default_value[0] != '\0')
      apply_option(option, option.name, option.default_value,
                   scenario_target(this), &why);
}
