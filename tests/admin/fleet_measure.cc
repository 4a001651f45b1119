// quillaroth against lpstat over a fleet of 200 queues on one private
// scheduler, side by side: `quillaroth status --json --all`, `lpstat -l -p`
// and a `quillaroth refresh --all` that finds nothing to do, each run
// alternately, medians of the wall times.  A program of its own, run by
// hand (as root, in the build folder): tests/admin/fleet_measurements.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/admin/admin_test.h"
#include "tests/admin/fleet.h"
#include "tests/support/files.h"
#include "tests/support/subprocess.h"

namespace {

constexpr int kQueues = 200;
constexpr int kStride = 40;  // 5 queues use the filter
constexpr int kReps = 15;

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

TEST_F(AdminTest, FleetOf200Queues) {
  std::string error;
  ASSERT_TRUE(StartFleet(cupsd(), kQueues, kStride, PPD_PATH, &error))
      << error;
  for (int q = kStride; q <= kQueues; q += kStride)
    ASSERT_NE(0, RunCommandJob(FleetQueue(q), kBothCommands));
  ASSERT_EQ(0, Quillaroth({"status", "--all", "--json"}).status);  // cache
  // Each as the table shows it; the scheduler comes from CUPS_SERVER.
  std::vector<std::vector<std::string>> commands = {
      {"quillaroth", "status", "--json", "--all"},
      {"lpstat", "-l", "-p"},
      {"quillaroth", "refresh", "--all", "--if-older-than", "1h"},
  };
  std::vector<std::vector<double>> seconds(commands.size());
  std::vector<int> requests(commands.size());
  for (int rep = 0; rep < kReps; rep++) {
    for (size_t c = 0; c < commands.size(); c++) {
      int before = Requests();
      double start = Now();
      std::vector<std::string> argv = commands[c];
      if (argv[0] == "quillaroth") argv[0] = QUILLAROTH_ADMIN_PATH;
      ProgramResult run = RunProgram(argv, "", {"CUPS_SERVER=" + Where()});
      seconds[c].push_back(Now() - start);
      requests[c] = Requests() - before;
      ASSERT_EQ(0, run.status) << run.Describe();
    }
  }
  printf("%d queues, %d with the filter, %d runs each, alternating\n",
         kQueues, kQueues / kStride, kReps);
  printf("| command | median wall time | requests |\n|---|---|---|\n");
  for (size_t c = 0; c < commands.size(); c++) {
    std::string shown = commands[c][0];
    for (size_t a = 1; a < commands[c].size(); a++) shown += " " + commands[c][a];
    printf("| `%s` | %.1f ms | %d |\n", shown.c_str(),
           1000 * Median(seconds[c]), requests[c]);
  }
  printf("quillaroth status / lpstat: %.2f\n",
         Median(seconds[0]) / Median(seconds[1]));
}

}  // namespace
