// Measurements of CUPS' socket backend's own waits in front of the
// network printer.  They take minutes, so they are a program of their own
// and not among the CTest tests; run them (in the build folder, as root)
// with tests/e2e/socket_backend_measurements.

#include <gtest/gtest.h>

#include "tests/e2e/socket_backend_test.h"
#include "tests/support/subprocess.h"

namespace {

TEST_F(SocketBackendTest, HungPrinterHoldsTheJobUntilWaiteofEnds) {
  AddNetworkQueue("mutewait", SimPrinter(), {"--hang"});
  ASSERT_NE(0, RunSocketJob("mutewait", kReportLevels,
                            kWakeUpPauseSeconds + kReadTimeout + kWaitEof));
  EXPECT_LE(kWaitEof, last_job_seconds_);
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("mutewait"));
}

TEST_F(SocketBackendTest, RefusedConnectionHoldsTheJobForDays) {
  AddNetworkQueue("refusedwait", SimPrinter(), {"--accept", "0"});
  int job = SubmitJob("refusedwait", kReportLevels);
  ASSERT_NE(0, job);
  // The filter gives up after two unanswered drains and a read; the
  // backend goes on retrying (contimeout is a week by default).
  double filter_done = kSnmpLookups + 2 * kDrainTimeout + kWakeUpPauseSeconds +
                       kReadTimeout + kSchedulerSlack;
  EXPECT_EQ(IPP_JSTATE_PROCESSING, cupsd().WaitForJob(job, filter_done + 30));
  EXPECT_EQ(UnreachableShown(), cupsd().PrinterAttributes("refusedwait"));
  ProgramResult cancel = RunProgram(
      {"cancel", "-h", cupsd().address(), std::to_string(job)});
  EXPECT_EQ(0, cancel.status) << cancel.Describe();
  EXPECT_EQ(IPP_JSTATE_CANCELED, cupsd().WaitForJob(job, kSchedulerSlack));
}

}  // namespace
