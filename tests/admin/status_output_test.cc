#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/status_json.h"
#include "admin/status_table.h"
#include "tests/admin/sample_queues.h"

namespace {

constexpr time_t kNow = kSampleNow;

// The sample queues and a fifth one, in use, whose reading is two hours
// old.
std::vector<QueueStatus> FiveQueues() {
  std::vector<QueueStatus> queues = SampleQueues();
  QueueStatus old = queues[0];
  old.queue = "lobby";
  old.state = QueueStatus::State::Processing;
  old.ink_sheet = "PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)";
  old.levels_read_at = kNow - 7300;
  queues.push_back(old);
  return queues;
}

// The whole table, written out.
TEST(StatusTableTest, GoldenTable) {
  EXPECT_EQ(
      "QUEUE  LINK    STATE          LEFT  LEVEL  READ\n"
      "photo  usb     idle        120/350    34%  90s ago\n"
      "  ink sheet: PC\n"
      "booth  socket  stopped      48/350    13%  30s ago\n"
      "  ink sheet: PC\n"
      "  com.quillaroth-error0001: Printer error 0001 - see the printer's panel\n"
      "spare  usb     idle              -      -  never\n"
      "kiosk  socket  idle              -      -  10m ago\n"
      "  com.quillaroth-error0023: Printer not reachable or unknown printer error\n"
      "  offline-report\n"
      "lobby  usb     processing  120/350    34%  2h stale\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n",
      StatusTable(FiveQueues(), kNow, TableStyle()));
}

TEST(StatusTableTest, ColoursReasonsAndStaleAges) {
  TableStyle style;
  style.colour = true;
  std::vector<QueueStatus> queues = {SampleQueues()[1]};
  queues[0].levels_read_at = kNow - 7300;
  EXPECT_EQ(
      "QUEUE  LINK    STATE      LEFT  LEVEL  READ\n"
      "booth  socket  stopped  48/350    13%  \033[33m2h stale\033[0m\n"
      "  ink sheet: PC\n"
      "  \033[31mcom.quillaroth-error0001: Printer error 0001 - see the "
      "printer's panel\033[0m\n",
      StatusTable(queues, kNow, style));
}

TEST(StatusTableTest, StaleAgeIsAnOption) {
  TableStyle style;
  style.stale_seconds = 60;
  std::vector<QueueStatus> queues = {SampleQueues()[0]};
  EXPECT_EQ(
      "QUEUE  LINK  STATE     LEFT  LEVEL  READ\n"
      "photo  usb   idle   120/350    34%  90s stale\n"
      "  ink sheet: PC\n",
      StatusTable(queues, kNow, style));
}

TEST(StatusTableTest, FitsEightyColumnsForNamesOf28Characters) {
  std::vector<QueueStatus> queues = FiveQueues();
  queues[0].queue = "photobooth-east-entrance-no1";
  queues[0].prints_remaining = 65535;
  queues[0].prints_total = 65535;
  queues[0].level_percent = 100;
  queues[0].state = QueueStatus::State::Processing;
  queues[0].levels_read_at = kNow - 20 * 86400;
  std::string table = StatusTable(queues, kNow, TableStyle());
  std::string first = table.substr(table.find('\n') + 1);
  first = first.substr(0, first.find('\n'));
  EXPECT_LE(first.size(), 80u) << first;
}

// The whole document, written out.
TEST(StatusJsonTest, GoldenDocument) {
  EXPECT_EQ(
      "{\"queues\": [\n"
      "  {\n"
      "    \"queue\": \"photo\",\n"
      "    \"scheme\": \"usb\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": 120,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 34,\n"
      "    \"ink_sheet\": \"PC\",\n"
      "    \"levels_read_at\": \"2026-11-24T11:58:30Z\",\n"
      "    \"levels_age_seconds\": 90\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"booth\",\n"
      "    \"scheme\": \"socket\",\n"
      "    \"state\": \"stopped\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [\n"
      "      {\"keyword\": \"com.quillaroth-error0001\", \"text\": \"Printer error 0001 - see the printer's panel\"}\n"
      "    ],\n"
      "    \"prints_remaining\": 48,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 13,\n"
      "    \"ink_sheet\": \"PC\",\n"
      "    \"levels_read_at\": \"2026-11-24T11:59:30Z\",\n"
      "    \"levels_age_seconds\": 30\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"spare\",\n"
      "    \"scheme\": \"usb\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": null,\n"
      "    \"levels_age_seconds\": null\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"kiosk\",\n"
      "    \"scheme\": \"socket\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [\n"
      "      {\"keyword\": \"com.quillaroth-error0023\", \"text\": \"Printer not reachable or unknown printer error\"},\n"
      "      {\"keyword\": \"offline-report\", \"text\": \"\"}\n"
      "    ],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": \"2026-11-24T11:50:00Z\",\n"
      "    \"levels_age_seconds\": 600\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"lobby\",\n"
      "    \"scheme\": \"usb\",\n"
      "    \"state\": \"processing\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": 120,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 34,\n"
      "    \"ink_sheet\": \"PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\",\n"
      "    \"levels_read_at\": \"2026-11-24T09:58:20Z\",\n"
      "    \"levels_age_seconds\": 7300\n"
      "  }\n"
      "]}\n",
      StatusJson(FiveQueues(), kNow));
}

TEST(StatusJsonTest, NoQueues) {
  EXPECT_EQ("{\"queues\": []}\n", StatusJson({}, kNow));
}

TEST(StatusJsonTest, StringEscapes) {
  EXPECT_EQ("\"a\\\\b\\\"c\\n\\t\\u0001\\u007f\xc3\xa9\"",
            JsonString("a\\b\"c\n\t\x01\x7f\xc3\xa9"));
}

}  // namespace
