#include "tests/support/built_tools.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>

#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

// The wrapper's words, split at blanks outside quotes.
std::vector<std::string> WrapperWords();

}  // namespace

const std::string& ReachableDir() {
  static const std::string dir = [] {
    static std::string made = MakeTempDir("quillaroth-tools-", "/tmp");
    chmod(made.c_str(), 0755);
    atexit([] { RemoveTree(made); });
    return made;
  }();
  return dir;
}

namespace {

std::vector<std::string> WrapperWords() {
  std::vector<std::string> words;
  const char* wrapper = getenv("QUILLAROTH_FILTER_WRAPPER");
  if (wrapper == nullptr) return words;
  std::string word;
  bool in_word = false;
  char quote = 0;
  for (const char* c = wrapper; *c != '\0'; c++) {
    if (quote != 0 && *c == quote) {
      quote = 0;
    } else if (quote == 0 && (*c == '\'' || *c == '"')) {
      quote = *c;
      in_word = true;
    } else if (quote == 0 && (*c == ' ' || *c == '\t')) {
      if (in_word) words.push_back(word);
      word.clear();
      in_word = false;
    } else {
      word += *c;
      in_word = true;
    }
  }
  if (in_word) words.push_back(word);
  return words;
}

}  // namespace

const ToolPaths& BuiltTools() {
  static const ToolPaths tools = {
      QUILLAROTH_FILTER_PATH, QUILLAROTH_SIM_PATH, QUILLAROTH_BACKEND_PATH,
      QUILLAROTH_FAKE_SLEEP_PATH, QUILLAROTH_SHORT_FWRITE_PATH};
  return tools;
}

std::string ReachableCopy(const std::string& path) {
  static std::map<std::string, std::string> copies;
  auto found = copies.find(path);
  if (found != copies.end()) return found->second;
  std::string name = path.substr(path.rfind('/') + 1);
  std::string safe;
  for (unsigned char c : name)
    safe += (c > ' ' && c < 0x7f && c != ':') ? static_cast<char>(c) : '_';
  std::string copy =
      ReachableDir() + "/" + std::to_string(copies.size()) + "-" + safe;
  if (!CopyFile(path, copy, 0755)) {
    fprintf(stderr, "cannot copy %s to %s\n", path.c_str(), copy.c_str());
    abort();
  }
  copies[path] = copy;
  return copy;
}

std::string PreloadValue(const std::vector<std::string>& libraries) {
  std::string value;
  for (const std::string& library : libraries)
    value += (value.empty() ? "" : ":") + ReachableCopy(library);
  return value;
}

std::vector<std::string> FilterCommand(const std::string& filter) {
  std::vector<std::string> words = WrapperWords();
  if (!words.empty()) {
    std::string program = FindProgram(words[0]);
    if (!program.empty()) words[0] = program;
  }
  words.push_back(filter);
  return words;
}

double Slowdown() { return WrapperWords().empty() ? 1.0 : 20.0; }
