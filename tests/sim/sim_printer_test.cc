// The test kit's SimPrinter: one list of the option table's keys, joined
// into the simulator's options, a device URI and a USB printer's script,
// each of which the simulator takes as the same printer.

#include "tests/support/sim_printer.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/device_uri.h"
#include "sim/sim_options.h"
#include "sim/usb/usb_script.h"
#include "tests/sim/sim_kit.h"

namespace {

// A printer with every kind of key: fields, pieces and sleep.
SimPrinter Sleepy() {
  return SimPrinter()
      .Error(0x060202)
      .Remaining(0)
      .Split({100, 92})
      .WakeAfter(2);
}

// The scenario that quillaroth-sim's command line makes of the options.
Scenario FromOptions(std::vector<std::string> words) {
  words.insert(words.begin(), "quillaroth-sim");
  words.push_back("--");
  words.push_back("filter");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(&word[0]);
  argv.push_back(nullptr);
  SimSettings settings;
  EXPECT_TRUE(parse_sim_options(static_cast<int>(words.size()), argv.data(),
                                &settings));
  return settings.scenario;
}

TEST(SimPrinterTest, KeysJoinedThreeWays) {
  EXPECT_EQ(std::vector<std::string>(
                {"--power=00", "--memory=00", "--mech=0000", "--error=060202",
                 "--sheet=8410", "--total=350", "--remaining=0", "--fill=00",
                 "--size=192", "--split=100+92", "--wake-after=2"}),
            Sleepy().SimOptions());
  EXPECT_EQ(
      "quillarothsim://q?power=00&memory=00&mech=0000&error=060202&"
      "sheet=8410&total=350&remaining=0&fill=00&size=192&split=100+92&"
      "wake-after=2",
      Sleepy().DeviceUri("q"));
  EXPECT_EQ(
      "power=00\nmemory=00\nmech=0000\nerror=060202\nsheet=8410\n"
      "total=350\nremaining=0\nfill=00\nsize=192\nsplit=100+92\n"
      "wake-after=2\n",
      Sleepy().UsbScript());
}

TEST(SimPrinterTest, EveryJoinMakesTheSamePrinter) {
  Scenario options = FromOptions(Sleepy().SimOptions());
  Scenario uri;
  std::string why;
  ASSERT_TRUE(parse_device_uri(Sleepy().DeviceUri("q"), &uri, &why)) << why;
  UsbScript script;
  ASSERT_TRUE(parse_usb_script(Sleepy().UsbScript(), &script, &why)) << why;
  for (long query = 1; query <= 3; query++) {
    Bytes expected = plan_info_reply(options, query).bytes;
    EXPECT_EQ(expected, plan_info_reply(uri, query).bytes);
    EXPECT_EQ(expected, plan_info_reply(script.printer, query).bytes);
  }
  EXPECT_EQ(WithBytes(WithBytes(DefaultInfoReply(), 131, Hex("06 02 02")),
                      150, Hex("00 00")),
            plan_info_reply(options, 3).bytes);
}

TEST(SimPrinterTest, UriCannotCarryOneQuerysReply) {
  EXPECT_NONFATAL_FAILURE(SimPrinter().AsleepAt({2}).DeviceUri("q"),
                          "a device URI cannot carry the key \"reply\"");
}

}  // namespace
