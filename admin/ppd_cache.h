// PpdCache: the facts of each queue's PPD, remembered between runs with the
// queue's printer-config-change-time, so that a queue whose configuration
// has not changed costs no request for its PPD.
//
// One file per scheduler in $CACHE_DIRECTORY (systemd's CacheDirectory=),
// else $XDG_CACHE_HOME/quillaroth, else ~/.cache/quillaroth; lines
//   Q <tab> QUEUE <tab> CONFIG-CHANGE-TIME <tab> HAS-PPD <tab> RUNS-FILTER
//   R <tab> KEYWORD <tab> TEXT          (reasons of the queue above)
// A cache that cannot be read or written only costs requests.

#ifndef QUILLAROTH_ADMIN_PPD_CACHE_H_
#define QUILLAROTH_ADMIN_PPD_CACHE_H_

#include <ctime>
#include <map>
#include <set>
#include <string>

#include "admin/queue_reader.h"

class PpdCache {
 public:
  // The cache of the scheduler at WHERE, read from its file ("" when no
  // cache folder can be named).
  static PpdCache Load(const std::string& where);

  // The facts of QUEUE when they were read at CONFIG_TIME; nullptr if not.
  const PpdFacts* Find(const std::string& queue, time_t config_time) const;
  // Remembers the facts of QUEUE at CONFIG_TIME.
  void Put(const std::string& queue, time_t config_time, const PpdFacts& facts);
  // Keeps only the queues in the given set of names.
  void Keep(const std::set<std::string>& queues);
  // Writes the file back when something changed; quietly does nothing on
  // failure.
  void Save() const;

  const std::string& path() const { return path_; }

 private:
  struct Entry {
    time_t config_time = 0;
    PpdFacts facts;
  };

  std::string path_;
  std::map<std::string, Entry> entries_;
  bool changed_ = false;
};

#endif  // QUILLAROTH_ADMIN_PPD_CACHE_H_
