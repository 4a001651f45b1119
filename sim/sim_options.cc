// Parsing of the simulator's command line.

#include "sim/sim_options.h"

#include <getopt.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

enum Option {
  OPT_LOG = 256,
  OPT_STDOUT_FILE,
  OPT_STDOUT_DEVFULL,
  OPT_ONEWAY,
  OPT_BIDI,
  OPT_BIDI_STATUS,
  OPT_BIDI_DATA,
  OPT_DRAIN,
  OPT_DRAIN_STATUS,
  OPT_DRAIN_AT,
  OPT_CLOSE_SIDECHANNEL,
  OPT_CLOSE_BACKCHANNEL,
  OPT_REPLY_KEY,  // --power, --memory, ... (the key is the option's name)
  OPT_FILL,
  OPT_RAW_FILE,
  OPT_NO_REPLY,
  OPT_FAIL_AT,
  OPT_REPLY,
  OPT_WAKE_AFTER,
  OPT_JOB_STATUS,
  OPT_HELP,
};

const struct option LONG_OPTIONS[] = {
    {"log", required_argument, nullptr, OPT_LOG},
    {"stdout-file", required_argument, nullptr, OPT_STDOUT_FILE},
    {"stdout-devfull", no_argument, nullptr, OPT_STDOUT_DEVFULL},
    {"oneway", no_argument, nullptr, OPT_ONEWAY},
    {"bidi", required_argument, nullptr, OPT_BIDI},
    {"bidi-status", required_argument, nullptr, OPT_BIDI_STATUS},
    {"bidi-data", required_argument, nullptr, OPT_BIDI_DATA},
    {"drain", required_argument, nullptr, OPT_DRAIN},
    {"drain-status", required_argument, nullptr, OPT_DRAIN_STATUS},
    {"drain-at", required_argument, nullptr, OPT_DRAIN_AT},
    {"close-sidechannel", optional_argument, nullptr, OPT_CLOSE_SIDECHANNEL},
    {"close-backchannel", optional_argument, nullptr, OPT_CLOSE_BACKCHANNEL},
    {"power", required_argument, nullptr, OPT_REPLY_KEY},
    {"memory", required_argument, nullptr, OPT_REPLY_KEY},
    {"mech", required_argument, nullptr, OPT_REPLY_KEY},
    {"error", required_argument, nullptr, OPT_REPLY_KEY},
    {"sheet", required_argument, nullptr, OPT_REPLY_KEY},
    {"total", required_argument, nullptr, OPT_REPLY_KEY},
    {"remaining", required_argument, nullptr, OPT_REPLY_KEY},
    {"raw", required_argument, nullptr, OPT_REPLY_KEY},
    {"size", required_argument, nullptr, OPT_REPLY_KEY},
    {"short", required_argument, nullptr, OPT_REPLY_KEY},
    {"split", required_argument, nullptr, OPT_REPLY_KEY},
    {"fill", required_argument, nullptr, OPT_FILL},
    {"raw-file", required_argument, nullptr, OPT_RAW_FILE},
    {"no-reply", no_argument, nullptr, OPT_NO_REPLY},
    {"fail-at", required_argument, nullptr, OPT_FAIL_AT},
    {"reply", required_argument, nullptr, OPT_REPLY},
    {"wake-after", required_argument, nullptr, OPT_WAKE_AFTER},
    {"job-status", required_argument, nullptr, OPT_JOB_STATUS},
    {"help", no_argument, nullptr, OPT_HELP},
    {nullptr, 0, nullptr, 0},
};

const char USAGE[] =
    "Usage: quillaroth-sim [options] -- FILTER job-id user title copies "
    "options [file]\n"
    "Runs FILTER as a CUPS filter beside a simulated printer and its backend.\n"
    "\n"
    "Output:\n"
    "  --log FILE              log what the printer receives and answers\n"
    "  --stdout-file FILE      save the bytes the filter writes to stdout\n"
    "  --stdout-devfull        give the filter /dev/full as its stdout\n"
    "Side channel:\n"
    "  --oneway                answer the probe with CUPS_SC_BIDI_NOT_SUPPORTED\n"
    "  --bidi never            never answer the probe\n"
    "  --bidi-status STATUS    answer the probe with this status (name or "
    "number)\n"
    "  --bidi-data HEX         answer the probe with these bytes ('' for none)\n"
    "  --drain never           never answer a drain request\n"
    "  --drain-status STATUS   answer every drain request with this status\n"
    "  --drain-at N:STATUS     answer the Nth drain so (STATUS or never)\n"
    "  --close-sidechannel[=N] close the side channel at start, or at the Nth\n"
    "                          request (the probe is the first)\n"
    "  --close-backchannel[=N] close the back channel at start, or instead of\n"
    "                          answering the Nth printer-information query\n"
    "Printer (every printer-information reply):\n"
    "  --power XX --memory XX --mech XXXX --error XXXXXX --sheet XXXX\n"
    "  --total N --remaining N  fields of the reply (hex bytes, decimal counts)\n"
    "  --fill XX               the byte in every place no field covers\n"
    "  --raw HEX, --raw-file F the whole reply (named fields still apply)\n"
    "  --size N, --short N     make the reply N bytes long\n"
    "  --split A,B,...         write the reply in pieces of these sizes\n"
    "  --no-reply              never answer a query\n"
    "  --fail-at N             do not answer the Nth query\n"
    "  --reply N:KEY=V,...     the Nth query's reply: power, memory, mech, "
    "error,\n"
    "                          sheet, total, remaining, raw, size, short,\n"
    "                          split (A+B), none, close\n"
    "  --wake-after N|never    queries 1..N find the printer asleep\n"
    "  --job-status XXXXXXXX   bytes 8-11 of the job status reply\n";

// Writes a command-line complaint to stderr; returns false.
bool complain(const std::string& text) {
  fprintf(stderr, "quillaroth-sim: %s\n", text.c_str());
  return false;
}

// Parses "N:REST" with N a query or drain number from 1 up.
bool split_numbered(const std::string& text, long* number, std::string* rest) {
  size_t colon = text.find(':');
  if (colon == std::string::npos) return false;
  *rest = text.substr(colon + 1);
  return parse_count(text.substr(0, colon), 1, 1000000, number);
}

// Parses a side-channel answer: a status, or "never".
bool parse_answer(const std::string& text, SideAnswer* answer) {
  if (text == "never") {
    answer->answered = false;
    return true;
  }
  answer->answered = true;
  return parse_sc_status(text, &answer->status);
}

// Reads a whole file into bytes.
bool read_file(const std::string& path, Bytes* out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  out->assign(std::istreambuf_iterator<char>(in),
              std::istreambuf_iterator<char>());
  return true;
}

// Applies one option to the settings.
bool apply_option(int option, const char* name, const std::string& value,
                  SimSettings* settings) {
  Scenario& scenario = settings->scenario;
  std::string why;
  long number = 0;
  std::string rest;
  switch (option) {
    case OPT_LOG:
      settings->log_path = value;
      return true;
    case OPT_STDOUT_FILE:
      settings->stdout_path = value;
      return true;
    case OPT_STDOUT_DEVFULL:
      settings->stdout_devfull = true;
      return true;
    case OPT_ONEWAY:
      scenario.bidi_data = {0};
      return true;
    case OPT_BIDI:
      if (value != "never") return complain("--bidi takes never");
      scenario.bidi.answered = false;
      return true;
    case OPT_BIDI_STATUS:
      if (!parse_sc_status(value, &scenario.bidi.status))
        return complain("bad status for --bidi-status: " + value);
      return true;
    case OPT_BIDI_DATA:
      if (!parse_hex_bytes(value, &scenario.bidi_data))
        return complain("bad hex bytes for --bidi-data: " + value);
      return true;
    case OPT_DRAIN:
      if (value != "never") return complain("--drain takes never");
      scenario.drain.answered = false;
      return true;
    case OPT_DRAIN_STATUS:
      if (!parse_sc_status(value, &scenario.drain.status))
        return complain("bad status for --drain-status: " + value);
      return true;
    case OPT_DRAIN_AT:
      if (!split_numbered(value, &number, &rest) ||
          !parse_answer(rest, &scenario.drain_at[number]))
        return complain("--drain-at takes N:STATUS or N:never, not " + value);
      return true;
    case OPT_CLOSE_SIDECHANNEL:
      if (value.empty()) {
        scenario.close_sidechannel_at = 0;
      } else if (!parse_count(value, 0, 1000000,
                              &scenario.close_sidechannel_at)) {
        return complain("bad request number for --close-sidechannel: " + value);
      }
      return true;
    case OPT_CLOSE_BACKCHANNEL:
      if (value.empty() || value == "0") {
        scenario.close_backchannel_at_start = true;
      } else if (parse_count(value, 1, 1000000, &number)) {
        scenario.per_query[number].close = true;
      } else {
        return complain("bad query number for --close-backchannel: " + value);
      }
      return true;
    case OPT_REPLY_KEY:
      if (!set_reply_key(&scenario.every, name, value, &why))
        return complain("--" + why);
      return true;
    case OPT_FILL: {
      uint8_t fill = 0;
      if (!parse_hex_exact(value, &fill, 1))
        return complain("--fill takes 2 hex digits, not " + value);
      scenario.fill = fill;
      return true;
    }
    case OPT_RAW_FILE: {
      Bytes raw;
      if (!read_file(value, &raw)) return complain("cannot read " + value);
      scenario.every.raw = raw;
      return true;
    }
    case OPT_NO_REPLY:
      scenario.every.none = true;
      return true;
    case OPT_FAIL_AT:
      if (!parse_count(value, 1, 1000000, &number))
        return complain("bad query number for --fail-at: " + value);
      scenario.per_query[number].none = true;
      return true;
    case OPT_REPLY:
      if (!split_numbered(value, &number, &rest))
        return complain("--reply takes N:KEY=VALUE,..., not " + value);
      if (!set_reply_keys(&scenario.per_query[number], rest, &why))
        return complain("--reply " + value + ": " + why);
      return true;
    case OPT_WAKE_AFTER:
      if (!parse_wake_after(value, &scenario.wake_after))
        return complain("--wake-after takes a number or never, not " + value);
      return true;
    case OPT_JOB_STATUS:
      if (!parse_hex_exact(value, scenario.job_status.data(), 4))
        return complain("--job-status takes 8 hex digits, not " + value);
      return true;
    default:
      return complain("unknown option");
  }
}

}  // namespace

// The --help text.
const char* sim_usage() { return USAGE; }

// Parses the options, then takes everything after them as the command.
bool parse_sim_options(int argc, char** argv, SimSettings* settings,
                       bool* help) {
  *help = false;
  optind = 1;
  opterr = 1;
  int index = -1;
  int option;
  while ((option = getopt_long(argc, argv, "+", LONG_OPTIONS, &index)) != -1) {
    if (option == '?') return false;
    if (option == OPT_HELP) {
      *help = true;
      return true;
    }
    const char* name = index >= 0 ? LONG_OPTIONS[index].name : "";
    std::string value = optarg != nullptr ? optarg : "";
    if (!apply_option(option, name, value, settings)) return false;
    index = -1;
  }
  for (int i = optind; i < argc; i++) settings->command.push_back(argv[i]);
  if (settings->command.empty())
    return complain("no filter command given (put it after --)");
  return true;
}
