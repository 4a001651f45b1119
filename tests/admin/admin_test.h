// AdminTest: the fixture of quillaroth's tests against a real scheduler.
//
// Each test has a private cupsd of its own (one test per process), with
// queues on the simulated printer (quillarothsim) and on CUPS' own socket
// backend, and runs the built quillaroth as an admin would, with
// CUPS_SERVER pointing at the private scheduler.  Whole outputs are
// compared; what depends on the clock, the age of the levels, is checked to
// be a few seconds and then masked.

#ifndef QUILLAROTH_TESTS_ADMIN_ADMIN_TEST_H_
#define QUILLAROTH_TESTS_ADMIN_ADMIN_TEST_H_

#include <string>
#include <vector>

#include "tests/e2e/cupsd_test.h"
#include "tests/support/sim_printer.h"
#include "tests/support/subprocess.h"

// The print filter of a printer's own driver in the queues whose PPD enable
// changes: it swallows the page data.
extern const char kDriverFilter[];
// The PPD of a printer whose driver prints text through kDriverFilter and
// whose command jobs go to commandtoquillaroth (*cupsFilter lines).
std::string PrintingPpd();

class AdminTest : public CupsdTest {
 protected:
  // Runs the built quillaroth with ARGS against the private scheduler.
  ProgramResult Quillaroth(const std::vector<std::string>& args);
  // The same, started and left running.
  ProcessSetup QuillarothSetup(const std::vector<std::string>& args);
  // "127.0.0.1:PORT", as quillaroth names the scheduler.
  std::string Where();
  // A queue on the simulated printer with the simulator's PPD.
  void AddSimQueue(const std::string& name, const SimPrinter& printer);
  // A queue with PPD_TEXT (no PPD when it is empty) and URI, whose backend
  // is linked in from the system's.
  void AddQueueWithPpd(const std::string& name, const std::string& uri,
                       const std::string& ppd_text);
  // Puts the driver's print filter into the private server folder.
  void InstallVendorFilter();
  // Runs an administrative command (lpadmin, cupsdisable, lp, ...) on the
  // private scheduler; its output.
  std::string Admin(std::vector<std::string> argv);
  // The queue's PPD as the scheduler keeps it.
  std::string Ppd(const std::string& queue);
  // Submits a job of FORMAT to QUEUE, waits for it to end and returns the
  // scheduler's filter chain for it, job numbers masked.
  std::string PrintChain(const std::string& queue, const std::string& format);
  // The number of requests the scheduler has logged so far.
  int Requests();
  // The ids of the jobs in the scheduler's history or queues, per
  // which-jobs ("completed", "not-completed").
  std::vector<int> Jobs(const std::string& which);
};

// The table with the ages of the levels, a few seconds, shown as "Ns ago".
std::string MaskTableAges(const std::string& table);
// The JSON document with its times, a few seconds old, masked.
std::string MaskJsonTimes(const std::string& json);

#endif  // QUILLAROTH_TESTS_ADMIN_ADMIN_TEST_H_
