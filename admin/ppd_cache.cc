#include "admin/ppd_cache.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <vector>

#include "admin/atomic_file.h"

namespace {

// The cache folder; "" when none can be named.
std::string CacheFolder() {
  const char* systemd = getenv("CACHE_DIRECTORY");
  if (systemd != nullptr && *systemd) {
    std::string first = systemd;
    return first.substr(0, first.find(':'));
  }
  const char* xdg = getenv("XDG_CACHE_HOME");
  if (xdg != nullptr && *xdg == '/') return std::string(xdg) + "/quillaroth";
  const char* home = getenv("HOME");
  if (home != nullptr && *home == '/')
    return std::string(home) + "/.cache/quillaroth";
  return "";
}

// WHERE made into a file name: every character but letters, digits, '.'
// and '-' becomes '_'.
std::string FileName(const std::string& where) {
  std::string name;
  for (char c : where) {
    bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                 (c >= '0' && c <= '9') || c == '.' || c == '-';
    name += plain ? c : '_';
  }
  return name + ".ppd-facts";
}

// TEXT with tabs and line ends made blanks.
std::string OneField(const std::string& text) {
  std::string field = text;
  for (char& c : field)
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  return field;
}

std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> fields;
  std::string field;
  std::istringstream in(line);
  while (std::getline(in, field, '\t')) fields.push_back(field);
  return fields;
}

// Makes FOLDER and its parents (mode 0700); true when it exists.
bool MakeFolders(const std::string& folder) {
  for (size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
    std::string part = folder.substr(0, slash);
    mkdir(part.c_str(), 0700);
    if (slash == std::string::npos) break;
  }
  struct stat info;
  return stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

PpdCache PpdCache::Load(const std::string& where) {
  PpdCache cache;
  std::string folder = CacheFolder();
  if (folder.empty()) return cache;
  cache.path_ = folder + "/" + FileName(where);
  std::ifstream in(cache.path_);
  std::string line;
  Entry* entry = nullptr;
  while (std::getline(in, line)) {
    std::vector<std::string> fields = SplitTabs(line);
    if (fields.size() == 5 && fields[0] == "Q") {
      entry = &cache.entries_[fields[1]];
      entry->config_time = strtol(fields[2].c_str(), nullptr, 10);
      entry->facts.has_ppd = fields[3] == "1";
      entry->facts.runs_filter = fields[4] == "1";
    } else if (fields.size() == 3 && fields[0] == "R" && entry != nullptr) {
      entry->facts.reason_texts[fields[1]] = fields[2];
    } else if (fields.size() == 2 && fields[0] == "R" && entry != nullptr) {
      entry->facts.reason_texts[fields[1]] = "";
    }
  }
  return cache;
}

const PpdFacts* PpdCache::Find(const std::string& queue,
                               time_t config_time) const {
  auto entry = entries_.find(queue);
  if (entry == entries_.end() || entry->second.config_time != config_time)
    return nullptr;
  return &entry->second.facts;
}

void PpdCache::Put(const std::string& queue, time_t config_time,
                   const PpdFacts& facts) {
  Entry& entry = entries_[queue];
  if (entry.config_time == config_time && entry.facts == facts) return;
  entry.config_time = config_time;
  entry.facts = facts;
  changed_ = true;
}

void PpdCache::Keep(const std::set<std::string>& queues) {
  for (auto it = entries_.begin(); it != entries_.end();) {
    if (queues.count(it->first) == 0) {
      it = entries_.erase(it);
      changed_ = true;
    } else {
      ++it;
    }
  }
}

void PpdCache::Save() const {
  if (!changed_ || path_.empty()) return;
  if (!MakeFolders(path_.substr(0, path_.rfind('/')))) return;
  std::ostringstream text;
  for (const auto& [queue, entry] : entries_) {
    text << "Q\t" << queue << "\t" << entry.config_time << "\t"
         << (entry.facts.has_ppd ? 1 : 0) << "\t"
         << (entry.facts.runs_filter ? 1 : 0) << "\n";
    for (const auto& [keyword, reason] : entry.facts.reason_texts)
      text << "R\t" << OneField(keyword) << "\t" << OneField(reason) << "\n";
  }
  std::string error;
  WriteFileAtomically(path_, text.str(), &error);
}
